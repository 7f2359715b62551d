// Known text on screen for the capture session and the capture benchmark: one white window over each
// screen (kept below every other window), with text in DejaVu Sans at 22 px.
//
//   text-board LAYOUT_FILE [desk|page]
//
// desk (the default, needs two screens side by side): a two-line block on the left screen, a
// white-on-dark line under it, a line near the left screen's right edge, and on the right screen a
// line and another one just past the shared edge. page: every screen filled with lines of prose.
//
// Once the server has every window's picture it writes LAYOUT_FILE (whole, renamed into place), one
// line a block: NAME LEFT TOP WIDTH HEIGHT TEXT, the rectangle in global coordinates around the ink
// of the text, the block's lines joined with "|".
#include <QApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QSaveFile>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace {

struct Block {
    QString name;
    QPoint origin; // top left of the first line, in the board's coordinates
    QStringList lines;
    bool inverse = false;
};

QFont boardFont() {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(22);
    return font;
}

constexpr int lineHeight = 32;

// Words that recognition reads without doubt at this size: no l/I/1 or O/0 look-alikes on their own.
QStringList prose(int lineCount, int width, const QFontMetrics &metrics, int seed) {
    static const QStringList words = {
        QStringLiteral("morning"), QStringLiteral("harbour"), QStringLiteral("seven"),
        QStringLiteral("green"),   QStringLiteral("river"),   QStringLiteral("carries"),
        QStringLiteral("stones"),  QStringLiteral("towards"), QStringLiteral("the"),
        QStringLiteral("market"),  QStringLiteral("where"),   QStringLiteral("traders"),
        QStringLiteral("weigh"),   QStringLiteral("copper"),  QStringLiteral("kettles"),
        QStringLiteral("and"),     QStringLiteral("baskets"), QStringLiteral("of"),
        QStringLiteral("ripe"),    QStringLiteral("pears"),   QStringLiteral("under"),
        QStringLiteral("canvas"),  QStringLiteral("roofs"),   QStringLiteral("every"),
        QStringLiteral("summer"),  QStringLiteral("evening"), QStringLiteral("quiet"),
        QStringLiteral("bridge"),  QStringLiteral("garden"),  QStringLiteral("window"),
        QStringLiteral("paper"),   QStringLiteral("winter")};
    QStringList lines;
    unsigned state = static_cast<unsigned>(seed) * 2654435761u + 1u;
    for (int i = 0; i < lineCount; ++i) {
        QString line;
        for (;;) {
            state = state * 1103515245u + 12345u;
            const QString word =
                words[static_cast<qsizetype>((state >> 16) % static_cast<unsigned>(words.size()))];
            const QString longer = line.isEmpty() ? word : line + QLatin1Char(' ') + word;
            if (metrics.horizontalAdvance(longer) > width)
                break;
            line = longer;
        }
        lines << line;
    }
    return lines;
}

class Board : public QWidget {
public:
    Board(QScreen *screen, std::vector<Block> blocks, std::function<void()> painted)
        : blocks_(std::move(blocks)), painted_(std::move(painted)) {
        setWindowFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnBottomHint);
        setWindowTitle(QStringLiteral("glyphmill text board"));
        setScreen(screen);
        setGeometry(screen->geometry());
        setFont(boardFont());
    }

    // The rectangle around a block's ink, in global coordinates.
    QRect inkRect(const Block &block) const {
        const QFontMetrics metrics(font());
        QRect ink;
        for (qsizetype i = 0; i < block.lines.size(); ++i) {
            const QPoint baseline =
                block.origin + QPoint(0, static_cast<int>(i) * lineHeight + metrics.ascent());
            ink |= metrics.tightBoundingRect(block.lines[i]).translated(baseline);
        }
        return ink.translated(geometry().topLeft());
    }

    const std::vector<Block> &blocks() const { return blocks_; }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::white);
        const QFontMetrics metrics(font());
        for (const Block &block : blocks_) {
            if (block.inverse)
                painter.fillRect(inkRect(block).translated(-geometry().topLeft()).adjusted(-24, -16, 24, 16),
                                 QColor(0x20, 0x28, 0x30));
            painter.setPen(block.inverse ? Qt::white : QColor(0x20, 0x20, 0x20));
            for (qsizetype i = 0; i < block.lines.size(); ++i)
                painter.drawText(block.origin +
                                     QPoint(0, static_cast<int>(i) * lineHeight + metrics.ascent()),
                                 block.lines[i]);
        }
        if (painted_)
            std::exchange(painted_, nullptr)();
    }

private:
    std::vector<Block> blocks_;
    std::function<void()> painted_;
};

std::vector<Block> deskBlocks(int screenIndex, QSize size) {
    const QFontMetrics metrics(boardFont());
    if (screenIndex == 0) {
        const QString edge = QStringLiteral("Garden gate");
        return {
            {QStringLiteral("left"),
             {200, 200},
             {QStringLiteral("Morning tide brings seven fishing boats"),
              QStringLiteral("Harbour lights shine across the water")}},
            {QStringLiteral("inverse"), {200, 420}, {QStringLiteral("Silver moon over quiet fields")}, true},
            {QStringLiteral("left-edge"),
             {size.width() - 40 - metrics.horizontalAdvance(edge), 600},
             {edge}}};
    }
    if (screenIndex != 1)
        return {};
    return {{QStringLiteral("right"), {200, 200}, {QStringLiteral("Quiet meadows wait beyond the hills")}},
            {QStringLiteral("right-edge"), {40, 600}, {QStringLiteral("Winter orchard")}}};
}

std::vector<Block> pageBlocks(int screenIndex, QSize size) {
    const QFontMetrics metrics(boardFont());
    const int margin = 40;
    const int lineCount = (size.height() - 2 * margin) / lineHeight;
    return {{QStringLiteral("page-%1").arg(screenIndex),
             {margin, margin},
             prose(lineCount, size.width() - 2 * margin, metrics, screenIndex)}};
}

} // namespace

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    const QString mode = argc >= 3 ? QString::fromLocal8Bit(argv[2]) : QStringLiteral("desk");
    if (argc < 2 || argc > 3 || (mode != QLatin1String("desk") && mode != QLatin1String("page")))
        return 64;
    const QString layoutPath = QString::fromLocal8Bit(argv[1]);

    QList<QScreen *> screens = QGuiApplication::screens();
    std::sort(screens.begin(), screens.end(),
              [](QScreen *a, QScreen *b) { return a->geometry().x() < b->geometry().x(); });
    if (mode == QLatin1String("desk") && screens.size() < 2) {
        qCritical("text-board: the desk needs two screens, found %lld",
                  static_cast<long long>(screens.size()));
        return 2;
    }

    std::vector<std::unique_ptr<Board>> boards;
    int unpainted = static_cast<int>(screens.size());
    const auto writeLayout = [&] {
        QSaveFile file(layoutPath);
        if (!file.open(QIODevice::WriteOnly))
            return;
        for (const auto &board : boards) {
            for (const Block &block : board->blocks()) {
                const QRect ink = board->inkRect(block);
                file.write(QStringLiteral("%1 %2 %3 %4 %5 %6\n")
                               .arg(block.name)
                               .arg(ink.x())
                               .arg(ink.y())
                               .arg(ink.width())
                               .arg(ink.height())
                               .arg(block.lines.join(QLatin1Char('|')))
                               .toUtf8());
            }
        }
        file.commit();
    };
    for (int i = 0; i < screens.size(); ++i) {
        const QSize size = screens[i]->geometry().size();
        boards.push_back(std::make_unique<Board>(
            screens[i], mode == QLatin1String("desk") ? deskBlocks(i, size) : pageBlocks(i, size), [&] {
                // The picture is sent to the server once the paint event has returned; the queued
                // call runs after that, and its round trip returns once the server has drawn
                // everything sent before it.
                if (--unpainted == 0)
                    QMetaObject::invokeMethod(
                        &application,
                        [&] {
                            QGuiApplication::sync();
                            writeLayout();
                        },
                        Qt::QueuedConnection);
            }));
        boards.back()->show();
    }
    return QApplication::exec();
}
