#include "ui/WelcomeGuide.h"

#include "platform/PlatformServices.h"
#include "settings/AppSettings.h"
#include "settings/preferences/ProtectedTermsStore.h"
#include "ui/AppIcons.h"
#include "ui/DesktopMotionSetting.h"
#include "ui/OnboardingView.h"
#include "ui/WelcomeGuideStyle.h"
#include "ui/WindowActions.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>

namespace glyphmill {

namespace {

class WelcomeWindow;

struct GuideState {
    WelcomeGuideEnvironment environment;
    ProtectedTermsStore *rememberedStore = nullptr;
    // A store the guide made itself because none was handed over.
    std::unique_ptr<ProtectedTermsStore> ownStore;
    QPointer<WelcomeWindow> window;
    // Set only while the guide closes itself, so the close-box handling leaves it alone.
    bool finishing = false;
};

// Lives for the whole run, like the window it refers to.
GuideState &state() {
    static auto *guide = new GuideState;
    return *guide;
}

AppSettings &settings() {
    return state().environment.settings ? *state().environment.settings : AppSettings::shared();
}

Pasteboard &pasteboard() {
    return state().environment.pasteboard ? *state().environment.pasteboard : *platformServices().pasteboard;
}

bool reduceMotion() {
    // Asks the desktop only when nobody decided, since that may start a process.
    const std::optional<bool> &decided = state().environment.reduceMotion;
    return decided ? *decided : desktopPrefersReducedMotion();
}

ProtectedTermsStore &rememberedOrNewStore() {
    GuideState &guide = state();
    if (!guide.rememberedStore) {
        PreferenceStore &preferences =
            guide.environment.preferences ? *guide.environment.preferences : *platformServices().preferences;
        guide.ownStore = std::make_unique<ProtectedTermsStore>(preferences);
        guide.rememberedStore = guide.ownStore.get();
    }
    return *guide.rememberedStore;
}

void forgetWindow();
void openSettingsFromGuide();

class WelcomeWindow final : public QWidget {
public:
    WelcomeWindow(const OnboardingContext &context, QSize size)
        : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                               Qt::WindowCloseButtonHint | Qt::WindowMinimizeButtonHint) {
        setWindowTitle(QCoreApplication::translate("glyphmill::WelcomeGuide", "Welcome to Glyphmill"));
        setWindowIcon(appIcons::applicationIcon());
        setFixedSize(size);
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(new OnboardingView(context, finishWelcomeGuide, openSettingsFromGuide, this));
        welcomeStyle::giveButtonsRoom(*this);
    }

protected:
    void closeEvent(QCloseEvent *event) override {
        QWidget::closeEvent(event);
        // Decided after the close has run: the guide's own finishing has forgotten the window
        // already; a close from the close box forgets it here, leaving onboarding unfinished.
        QTimer::singleShot(0, qApp, [closed = QPointer<WelcomeWindow>(this)] {
            // A guide shown again before this step ran stays.
            if (!state().finishing && closed && state().window == closed && !closed->isVisible())
                forgetWindow();
        });
    }
};

void forgetWindow() {
    if (WelcomeWindow *window = state().window) {
        state().window = nullptr;
        window->deleteLater();
    }
}

void openSettingsFromGuide() {
    ProtectedTermsStore &store = rememberedOrNewStore();
    finishWelcomeGuide();
    if (windowActions().showSettingsWindow)
        windowActions().showSettingsWindow(store);
}

void bringForward(QWidget &window) {
    if (window.isMinimized())
        window.showNormal();
    window.show();
    window.raise();
    window.activateWindow();
}

} // namespace

QSize welcomeGuideSize(std::optional<QSize> availableScreenSize) {
    if (!availableScreenSize)
        return {520, 480};
    return {std::clamp(availableScreenSize->width() - 48, 420, 520),
            std::clamp(availableScreenSize->height() - 48, 320, 480)};
}

void showWelcomeGuideIfNeeded(ProtectedTermsStore &store) {
    state().rememberedStore = &store;
    if (!settings().onboardingCompleted())
        showWelcomeGuide(nullptr);
}

void showWelcomeGuide(ProtectedTermsStore *store) {
    GuideState &guide = state();
    if (store)
        guide.rememberedStore = store;
    if (guide.window) {
        bringForward(*guide.window);
        return;
    }
    const OnboardingContext context{settings(), rememberedOrNewStore(), pasteboard(), reduceMotion()};
    QScreen *screen = QGuiApplication::primaryScreen();
    const std::optional<QSize> available =
        screen ? std::optional<QSize>(screen->availableGeometry().size()) : std::nullopt;
    auto *window = new WelcomeWindow(context, welcomeGuideSize(available));
    if (screen) {
        QRect frame(QPoint(), window->size());
        frame.moveCenter(screen->availableGeometry().center());
        window->move(frame.topLeft());
    }
    guide.window = window;
    bringForward(*window);
}

void finishWelcomeGuide() {
    GuideState &guide = state();
    guide.finishing = true;
    settings().setOnboardingCompleted(true);
    if (WelcomeWindow *window = guide.window) {
        window->close();
        forgetWindow();
    }
    guide.finishing = false;
}

QWidget *existingWelcomeWindow() {
    return state().window.data();
}

void setWelcomeGuideEnvironment(const WelcomeGuideEnvironment &environment) {
    GuideState &guide = state();
    delete guide.window.data();
    guide.window = nullptr;
    // Windows forgotten earlier may still be waiting for deletion, observing the own store.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    guide.rememberedStore = nullptr;
    guide.ownStore.reset();
    guide.environment = environment;
}

} // namespace glyphmill
