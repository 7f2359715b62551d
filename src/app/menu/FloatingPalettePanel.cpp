#include "app/menu/FloatingPalettePanel.h"

#include "app/menu/PaletteGlyphs.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QStylePainter>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace glyphmill {

const QString FloatingPalettePanel::title = QStringLiteral("Glyphmill");

namespace {

constexpr int contentPadding = 14;
constexpr int rowSpacing = 10;
constexpr int modeIconSize = 18;
constexpr int modeContentInset = 10;

// A bordered button whose icon and title sit at its leading edge rather than in its middle.
class ModeButton final : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void paintEvent(QPaintEvent *) override {
        QStylePainter painter(this);
        QStyleOptionButton bevel;
        initStyleOption(&bevel);
        bevel.text.clear();
        bevel.icon = QIcon();
        painter.drawControl(QStyle::CE_PushButton, bevel);

        const QRect content = rect().adjusted(modeContentInset, 0, -modeContentInset, 0);
        const QIcon::Mode mode = isEnabled() ? QIcon::Normal : QIcon::Disabled;
        const QRect iconRect(content.left(), content.center().y() - modeIconSize / 2 + 1, modeIconSize,
                             modeIconSize);
        icon().paint(&painter, iconRect, Qt::AlignCenter, mode);
        const QRect textRect = content.adjusted(modeIconSize + 8, 0, 0, 0);
        painter.drawItemText(textRect, Qt::AlignVCenter | Qt::AlignLeft, palette(), isEnabled(), text(),
                             QPalette::ButtonText);
    }
};

QFont headlineFont(const QFont &base) {
    QFont font = base;
    font.setBold(true);
    font.setPointSizeF(base.pointSizeF() + 1);
    return font;
}

QFont captionFont(const QFont &base) {
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() - 1);
    return font;
}

void useSecondaryTextColor(QWidget &widget) {
    QPalette palette = widget.palette();
    palette.setColor(QPalette::WindowText, palette.color(QPalette::PlaceholderText));
    widget.setPalette(palette);
}

} // namespace

FloatingPalettePanel::FloatingPalettePanel(FloatingPaletteView view)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      view_(std::move(view)) {
    setWindowTitle(title);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(contentPadding, contentPadding, contentPadding, contentPadding);
    layout->setSpacing(rowSpacing);
    buildHeader(*layout);
    buildHint(*layout);
    buildModeButtons(*layout);
    layout->addStretch(1);
    // The heights fit the usual desktop fonts; larger fonts make the palette taller rather
    // than cut the hint or the last button off.
    const QSize nominal = sizeFor(view_.hasText);
    setFixedSize(nominal.width(), std::max(nominal.height(), layout->totalHeightForWidth(nominal.width())));
}

QSize FloatingPalettePanel::sizeFor(bool hasText) {
    return {panelWidth, hasText ? heightWithText : heightWithoutText};
}

QString FloatingPalettePanel::helpText(TextTransformKind kind) {
    switch (kind) {
    case TextTransformKind::smartCase:
        return tr("Fix inconsistent capitalization while protecting brands and links");
    case TextTransformKind::titleCase:
        return tr("Capitalize significant words for titles");
    case TextTransformKind::uppercase:
        return tr("Convert to uppercase");
    case TextTransformKind::lowercase:
        return tr("Convert to lowercase");
    case TextTransformKind::capitalizeWords:
        return tr("Capitalize every word");
    }
    return {};
}

void FloatingPalettePanel::placeAt(QPoint topLeft) {
    intendedPosition_ = topLeft;
    move(topLeft);
}

void FloatingPalettePanel::buildHeader(QVBoxLayout &layout) {
    auto *row = new QHBoxLayout;
    row->setSpacing(6);
    auto *heading = new QLabel(title, this);
    heading->setFont(headlineFont(font()));
    row->addWidget(heading, 0, Qt::AlignVCenter);
    row->addStretch(1);

    auto *close = new QToolButton(this);
    close->setAutoRaise(true);
    close->setIcon(paletteGlyphs::closeIcon(palette()));
    close->setIconSize({16, 16});
    close->setFixedSize(20, 20);
    close->setAccessibleName(tr("Close"));
    close->setToolTip(tr("Close"));
    close->setFocusPolicy(Qt::NoFocus);
    connect(close, &QToolButton::clicked, this, [this] {
        if (view_.onDismiss)
            view_.onDismiss();
    });
    closeButton_ = close;
    row->addWidget(close, 0, Qt::AlignVCenter);
    layout.addLayout(row);
}

void FloatingPalettePanel::buildHint(QVBoxLayout &layout) {
    hintLabel_ = new QLabel(view_.hasText ? tr("Transform clipboard text")
                                          : tr("Copy text first, then choose a conversion. For in-place "
                                               "transforms, use the glyphmill service command."),
                            this);
    hintLabel_->setFont(captionFont(font()));
    hintLabel_->setWordWrap(true);
    useSecondaryTextColor(*hintLabel_);
    if (view_.hasText) {
        layout.addWidget(hintLabel_);
        return;
    }
    // The hint and its help button read as one block.
    auto *block = new QVBoxLayout;
    block->setSpacing(2);
    block->addWidget(hintLabel_);
    // A tool button: bordered like a push button, but as compact as the caption it belongs to.
    auto *help = new QToolButton(this);
    help->setText(tr("How to Use Services\u2026"));
    help->setFont(captionFont(font()));
    help->setToolButtonStyle(Qt::ToolButtonTextOnly);
    servicesHelpButton_ = help;
    connect(help, &QToolButton::clicked, this, [this] {
        if (view_.onServicesHelp)
            view_.onServicesHelp();
    });
    block->addWidget(servicesHelpButton_, 0, Qt::AlignLeft);
    layout.addLayout(block);
}

void FloatingPalettePanel::buildModeButtons(QVBoxLayout &layout) {
    for (const TextTransformKind kind : view_.modes) {
        const QString modeTitle = QString::fromStdU16String(std::u16string(displayTitle(kind)));
        auto *button = new ModeButton(paletteGlyphs::modeIcon(kind, palette()), modeTitle, this);
        button->setToolTip(helpText(kind));
        button->setAccessibleName(modeTitle);
        button->setAccessibleDescription(helpText(kind));
        button->setEnabled(view_.hasText);
        button->setAutoDefault(false);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        connect(button, &QPushButton::clicked, this, [this, kind] {
            if (view_.onTransform)
                view_.onTransform(kind);
        });
        modeButtons_.push_back(button);
        layout.addWidget(button);
    }
}

void FloatingPalettePanel::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    // A thin rim in a faint text colour, so the edge shows on light and dark desktops.
    QColor rim = palette().color(QPalette::WindowText);
    rim.setAlphaF(0.25f);
    painter.setPen(rim);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void FloatingPalettePanel::showEvent(QShowEvent *event) {
    QWidget::showEvent(event);
    move(intendedPosition_);
}

} // namespace glyphmill
