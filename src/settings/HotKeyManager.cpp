#include "settings/HotKeyManager.h"

#include "platform/PlatformServices.h"
#include "settings/AppSettings.h"

#include <QMetaObject>
#include <QPointer>

namespace glyphmill {

namespace {

struct HotKeyAction {
    std::uint32_t id;
    KeyboardShortcutID shortcut;
};

// The registration order.
constexpr std::array<HotKeyAction, 4> hotKeyActions{{
    {HotKeyManager::titleCaseID, KeyboardShortcutID::titleCase},
    {HotKeyManager::paletteID, KeyboardShortcutID::palette},
    {HotKeyManager::captureID, KeyboardShortcutID::screenCapture},
    {HotKeyManager::pastePlainTextID, KeyboardShortcutID::pastePlainText},
}};

std::size_t slotOf(std::uint32_t id) {
    return id - 1;
}

bool isKnownID(std::uint32_t id) {
    return id >= HotKeyManager::titleCaseID && id <= HotKeyManager::pastePlainTextID;
}

// The settings' flags are written from a later main-thread task, not inside the registration.
void queueRegistrationFlags(AppSettings &settings, std::array<bool, 4> failed) {
    QMetaObject::invokeMethod(
        &settings,
        [&settings, failed] {
            for (std::size_t slot = 0; slot < hotKeyActions.size(); ++slot)
                settings.setShortcutRegistrationFailed(hotKeyActions[slot].shortcut, failed[slot]);
        },
        Qt::QueuedConnection);
}

} // namespace

HotKeyManager::HotKeyManager(HotKeyGrabber &grabber, AppSettings &settings, QObject *parent)
    : QObject(parent), grabber_(grabber), settings_(settings) {}

HotKeyManager::~HotKeyManager() {
    unregisterHotKeys();
}

void HotKeyManager::registerHotKeys() {
    unregisterHotKeys();
    if (!grabber_.isAvailable()) {
        queueRegistrationFlags(settings_, {true, true, true, true});
        return;
    }
    grabber_.setPressHandler([this](const KeyboardShortcutChord &chord) { handlePress(chord); });
    pressHandlerInstalled_ = true;

    std::array<bool, 4> failed{};
    for (const auto &action : hotKeyActions) {
        const KeyboardShortcutChord chord = settings_.shortcut(action.shortcut);
        const bool grabbed = grabber_.grab(chord);
        if (grabbed)
            registeredChords_[slotOf(action.id)] = chord;
        failed[slotOf(action.id)] = !grabbed;
    }
    queueRegistrationFlags(settings_, failed);
}

void HotKeyManager::unregisterHotKeys() {
    for (auto &chord : registeredChords_) {
        if (chord) {
            grabber_.ungrab(*chord);
            chord.reset();
        }
    }
    if (pressHandlerInstalled_) {
        grabber_.setPressHandler(nullptr);
        pressHandlerInstalled_ = false;
    }
}

bool HotKeyManager::isRegistered(std::uint32_t id) const {
    return isKnownID(id) && registeredChords_[slotOf(id)].has_value();
}

void HotKeyManager::handlePress(const KeyboardShortcutChord &chord) {
    for (const auto &action : hotKeyActions) {
        if (registeredChords_[slotOf(action.id)] == chord) {
            handleHotKey(action.id);
            return;
        }
    }
}

bool HotKeyManager::handleHotKey(std::uint32_t id) {
    // The context object makes each task a no-op once the manager is gone.
    switch (id) {
    case titleCaseID:
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (titleCaseAction)
                    titleCaseAction();
            },
            Qt::QueuedConnection);
        return true;
    case paletteID:
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (onOpenPalette)
                    onOpenPalette();
            },
            Qt::QueuedConnection);
        return true;
    case captureID:
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (onCaptureScreen)
                    onCaptureScreen();
            },
            Qt::QueuedConnection);
        return true;
    case pastePlainTextID: {
        const KeyboardShortcutChord chord = registeredChords_[slotOf(pastePlainTextID)].value_or(
            settings_.shortcut(KeyboardShortcutID::pastePlainText));
        QMetaObject::invokeMethod(
            this,
            [this, chord] {
                grabber_.afterChordReleased(chord, [manager = QPointer<HotKeyManager>(this)] {
                    if (manager && manager->pastePlainTextAction)
                        manager->pastePlainTextAction();
                });
            },
            Qt::QueuedConnection);
        return true;
    }
    default:
        return false;
    }
}

HotKeyManager &HotKeyManager::shared() {
    static HotKeyManager *instance = [] {
        auto &settings = AppSettings::shared();
        auto *manager = new HotKeyManager(installedHotKeyGrabber(), settings);
        settings.setHotKeyReregistration([manager] { manager->registerHotKeys(); });
        return manager;
    }();
    return *instance;
}

} // namespace glyphmill
