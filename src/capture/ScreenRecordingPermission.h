// The gate every screen capture passes before the selection overlay opens. The first refusal is
// explained in a small panel; every later one shows an alert that leads to the system settings.
#pragma once

#include <array>
#include <string_view>

class QDialog;

namespace glyphmill {

// Set once the explanation has been shown or the settings page has been opened; never cleared.
inline constexpr std::string_view screenRecordingExplainedKey = "screenCapture.permissionExplained";

// The settings pages tried in order by openScreenRecordingSettings.
inline constexpr std::array<std::string_view, 3> screenRecordingSettingsAddresses = {
    "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture",
    "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?Privacy_ScreenCapture",
    "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?ScreenCapture",
};

// True when screen capture may go ahead; when false the user has already been shown the
// explanation panel or the alert. Main thread only; the alert is modal.
bool ensureScreenRecordingPermission();
// Opens the screen recording page of the system settings where the desktop has one.
void openScreenRecordingSettings();
// Shows the explanation panel, or brings the open one forward.
void showScreenRecordingExplanation();

// The explanation panel while it is open, else null; for tests.
QDialog *screenRecordingExplanationPanel();

} // namespace glyphmill
