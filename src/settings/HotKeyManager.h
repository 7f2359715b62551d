// Makes the four shortcut chords work system-wide: registers them with the hot-key grabber,
// records per chord whether that worked (the registration-failed flags of AppSettings), and turns
// a press into its action. Every action runs later on the main thread, never inside the press.
#pragma once

#include "common/KeyboardShortcut.h"
#include "platform/HotKeyGrabber.h"

#include <QObject>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>

namespace glyphmill {

class AppSettings;

class HotKeyManager final : public QObject {
    Q_OBJECT

public:
    static constexpr std::uint32_t titleCaseID = 1;
    static constexpr std::uint32_t paletteID = 2;
    static constexpr std::uint32_t captureID = 3;
    static constexpr std::uint32_t pastePlainTextID = 4;

    // Registers nothing yet.
    HotKeyManager(HotKeyGrabber &grabber, AppSettings &settings, QObject *parent = nullptr);
    ~HotKeyManager() override;

    // Made on first use over the installed grabber and the shared settings, with the settings'
    // chord changes wired to registerHotKeys. Never destroyed.
    static HotKeyManager &shared();

    // Removes the current registrations, then registers the four chords in the order Title Case,
    // palette, screen capture, Paste as Plain Text; a refused chord does not stop the others.
    // The four registration-failed flags are set in a later main-thread task; all four are raised
    // when the system offers no hot keys at all.
    void registerHotKeys();
    // Leaves the registration-failed flags as they are.
    void unregisterHotKeys();
    // Schedules the action of a hot-key id; false, doing nothing, for an id other than 1 to 4.
    bool handleHotKey(std::uint32_t id);
    bool isRegistered(std::uint32_t id) const;

    // Set once by the application; an unset one makes its hot key do nothing.
    std::function<void()> onOpenPalette;
    std::function<void()> onCaptureScreen;
    // Run on the clipboard; set by the application, which knows the clipboard controllers. The
    // paste action runs only once the chord's keys are up, so the paste keystroke it sends is not
    // mixed with the user's modifiers.
    std::function<void()> titleCaseAction;
    std::function<void()> pastePlainTextAction;

private:
    void handlePress(const KeyboardShortcutChord &chord);

    HotKeyGrabber &grabber_;
    AppSettings &settings_;
    // By hot-key id minus one; none when the chord is not registered.
    std::array<std::optional<KeyboardShortcutChord>, 4> registeredChords_;
    bool pressHandlerInstalled_ = false;
};

} // namespace glyphmill
