#include "OcrCorpus.h"

#include "OcrCorpusText.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <functional>

namespace glyphmill::ocrbench {

namespace {

struct Scheme {
    QColor ground, ink, accent, line;
};

const Scheme light{"#ffffff", "#1d1d1f", "#0a64d8", "#d0d0d0"};
const Scheme paper{"#f3f3f1", "#333333", "#0b57a4", "#c8c8c4"};
const Scheme dark{"#1e1e1e", "#e4e4e4", "#4ea1ff", "#3a3a3a"};
const Scheme slate{"#2b2d31", "#dbdee1", "#00a8fc", "#43454b"};
const Scheme lowLight{"#ffffff", "#9b9b9b", "#8fb4e0", "#e6e6e6"};
const Scheme lowDark{"#2a2a2a", "#8c8c8c", "#6d8fb0", "#383838"};
const Scheme blue{"#1565c0", "#ffffff", "#ffd54f", "#1e74d6"};
const Scheme note{"#fff4c2", "#5d4000", "#a05a00", "#e8d890"};
const Scheme mint{"#e8f5e9", "#1b5e20", "#00695c", "#c8e6c9"};
const Scheme plum{"#6a1b9a", "#f3e5f5", "#ffcc80", "#7b2aa8"};
const Scheme rose{"#ffebee", "#b71c1c", "#6a1b9a", "#f8c8cf"};

struct Style {
    const char *family;
    int px;
    Scheme scheme;
    double dpr = 1;
};

constexpr double padding = 14;

// Records the rows of a panel, then sizes the image to them and draws. Coordinates are points.
class Panel {
public:
    explicit Panel(Style style) : style_(style) {}

    void text(const QString &line, int px = 0, bool bold = false) {
        const QFont f = font(px, bold);
        const double advance = std::round(QFontMetricsF(f).height() * 1.35);
        need(QFontMetricsF(f).horizontalAdvance(line));
        add(advance, line, [=, this](QPainter &p, double top, double) {
            drawText(p, f, style_.scheme.ink, padding, top, advance, line);
        });
    }
    void link(const QString &line) {
        const QFont f = font(0, false);
        const double advance = std::round(QFontMetricsF(f).height() * 1.35);
        need(QFontMetricsF(f).horizontalAdvance(line));
        add(advance, line, [=, this](QPainter &p, double top, double) {
            QFont underlined = f;
            underlined.setUnderline(true);
            drawText(p, underlined, style_.scheme.accent, padding, top, advance, line);
        });
    }
    // A label and its value in a second column; field draws a text field's border around it.
    void row(const QString &label, const QString &value, bool field = false) {
        const QFont f = font(0, false);
        const QFontMetricsF metrics(f);
        const double advance = std::round(metrics.height() * (field ? 2.2 : 1.6));
        labelWidth_ = std::max(labelWidth_, metrics.horizontalAdvance(label));
        valueWidth_ = std::max(valueWidth_, metrics.horizontalAdvance(value) + (field ? 40 : 0));
        add(advance, label + ' ' + value, [=, this](QPainter &p, double top, double width) {
            drawText(p, f, style_.scheme.ink, padding, top, advance, label);
            const double valueX = padding + labelWidth_ + 20;
            if (field) {
                p.setPen(QPen(style_.scheme.line, 1));
                p.drawRoundedRect(QRectF(valueX - 6, top + 3, width - valueX - padding + 6, advance - 6), 4,
                                  4);
            }
            drawText(p, f, style_.scheme.ink, valueX, top, advance, value);
        });
    }
    // Right-aligned amounts, as in a receipt or a table of figures.
    void amount(const QString &label, const QString &value) {
        const QFont f = font(0, false);
        const QFontMetricsF metrics(f);
        const double advance = std::round(metrics.height() * 1.5);
        need(metrics.horizontalAdvance(label) + metrics.horizontalAdvance(value) + 60);
        add(advance, label + ' ' + value, [=, this](QPainter &p, double top, double width) {
            drawText(p, f, style_.scheme.ink, padding, top, advance, label);
            drawText(p, f, style_.scheme.ink, width - padding - metrics.horizontalAdvance(value), top,
                     advance, value);
        });
    }
    void menu(const QString &item, const QString &shortcut, bool highlighted = false) {
        const QFont f = font(0, false);
        const QFontMetricsF metrics(f);
        const double advance = std::round(metrics.height() * 1.7);
        need(24 + metrics.horizontalAdvance(item) + 70 + metrics.horizontalAdvance(shortcut));
        add(advance, shortcut.isEmpty() ? item : item + ' ' + shortcut,
            [=, this](QPainter &p, double top, double width) {
                QColor ink = style_.scheme.ink;
                if (highlighted) {
                    p.fillRect(QRectF(4, top, width - 8, advance), style_.scheme.accent);
                    ink = style_.scheme.ground;
                }
                drawText(p, f, ink, padding + 24, top, advance, item);
                QColor dim = ink;
                dim.setAlphaF(highlighted ? 1.0f : 0.7f);
                drawText(p, f, dim, width - padding - metrics.horizontalAdvance(shortcut), top, advance,
                         shortcut);
            });
    }
    void separator() {
        add(9, {}, [this](QPainter &p, double top, double width) {
            p.setPen(QPen(style_.scheme.line, 1));
            p.drawLine(QPointF(padding, top + 4.5), QPointF(width - padding, top + 4.5));
        });
    }
    // A row with a small icon before the text and, optionally, a switch at the right.
    void icon(int shape, const QString &line, bool toggle = false, bool on = false) {
        const QFont f = font(0, false);
        const double advance = std::round(QFontMetricsF(f).height() * 2.0);
        need(QFontMetricsF(f).horizontalAdvance(line) + 34 + (toggle ? 70 : 0));
        add(advance, line, [=, this](QPainter &p, double top, double width) {
            const double size = std::min(18.0, advance - 8);
            const QRectF box(padding, top + (advance - size) / 2, size, size);
            static const QColor palette[] = {"#e53935", "#43a047", "#1e88e5",
                                             "#fb8c00", "#8e24aa", "#00897b"};
            const QColor colour = palette[shape % 6];
            p.setRenderHint(QPainter::Antialiasing);
            p.setPen(Qt::NoPen);
            p.setBrush(colour);
            switch (shape % 4) {
            case 0:
                p.drawEllipse(box);
                break;
            case 1:
                p.drawRoundedRect(box, 4, 4);
                break;
            case 2: {
                QPainterPath path;
                path.moveTo(box.center().x(), box.top());
                path.lineTo(box.right(), box.bottom());
                path.lineTo(box.left(), box.bottom());
                path.closeSubpath();
                p.drawPath(path);
                break;
            }
            default:
                p.setPen(QPen(colour, 2));
                p.setBrush(Qt::NoBrush);
                p.drawRect(box.adjusted(2, 2, -2, -2));
                break;
            }
            drawText(p, f, style_.scheme.ink, padding + size + 10, top, advance, line);
            if (toggle) {
                const QRectF track(width - padding - 36, top + (advance - 20) / 2, 36, 20);
                p.setPen(Qt::NoPen);
                p.setBrush(on ? style_.scheme.accent : style_.scheme.line);
                p.drawRoundedRect(track, 10, 10);
                p.setBrush(Qt::white);
                p.drawEllipse(QRectF(on ? track.right() - 18 : track.left() + 2, track.top() + 2, 16, 16));
            }
        });
    }
    void gap(double points) {
        add(points, {}, [](QPainter &, double, double) {});
    }

    OcrSample finish(const QString &name, const QString &category) {
        const double width = std::ceil(std::max(minimumWidth_, labelWidth_ + 20 + valueWidth_) + 2 * padding);
        double height = padding;
        for (const Row &row : rows_)
            height += row.advance;
        height = std::ceil(height + padding);
        QImage image(static_cast<int>(std::lround(width * style_.dpr)),
                     static_cast<int>(std::lround(height * style_.dpr)), QImage::Format_ARGB32);
        image.setDevicePixelRatio(style_.dpr);
        image.fill(style_.scheme.ground);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::TextAntialiasing);
        OcrSample sample{name, category, {}, {}};
        double top = padding;
        for (const Row &row : rows_) {
            row.draw(painter, top, width);
            top += row.advance;
            if (!row.truth.isEmpty())
                sample.truth << row.truth;
        }
        painter.end();
        sample.image = image;
        return sample;
    }

private:
    struct Row {
        double advance;
        QString truth;
        std::function<void(QPainter &, double top, double width)> draw;
    };

    QFont font(int px, bool bold) const {
        QFont f(QString::fromUtf8(style_.family));
        f.setPixelSize(px > 0 ? px : style_.px);
        f.setBold(bold);
        return f;
    }
    static void drawText(QPainter &p, const QFont &f, const QColor &ink, double x, double top, double advance,
                         const QString &line) {
        const QFontMetricsF metrics(f);
        p.setFont(f);
        p.setPen(ink);
        p.drawText(QPointF(x, top + std::round((advance - metrics.height()) / 2 + metrics.ascent())), line);
    }
    void need(double width) { minimumWidth_ = std::max(minimumWidth_, width); }
    void add(double advance, const QString &truth, std::function<void(QPainter &, double, double)> draw) {
        rows_.push_back({advance, truth, std::move(draw)});
    }

    Style style_;
    std::vector<Row> rows_;
    double minimumWidth_ = 0;
    double labelWidth_ = 0;
    double valueWidth_ = 0;
};

// n lines of a pool, starting at offset, wrapping around.
QStringList take(const QStringList &pool, int offset, int n) {
    QStringList lines;
    for (int i = 0; i < n; ++i)
        lines << pool[(offset + i) % pool.size()];
    return lines;
}

OcrSample prose(const QString &name, Style style, int offset, int lines) {
    Panel panel(style);
    for (const QString &line : take(proseLines, offset, lines))
        panel.text(line);
    return panel.finish(name, "prose");
}

OcrSample heading(const QString &name, Style style, int headingPx, int offset) {
    Panel panel(style);
    panel.text(headings[offset % headings.size()], headingPx, true);
    panel.gap(4);
    for (const QString &line : take(proseLines, offset * 3 + 1, 3))
        panel.text(line);
    panel.gap(6);
    panel.text(headings[(offset + 1) % headings.size()], headingPx * 3 / 4, true);
    for (const QString &line : take(proseLines, offset * 3 + 7, 2))
        panel.text(line);
    return panel.finish(name, "heading");
}

OcrSample menu(const QString &name, Style style, int which) {
    Panel panel(style);
    const auto &items = menus[static_cast<std::size_t>(which) % menus.size()];
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i].first.isEmpty()) {
            panel.separator();
            continue;
        }
        panel.menu(items[i].first, items[i].second, static_cast<int>(i) == which % 3 + 1);
    }
    return panel.finish(name, "menu");
}

OcrSample code(const QString &name, Style style, int offset, int lines) {
    Panel panel(style);
    for (const QString &line : take(codeLines, offset, lines))
        panel.text(line);
    return panel.finish(name, "code");
}

OcrSample links(const QString &name, Style style, int offset) {
    Panel panel(style);
    const QStringList lines = take(linkLines, offset, 6);
    for (int i = 0; i < lines.size(); ++i) {
        if (i % 2 == 0)
            panel.link(lines[i]);
        else
            panel.text(lines[i]);
    }
    return panel.finish(name, "links");
}

OcrSample numbers(const QString &name, Style style, int offset) {
    Panel panel(style);
    for (const QString &line : take(numberLines, offset, 3))
        panel.text(line);
    panel.separator();
    for (int i = 0; i < 5; ++i) {
        const auto &[label, value] = amounts[static_cast<std::size_t>(offset + i) % amounts.size()];
        panel.amount(label, value);
    }
    return panel.finish(name, "numbers");
}

OcrSample form(const QString &name, Style style, int offset, bool fields) {
    Panel panel(style);
    for (int i = 0; i < 6; ++i) {
        const auto &[label, value] = formRows[static_cast<std::size_t>(offset + i) % formRows.size()];
        panel.row(label, value, fields);
    }
    return panel.finish(name, "form");
}

OcrSample icons(const QString &name, Style style, int offset, bool toggles) {
    Panel panel(style);
    for (int i = 0; i < 6; ++i)
        panel.icon(offset + i, iconLabels[static_cast<std::size_t>(offset + i) % iconLabels.size()], toggles,
                   (offset + i) % 3 == 0);
    return panel.finish(name, "icons");
}

} // namespace

std::vector<OcrSample> buildOcrCorpus() {
    return {
        prose("prose-dejavu13-light", {"DejaVu Sans", 13, light}, 0, 6),
        prose("prose-libserif15-paper", {"Liberation Serif", 15, paper}, 6, 6),
        prose("prose-opensans14-dark-2x", {"Open Sans", 14, dark, 2}, 12, 5),
        prose("prose-cantarell12-low", {"Cantarell", 12, lowLight}, 17, 6),
        prose("prose-djserif16-note", {"DejaVu Serif", 16, note}, 23, 5),
        prose("prose-libsans11-slate", {"Liberation Sans", 11, slate}, 28, 7),
        heading("heading-cantarell24-light", {"Cantarell", 13, light}, 24, 0),
        heading("heading-opensans22-blue", {"Open Sans", 12, blue}, 22, 1),
        heading("heading-libserif26-light-2x", {"Liberation Serif", 16, light, 2}, 26, 2),
        heading("heading-dejavu20-dark", {"DejaVu Sans", 11, dark}, 20, 3),
        menu("menu-dejavu13-light", {"DejaVu Sans", 13, light}, 0),
        menu("menu-cantarell14-dark", {"Cantarell", 14, dark}, 1),
        menu("menu-opensans13-light-2x", {"Open Sans", 13, light, 2}, 2),
        menu("menu-libsans12-slate", {"Liberation Sans", 12, slate}, 3),
        menu("menu-libsans15-low", {"Liberation Sans", 15, lowLight}, 4),
        menu("menu-dejavu11-blue", {"DejaVu Sans", 11, blue}, 5),
        code("code-djmono13-light", {"DejaVu Sans Mono", 13, light}, 0, 6),
        code("code-libmono14-dark", {"Liberation Mono", 14, dark}, 6, 6),
        code("code-notomono12-paper", {"Noto Mono", 12, paper}, 12, 6),
        code("code-djmono15-slate-2x", {"DejaVu Sans Mono", 15, slate, 2}, 3, 6),
        code("code-libmono11-lowdark", {"Liberation Mono", 11, lowDark}, 9, 6),
        links("links-dejavu13-light", {"DejaVu Sans", 13, light}, 0),
        links("links-opensans15-dark", {"Open Sans", 15, dark}, 3),
        links("links-libserif14-mint", {"Liberation Serif", 14, mint}, 6),
        links("links-cantarell13-light-2x", {"Cantarell", 13, light, 2}, 9),
        numbers("numbers-dejavu13-light", {"DejaVu Sans", 13, light}, 0),
        numbers("numbers-libsans14-dark", {"Liberation Sans", 14, dark}, 3),
        numbers("numbers-opensans12-note", {"Open Sans", 12, note}, 6),
        numbers("numbers-notomono13-light-2x", {"Noto Mono", 13, light, 2}, 9),
        form("form-dejavu13-light-fields", {"DejaVu Sans", 13, light}, 0, true),
        form("form-cantarell14-dark", {"Cantarell", 14, dark}, 6, false),
        form("form-libsans12-paper", {"Liberation Sans", 12, paper}, 12, false),
        form("form-opensans13-plum-fields", {"Open Sans", 13, plum}, 3, true),
        form("form-djserif14-light-2x", {"DejaVu Serif", 14, light, 2}, 9, false),
        form("form-libsans16-low", {"Liberation Sans", 16, lowLight}, 15, false),
        icons("icons-dejavu13-light", {"DejaVu Sans", 13, light}, 0, false),
        icons("icons-cantarell14-dark-toggles", {"Cantarell", 14, dark}, 6, true),
        icons("icons-opensans13-rose", {"Open Sans", 13, rose}, 12, false),
        icons("icons-libsans12-slate-2x-toggles", {"Liberation Sans", 12, slate, 2}, 3, true),
        icons("icons-dejavu18-light", {"DejaVu Sans", 18, light}, 9, false),
    };
}

QImage renderTextRegion(int widthPoints, int heightPoints) {
    QImage image(widthPoints, heightPoints, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPixelSize(13);
    painter.setFont(f);
    painter.setPen(QColor("#1d1d1f"));
    const QFontMetricsF metrics(f);
    const double advance = std::round(metrics.height() * 1.35);
    int index = 0;
    // Each row runs on past the right edge, like a column of text cut by the selection.
    for (double top = 8; top + advance <= heightPoints - 8; top += advance) {
        QString row;
        while (metrics.horizontalAdvance(row) < widthPoints)
            row += proseLines[index++ % proseLines.size()] + ' ';
        painter.drawText(QPointF(10, top + metrics.ascent()), row);
    }
    painter.end();
    return image;
}

ScreenImage toScreenImage(const QImage &image) {
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    ScreenImage screen{argb.width(), argb.height(), argb.devicePixelRatio(), {}};
    screen.pixels.reserve(static_cast<std::size_t>(argb.width()) * static_cast<std::size_t>(argb.height()));
    for (int y = 0; y < argb.height(); ++y) {
        const auto *line = reinterpret_cast<const std::uint32_t *>(argb.constScanLine(y));
        screen.pixels.insert(screen.pixels.end(), line, line + argb.width());
    }
    return screen;
}

} // namespace glyphmill::ocrbench
