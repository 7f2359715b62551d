#include "platform/linux/XdgAutostartLoginItem.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace glyphmill {

namespace {

QString configHome() {
    // Relative values are invalid and must be ignored.
    const QString configured = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!configured.isEmpty() && QDir::isAbsolutePath(configured))
        return configured;
    return QDir::homePath() + QStringLiteral("/.config");
}

// One argument of an Exec key: quoted when it holds a reserved character, with field codes and
// the string escapes of key files applied on top, as desktop entries require.
QString execArgument(const QString &argument) {
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    static const QString escapedInQuotes = QStringLiteral("\"`$\\");
    QString quoted;
    const bool needsQuotes =
        std::any_of(argument.begin(), argument.end(), [](QChar c) { return reserved.contains(c); });
    if (needsQuotes) {
        quoted += u'"';
        for (QChar c : argument) {
            if (escapedInQuotes.contains(c))
                quoted += u'\\';
            quoted += c;
        }
        quoted += u'"';
    } else {
        quoted = argument;
    }
    quoted.replace(u'%', QStringLiteral("%%"));

    QString value;
    for (QChar c : quoted) {
        if (c == u'\\')
            value += QStringLiteral("\\\\");
        else if (c == u'\n')
            value += QStringLiteral("\\n");
        else if (c == u'\t')
            value += QStringLiteral("\\t");
        else if (c == u'\r')
            value += QStringLiteral("\\r");
        else
            value += c;
    }
    return value;
}

} // namespace

XdgAutostartLoginItem::XdgAutostartLoginItem(QString executablePath)
    : executablePath_(std::move(executablePath)) {}

QString XdgAutostartLoginItem::entryPath() {
    return configHome() + QStringLiteral("/autostart/glyphmill.desktop");
}

QString XdgAutostartLoginItem::desktopEntry(const QString &executablePath) {
    return QStringLiteral("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Name=Glyphmill\n"
                          "Comment=Case transforms and clipboard tools in the system tray\n"
                          "Exec=%1\n"
                          "Icon=glyphmill\n"
                          "Terminal=false\n"
                          "X-GNOME-Autostart-enabled=true\n")
        .arg(execArgument(executablePath));
}

bool XdgAutostartLoginItem::registerLoginItem() {
    const QString path = entryPath();
    if (!QDir().mkpath(QFileInfo(path).absolutePath()))
        return false;
    const QString executable =
        executablePath_.isEmpty() ? QCoreApplication::applicationFilePath() : executablePath_;
    if (executable.isEmpty())
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray contents = desktopEntry(executable).toUtf8();
    if (file.write(contents) != contents.size())
        return false;
    return file.commit();
}

bool XdgAutostartLoginItem::unregisterLoginItem() {
    std::error_code error;
    std::filesystem::remove(QFile::encodeName(entryPath()).toStdString(), error);
    return !error;
}

} // namespace glyphmill
