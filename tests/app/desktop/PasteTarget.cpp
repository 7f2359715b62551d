// A window that shows what was pasted into it, for the desktop session test: a plain text editor
// titled "glyphmill paste target" that writes its whole text to the file named on the command
// line after every change, so a script can wait for the paste without reading the screen.
#include <QApplication>
#include <QPlainTextEdit>
#include <QSaveFile>

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    if (argc != 2)
        return 64;
    const QString outputPath = QString::fromLocal8Bit(argv[1]);
    QPlainTextEdit editor;
    editor.setWindowTitle(QStringLiteral("glyphmill paste target"));
    editor.resize(400, 200);
    QObject::connect(&editor, &QPlainTextEdit::textChanged, &editor, [&] {
        // Written whole and renamed into place, so a reader never sees half a text.
        QSaveFile file(outputPath);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(editor.toPlainText().toUtf8());
            file.commit();
        }
    });
    editor.show();
    return QApplication::exec();
}
