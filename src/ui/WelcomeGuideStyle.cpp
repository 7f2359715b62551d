#include "ui/WelcomeGuideStyle.h"

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QPalette>
#include <QPointer>
#include <QProxyStyle>
#include <QPushButton>
#include <QStyleOptionButton>

#include <utility>
#include <vector>

namespace glyphmill::welcomeStyle {

namespace {

// Relative to the body size, after the proportions of the usual desktop type ramps.
double scaleOf(TextStyle style) {
    switch (style) {
    case TextStyle::title:
        return 1.6;
    case TextStyle::title2:
        return 1.3;
    case TextStyle::headline:
    case TextStyle::body:
    case TextStyle::bodyMedium:
        return 1.0;
    case TextStyle::callout:
        return 0.92;
    case TextStyle::caption:
        return 0.85;
    }
    return 1.0;
}

QFont::Weight weightOf(TextStyle style) {
    switch (style) {
    case TextStyle::title:
    case TextStyle::title2:
        return QFont::DemiBold;
    case TextStyle::headline:
        return QFont::Bold;
    case TextStyle::bodyMedium:
        return QFont::Medium;
    default:
        return QFont::Normal;
    }
}

// Style sheets resolve colours once, and widgets with one are not told when the application
// palette changes. Each of these rebuilds its widget's sheet from the new palette; one watcher on
// the application tells them all.
class PaletteStyleSheet final : public QObject {
public:
    PaletteStyleSheet(QWidget &widget, std::function<QString(const QPalette &)> build)
        : QObject(&widget), widget_(widget), build_(std::move(build)) {
        watcher().sheets.push_back(this);
        apply();
    }
    ~PaletteStyleSheet() override { std::erase(watcher().sheets, this); }

private:
    struct Watcher final : QObject {
        // Never deleted, so sheets that outlive the application can still sign off.
        Watcher() {
            if (qApp)
                qApp->installEventFilter(this);
        }
        bool eventFilter(QObject *watched, QEvent *event) override {
            if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
                for (PaletteStyleSheet *sheet : std::vector(sheets))
                    sheet->apply();
            return false;
        }
        std::vector<PaletteStyleSheet *> sheets;
    };
    static Watcher &watcher() {
        static Watcher *const instance = new Watcher;
        return *instance;
    }

    void apply() {
        const QString sheet = build_(QApplication::palette());
        if (sheet != widget_.styleSheet())
            widget_.setStyleSheet(sheet);
    }

    QWidget &widget_;
    std::function<QString(const QPalette &)> build_;
};

// Push buttons with a little more room either side of their titles than the base style gives.
class RoomyButtonStyle final : public QProxyStyle {
public:
    using QProxyStyle::QProxyStyle;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override {
        QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
        if (type == CT_PushButton) {
            const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
            const auto *pushButton = qobject_cast<const QPushButton *>(widget);
            // Checkable buttons sit side by side in a row of choices, so they stay more compact.
            const int extra = pushButton && pushButton->isCheckable() ? compactPadding : extraPadding;
            if (button && !(button->features & QStyleOptionButton::Flat))
                result.rwidth() += 2 * extra;
        }
        return result;
    }

private:
    static constexpr int extraPadding = 6;
    static constexpr int compactPadding = 2;
};

} // namespace

QString cssColour(const QColor &colour) {
    return QStringLiteral("rgba(%1, %2, %3, %4)")
        .arg(colour.red())
        .arg(colour.green())
        .arg(colour.blue())
        .arg(colour.alpha());
}

QColor separatorColour(const QPalette &palette, double strength) {
    QColor colour = palette.color(QPalette::WindowText);
    colour.setAlphaF(static_cast<float>(strength));
    return colour;
}

void followPalette(QWidget &widget, std::function<QString(const QPalette &)> buildStyleSheet) {
    new PaletteStyleSheet(widget, std::move(buildStyleSheet));
}

void giveButtonsRoom(QWidget &window) {
    // Owned by the application, and made again should a new one have been started since.
    static QPointer<QStyle> roomy;
    if (!roomy) {
        roomy = new RoomyButtonStyle;
        roomy->setParent(qApp);
    }
    for (QPushButton *button : window.findChildren<QPushButton *>())
        if (!button->isFlat() && button->styleSheet().isEmpty())
            button->setStyle(roomy);
}

QFont font(TextStyle style) {
    QFont result = QApplication::font();
    const double base = result.pointSizeF() > 0 ? result.pointSizeF() : 10.0;
    result.setPointSizeF(base * scaleOf(style));
    result.setWeight(weightOf(style));
    return result;
}

QLabel *label(const QString &text, TextStyle style, bool secondary, QWidget *parent) {
    auto *result = new QLabel(text, parent);
    result->setFont(font(style));
    result->setWordWrap(true);
    result->setTextFormat(Qt::PlainText);
    if (secondary)
        makeSecondary(*result);
    return result;
}

void makeSecondary(QLabel &label) {
    // A palette role rather than a fixed colour, so the text follows theme switches.
    label.setForegroundRole(QPalette::PlaceholderText);
}

void makeSelectable(QLabel &label) {
    label.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

QPushButton *linkButton(const QString &title, QWidget *parent) {
    auto *button = new QPushButton(title, parent);
    button->setFlat(true);
    button->setCursor(Qt::PointingHandCursor);
    button->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    followPalette(*button, [](const QPalette &palette) {
        // Between the disabled and the secondary text colours: clearly inactive, still readable.
        const QColor disabled = palette.color(QPalette::Disabled, QPalette::WindowText);
        const QColor secondary = palette.color(QPalette::PlaceholderText);
        const QColor inactive(
            (disabled.red() + secondary.red()) / 2, (disabled.green() + secondary.green()) / 2,
            (disabled.blue() + secondary.blue()) / 2, (disabled.alpha() + secondary.alpha()) / 2);
        return QStringLiteral("QPushButton { color: %1; border: none; padding: 0px; text-align: left; }"
                              "QPushButton:disabled { color: %2; }")
            .arg(cssColour(palette.color(QPalette::Link)), cssColour(inactive));
    });
    return button;
}

void frameAsBox(QWidget &widget, BoxFill fill) {
    if (widget.objectName().isEmpty())
        widget.setObjectName(QStringLiteral("welcomeBox"));
    const QString name = widget.objectName();
    followPalette(widget, [name, fill](const QPalette &palette) {
        const QColor background =
            palette.color(fill == BoxFill::textBackground ? QPalette::Base : QPalette::Button);
        return QStringLiteral("#%1 { background: %2; border: 1px solid %3; border-radius: 6px; }")
            .arg(name, cssColour(background), cssColour(separatorColour(palette, 0.25)));
    });
}

} // namespace glyphmill::welcomeStyle
