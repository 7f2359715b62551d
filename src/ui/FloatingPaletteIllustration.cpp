#include "ui/FloatingPaletteIllustration.h"

#include "ui/WelcomeGuideStyle.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace glyphmill {

using welcomeStyle::TextStyle;

namespace {

QLabel *chip(const QString &title, bool highlighted, QWidget *parent) {
    auto *label = new QLabel(title, parent);
    label->setFont(welcomeStyle::font(TextStyle::caption));
    label->setObjectName(QStringLiteral("paletteChip"));
    // The highlighted chip is tinted with the accent colour, the others with a faint grey.
    welcomeStyle::followPalette(*label, [highlighted](const QPalette &palette) {
        QColor fill = highlighted ? palette.color(QPalette::Highlight) : QColor(128, 128, 128);
        fill.setAlpha(46);
        return QStringLiteral("#paletteChip { background: %1; border-radius: 6px; padding: 4px 8px; }")
            .arg(welcomeStyle::cssColour(fill));
    });
    return label;
}

} // namespace

FloatingPaletteIllustration::FloatingPaletteIllustration(const QString &source, const QStringList &labels,
                                                         QWidget *parent)
    : QWidget(parent) {
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);

    QLabel *sourceLabel = welcomeStyle::label(source, TextStyle::body, true, this);
    welcomeStyle::makeSelectable(*sourceLabel);
    sourceLabel->setAccessibleName(tr("Example original text"));
    sourceLabel->setAccessibleDescription(source);
    layout->addWidget(sourceLabel);

    auto *palette = new QFrame(this);
    palette->setObjectName(QStringLiteral("mockPalette"));
    welcomeStyle::followPalette(*palette, [](const QPalette &colours) {
        return QStringLiteral("#mockPalette { background: %1; border: 1px solid %2; border-radius: 8px; }")
            .arg(welcomeStyle::cssColour(colours.color(QPalette::AlternateBase)),
                 welcomeStyle::cssColour(welcomeStyle::separatorColour(colours, 0.25)));
    });
    palette->setAccessibleName(
        tr("Example palette showing Smart Case, Title Case, UPPERCASE, and lowercase"));
    auto *chips = new QHBoxLayout(palette);
    chips->setContentsMargins(8, 8, 8, 8);
    chips->setSpacing(6);
    for (qsizetype index = 0; index < labels.size(); ++index)
        chips->addWidget(chip(labels[index], index == 0, palette));
    chips->addStretch(1);
    layout->addWidget(palette);

    result_ = welcomeStyle::label(QString(), TextStyle::bodyMedium, false, this);
    welcomeStyle::makeSelectable(*result_);
    result_->setAccessibleName(tr("Example result"));
    layout->addWidget(result_);
}

void FloatingPaletteIllustration::setResult(const QString &result) {
    result_->setText(result);
    result_->setAccessibleDescription(result);
}

QString FloatingPaletteIllustration::result() const {
    return result_->text();
}

} // namespace glyphmill
