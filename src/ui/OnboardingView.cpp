#include "ui/OnboardingView.h"

#include "ui/WelcomeGuideFooter.h"
#include "ui/WelcomeGuidePages.h"
#include "ui/WelcomeSamplePage.h"

#include <QFrame>
#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QLayout>
#include <QParallelAnimationGroup>
#include <QPropertyAnimation>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace glyphmill {

namespace {
constexpr int pagePadding = 16;
constexpr int samplePageIndex = 1;
constexpr int palettePageIndex = 2;
constexpr int readyPageIndex = 3;

QPropertyAnimation *fade(QWidget &widget, double from, double to, QObject *parent) {
    auto *effect = new QGraphicsOpacityEffect(&widget);
    effect->setOpacity(from);
    widget.setGraphicsEffect(effect);
    auto *animation = new QPropertyAnimation(effect, "opacity", parent);
    animation->setDuration(static_cast<int>(OnboardingView::pageTransition.count()));
    animation->setStartValue(from);
    animation->setEndValue(to);
    animation->setEasingCurve(QEasingCurve::InOutQuad);
    return animation;
}
} // namespace

OnboardingView::OnboardingView(OnboardingContext context, std::function<void()> onFinish,
                               std::function<void()> onOpenSettings, QWidget *parent)
    : QWidget(parent), context_(context), onFinish_(std::move(onFinish)),
      onOpenSettings_(std::move(onOpenSettings)) {
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    scroll_ = new QScrollArea(this);
    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    layout->addWidget(scroll_, 1);

    auto *divider = new QFrame(this);
    divider->setFrameShape(QFrame::HLine);
    divider->setFrameShadow(QFrame::Sunken);
    layout->addWidget(divider);

    footer_ = new WelcomeGuideFooter(this);
    layout->addWidget(footer_);

    pages_ = {makeIntroductionPage(this), new WelcomeSamplePage(context_, this),
              new PaletteAndServicesPage(context_, this), new ReadyPage(context_, this)};
    for (QWidget *page : pages_) {
        auto *pageLayout = static_cast<QBoxLayout *>(page->layout());
        pageLayout->setContentsMargins(pagePadding, pagePadding, pagePadding, pagePadding);
        // Short pages sit at the top of the scroll view.
        pageLayout->addStretch(1);
        page->hide();
    }

    connect(footer_, &WelcomeGuideFooter::backRequested, this, &OnboardingView::back);
    connect(footer_, &WelcomeGuideFooter::primaryRequested, this, &OnboardingView::primary);
    connect(footer_, &WelcomeGuideFooter::openSettingsRequested, this, [this] {
        if (onOpenSettings_)
            onOpenSettings_();
    });
    showPage(0, false);
}

OnboardingView::~OnboardingView() {
    // The pages hold the context by reference, so they go while it is still here.
    endPageAnimation();
    for (QWidget *page : pages_)
        delete page;
}

WelcomeSamplePage &OnboardingView::samplePage() const {
    return *static_cast<WelcomeSamplePage *>(pages_[samplePageIndex]);
}

PaletteAndServicesPage &OnboardingView::paletteAndServicesPage() const {
    return *static_cast<PaletteAndServicesPage *>(pages_[palettePageIndex]);
}

ReadyPage &OnboardingView::readyPage() const {
    return *static_cast<ReadyPage *>(pages_[readyPageIndex]);
}

void OnboardingView::setPage(int page) {
    const int clamped = std::clamp(page, 0, pageCount - 1);
    if (clamped == page_)
        return;
    showPage(clamped, !context_.reduceMotion);
}

void OnboardingView::back() {
    setPage(page_ - 1);
}

void OnboardingView::primary() {
    if (page_ < pageCount - 1) {
        setPage(page_ + 1);
        return;
    }
    if (onFinish_)
        onFinish_();
}

void OnboardingView::showPage(int page, bool animated) {
    endPageAnimation();
    QPixmap outgoing;
    if (animated && isVisible())
        outgoing = scroll_->viewport()->grab();

    if (QWidget *previous = scroll_->takeWidget()) {
        // Taken back as a hidden child so it keeps its state for the next visit.
        previous->setParent(this);
        previous->hide();
    }
    page_ = page;
    scroll_->setWidget(pages_[static_cast<std::size_t>(page)]);
    pages_[static_cast<std::size_t>(page)]->show();
    scroll_->verticalScrollBar()->setValue(0);
    footer_->setPage(page);

    if (!animated || !isVisible())
        return;
    auto *group = new QParallelAnimationGroup(this);
    group->addAnimation(fade(*pages_[static_cast<std::size_t>(page)], 0.0, 1.0, group));
    if (!outgoing.isNull()) {
        fadingSnapshot_ = new QLabel(scroll_->viewport());
        fadingSnapshot_->setPixmap(outgoing);
        fadingSnapshot_->setGeometry(scroll_->viewport()->rect());
        fadingSnapshot_->setAttribute(Qt::WA_TransparentForMouseEvents);
        fadingSnapshot_->show();
        fadingSnapshot_->raise();
        group->addAnimation(fade(*fadingSnapshot_, 1.0, 0.0, group));
    }
    connect(group, &QAbstractAnimation::finished, this, &OnboardingView::endPageAnimation);
    animation_ = group;
    group->start();
}

void OnboardingView::endPageAnimation() {
    if (QAbstractAnimation *running = animation_) {
        animation_ = nullptr;
        running->stop();
        running->deleteLater();
    }
    if (fadingSnapshot_) {
        fadingSnapshot_->hide();
        fadingSnapshot_->deleteLater();
    }
    fadingSnapshot_ = nullptr;
    for (QWidget *page : pages_)
        page->setGraphicsEffect(nullptr);
}

} // namespace glyphmill
