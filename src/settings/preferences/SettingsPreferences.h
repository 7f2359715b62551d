// The preference keys of the user's settings and the rules by which they are read. The
// application's settings controller and the command line both read through these, so a switch
// turned off in the settings window is off for `glyphmill transform` too.
#pragma once

#include "common/KeyboardShortcut.h"
#include "platform/PreferenceStore.h"
#include "transform/TextTransformer.h"

#include <string_view>

namespace glyphmill::settingsKeys {
inline constexpr std::string_view launchAtLogin = "launchAtLogin";
inline constexpr std::string_view onboardingCompleted = "onboardingCompletedV11";
inline constexpr std::string_view preserveProtectedTerms = "smartCase.preserveProtectedTerms";
inline constexpr std::string_view preserveURLs = "smartCase.preserveURLs";
inline constexpr std::string_view preserveEmails = "smartCase.preserveEmails";
inline constexpr std::string_view preserveFilePaths = "smartCase.preserveFilePaths";
inline constexpr std::string_view preserveHashtagsAndMentions = "smartCase.preserveHashtagsAndMentions";
inline constexpr std::string_view correctAllUppercaseProse = "smartCase.correctAllUppercaseProse";
inline constexpr std::string_view automaticallyClearFormatting = "clipboard.automaticallyClearFormatting";
inline constexpr std::string_view applySmartCaseToAllCapsCaptures = "smartCaseAllCapsScreenCapture";
} // namespace glyphmill::settingsKeys

namespace glyphmill {

// Absent, or anything but a Boolean, reads as false.
bool readBooleanSetting(const PreferenceStore &store, std::string_view key);
// Absent, or anything but a Boolean, reads as true: the Smart Case switches start on.
bool readSwitchSetting(const PreferenceStore &store, std::string_view key);
// The stored chord, or the action's default when it is absent or does not decode.
KeyboardShortcutChord readShortcutSetting(const PreferenceStore &store, KeyboardShortcutID id);

// The protection switches as stored; code between backticks is always protected.
TextProtectionOptions readTextProtectionOptions(const PreferenceStore &store);

} // namespace glyphmill
