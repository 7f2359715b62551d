#include "ui/WelcomeGuideFooter.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace glyphmill {

namespace {
constexpr int dotSize = 7;
constexpr int dotSpacing = 6;
} // namespace

DefaultActionShortcut::DefaultActionShortcut(QPushButton &button)
    : QObject(&button), button_(button), returnKey_(new QShortcut(QKeySequence(Qt::Key_Return), &button)),
      enterKey_(new QShortcut(QKeySequence(Qt::Key_Enter), &button)) {
    for (QShortcut *key : {returnKey_, enterKey_}) {
        key->setContext(Qt::WindowShortcut);
        connect(key, &QShortcut::activated, this, [this] {
            if (button_.isVisible() && button_.isEnabled())
                button_.click();
        });
    }
    setEnabled(true);
}

void DefaultActionShortcut::setEnabled(bool enabled) {
    enabled_ = enabled;
    returnKey_->setEnabled(enabled);
    enterKey_->setEnabled(enabled);
    button_.setDefault(enabled);
}

PageDots::PageDots(int pageCount, QWidget *parent) : QWidget(parent), pageCount_(pageCount) {
    setFixedSize(pageCount * dotSize + (pageCount - 1) * dotSpacing, dotSize);
    setPage(0);
}

void PageDots::setPage(int page) {
    page_ = page;
    setAccessibleName(tr("Step %1 of %2").arg(page + 1).arg(pageCount_));
    update();
}

void PageDots::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QColor other = palette().color(QPalette::WindowText);
    other.setAlphaF(0.35f * 0.65f);
    for (int index = 0; index < pageCount_; ++index) {
        painter.setBrush(index == page_ ? palette().color(QPalette::Highlight) : other);
        painter.drawEllipse(QRectF(index * (dotSize + dotSpacing), 0, dotSize, dotSize));
    }
}

WelcomeGuideFooter::WelcomeGuideFooter(QWidget *parent) : QWidget(parent) {
    // The dots sit on a row of their own, centred, so the buttons beside them on the last page
    // cannot push them off centre.
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(16, 10, 16, 12);
    column->setSpacing(10);
    dots_ = new PageDots(pageCount, this);
    column->addWidget(dots_, 0, Qt::AlignHCenter);
    auto *layout = new QHBoxLayout;
    layout->setSpacing(12);
    column->addLayout(layout);

    back_ = new QPushButton(tr("Back"), this);
    back_->setAutoDefault(false);
    // Keeps its place while hidden on the first page, so the row keeps its height.
    QSizePolicy keepsSpace = back_->sizePolicy();
    keepsSpace.setRetainSizeWhenHidden(true);
    back_->setSizePolicy(keepsSpace);
    layout->addWidget(back_);
    layout->addStretch(1);

    openSettings_ = new QPushButton(tr("Open Settings"), this);
    openSettings_->setAutoDefault(false);
    layout->addWidget(openSettings_);
    primary_ = new QPushButton(this);
    primary_->setAutoDefault(false);
    layout->addWidget(primary_);
    defaultAction_ = new DefaultActionShortcut(*primary_);

    connect(back_, &QPushButton::clicked, this, &WelcomeGuideFooter::backRequested);
    connect(openSettings_, &QPushButton::clicked, this, &WelcomeGuideFooter::openSettingsRequested);
    connect(primary_, &QPushButton::clicked, this, &WelcomeGuideFooter::primaryRequested);
    setPage(0);
}

void WelcomeGuideFooter::setPage(int page) {
    const bool first = page == 0;
    back_->setEnabled(!first);
    back_->setVisible(!first);
    dots_->setPage(page);
    const bool last = page == pageCount - 1;
    openSettings_->setVisible(last);
    primary_->setText(last ? tr("Start Using Glyphmill") : tr("Continue"));
    // On the sample page Return belongs to the text editor.
    defaultAction_->setEnabled(page != 1);
}

} // namespace glyphmill
