// The guide's content: the current page in a scroll view above the footer. It keeps the page
// number and the sample's state for as long as the window lives.
#pragma once

#include "ui/OnboardingContext.h"

#include <QAbstractAnimation>
#include <QLabel>
#include <QPointer>
#include <QWidget>

#include <array>
#include <chrono>
#include <functional>

class QScrollArea;

namespace glyphmill {

class PaletteAndServicesPage;
class ReadyPage;
class WelcomeGuideFooter;
class WelcomeSamplePage;

class OnboardingView final : public QWidget {
    Q_OBJECT
public:
    static constexpr int pageCount = 4;
    static constexpr std::chrono::milliseconds pageTransition{180};

    // onFinish runs from the last page's primary button; onOpenSettings from Open Settings.
    OnboardingView(OnboardingContext context, std::function<void()> onFinish,
                   std::function<void()> onOpenSettings, QWidget *parent = nullptr);
    ~OnboardingView() override;

    int page() const { return page_; }
    // Clamped to the pages there are; fades unless reduced motion was asked for.
    void setPage(int page);
    void back();
    // Continue on the first pages, finish on the last.
    void primary();
    bool isAnimatingPageChange() const { return animation_ != nullptr; }

    WelcomeGuideFooter &footer() const { return *footer_; }
    WelcomeSamplePage &samplePage() const;
    PaletteAndServicesPage &paletteAndServicesPage() const;
    ReadyPage &readyPage() const;

private:
    void showPage(int page, bool animated);
    void endPageAnimation();

    OnboardingContext context_;
    std::function<void()> onFinish_;
    std::function<void()> onOpenSettings_;
    int page_ = 0;
    std::array<QWidget *, pageCount> pages_{};
    QScrollArea *scroll_ = nullptr;
    WelcomeGuideFooter *footer_ = nullptr;
    QPointer<QAbstractAnimation> animation_;
    QPointer<QLabel> fadingSnapshot_;
};

} // namespace glyphmill
