// The settings window: preferences, the shortcut recorder, the way to the protected terms and
// the welcome guide, and the About section. Built once, hidden when closed, shown again as it was.
#pragma once

#include "ui/SettingsSections.h"

#include <QPointer>
#include <QString>
#include <QWidget>

#include <string_view>

class QHideEvent;

namespace glyphmill {

class AppSettings;
class HotKeyManager;
class ProtectedTermsEditor;
class ProtectedTermsStore;
class ShortcutRecordingMonitor;

// "0.1.0 (1)"; an empty part is shown as an em dash.
QString versionString(std::string_view shortVersion, std::string_view buildNumber);

// What the About section shows; the packaged values unless a caller supplies others.
struct SettingsWindowContent {
    AboutLinks links;
    QString version;
};
SettingsWindowContent packagedSettingsContent();

class SettingsWindow final : public QWidget {
    Q_OBJECT

public:
    SettingsWindow(ProtectedTermsStore &terms, AppSettings &settings, HotKeyManager &hotKeys,
                   const SettingsWindowContent &content, QWidget *parent = nullptr);
    ~SettingsWindow() override;

    ShortcutRecordingMonitor &recordingMonitor() const { return *monitor_; }
    // The protected terms sheet while it is shown; at most one exists.
    ProtectedTermsEditor *protectedTermsSheet() const;
    void showProtectedTermsList();

protected:
    // A recording must not outlive the visible window: the hot keys would stay released.
    void hideEvent(QHideEvent *event) override;

private:
    ProtectedTermsStore &terms_;
    ShortcutRecordingMonitor *monitor_ = nullptr;
    QPointer<ProtectedTermsEditor> termsSheet_;
};

// Opens the settings window over the shared settings and hot keys, or brings the existing one
// forward (the store of the first opening stays with it).
void showSettingsWindow(ProtectedTermsStore &termsStore);
// The window once it was built, else null.
QWidget *existingSettingsWindow();

} // namespace glyphmill
