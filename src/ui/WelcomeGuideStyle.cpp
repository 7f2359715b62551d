#include "ui/WelcomeGuideStyle.h"

#include <QApplication>
#include <QLabel>
#include <QPalette>
#include <QPushButton>

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

} // namespace

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
    QPalette palette = label.palette();
    QColor colour = palette.color(QPalette::WindowText);
    colour.setAlphaF(0.65f);
    palette.setColor(QPalette::WindowText, colour);
    label.setPalette(palette);
}

void makeSelectable(QLabel &label) {
    label.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

QPushButton *linkButton(const QString &title, QWidget *parent) {
    auto *button = new QPushButton(title, parent);
    button->setFlat(true);
    button->setCursor(Qt::PointingHandCursor);
    button->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    button->setStyleSheet(QStringLiteral("QPushButton { color: palette(link); border: none; padding: 0px; "
                                         "text-align: left; }"));
    return button;
}

void frameAsBox(QWidget &widget, BoxFill fill) {
    if (widget.objectName().isEmpty())
        widget.setObjectName(QStringLiteral("welcomeBox"));
    const QString background =
        fill == BoxFill::textBackground ? QStringLiteral("palette(base)") : QStringLiteral("palette(button)");
    widget.setStyleSheet(QStringLiteral("#%1 { background: %2; border: 1px solid palette(mid); "
                                        "border-radius: 6px; }")
                             .arg(widget.objectName(), background));
}

} // namespace glyphmill::welcomeStyle
