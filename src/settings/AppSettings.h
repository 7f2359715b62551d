// The user's preferences, the four shortcut chords and their registration-failed flags. Every
// property notifies on every assignment (even of the same value); every persisted property is
// written through to the preference store at once. When the preference store announces changes
// made by another program, the properties whose stored values differ are assigned and notify
// as if they had been set here, without writing anything back.
#pragma once

#include "common/KeyboardShortcut.h"
#include "platform/LoginItem.h"
#include "platform/PreferenceStore.h"
#include "transform/TextTransformer.h"

#include <QObject>

#include <array>
#include <functional>

namespace glyphmill {

class AppSettings final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY launchAtLoginChanged)
    Q_PROPERTY(bool onboardingCompleted READ onboardingCompleted WRITE setOnboardingCompleted NOTIFY
                   onboardingCompletedChanged)
    Q_PROPERTY(bool preserveProtectedTerms READ preserveProtectedTerms WRITE setPreserveProtectedTerms NOTIFY
                   preserveProtectedTermsChanged)
    Q_PROPERTY(bool preserveURLs READ preserveURLs WRITE setPreserveURLs NOTIFY preserveURLsChanged)
    Q_PROPERTY(bool preserveEmails READ preserveEmails WRITE setPreserveEmails NOTIFY preserveEmailsChanged)
    Q_PROPERTY(bool preserveFilePaths READ preserveFilePaths WRITE setPreserveFilePaths NOTIFY
                   preserveFilePathsChanged)
    Q_PROPERTY(bool preserveHashtagsAndMentions READ preserveHashtagsAndMentions WRITE
                   setPreserveHashtagsAndMentions NOTIFY preserveHashtagsAndMentionsChanged)
    Q_PROPERTY(bool correctAllUppercaseProse READ correctAllUppercaseProse WRITE setCorrectAllUppercaseProse
                   NOTIFY correctAllUppercaseProseChanged)
    Q_PROPERTY(bool automaticallyClearFormatting READ automaticallyClearFormatting WRITE
                   setAutomaticallyClearFormatting NOTIFY automaticallyClearFormattingChanged)
    Q_PROPERTY(bool applySmartCaseToAllCapsCaptures READ applySmartCaseToAllCapsCaptures WRITE
                   setApplySmartCaseToAllCapsCaptures NOTIFY applySmartCaseToAllCapsCapturesChanged)
    Q_PROPERTY(bool paletteShortcutRegistrationFailed READ paletteShortcutRegistrationFailed WRITE
                   setPaletteShortcutRegistrationFailed NOTIFY paletteShortcutRegistrationFailedChanged)
    Q_PROPERTY(bool titleCaseShortcutRegistrationFailed READ titleCaseShortcutRegistrationFailed WRITE
                   setTitleCaseShortcutRegistrationFailed NOTIFY titleCaseShortcutRegistrationFailedChanged)
    Q_PROPERTY(
        bool screenCaptureShortcutRegistrationFailed READ screenCaptureShortcutRegistrationFailed WRITE
            setScreenCaptureShortcutRegistrationFailed NOTIFY screenCaptureShortcutRegistrationFailedChanged)
    Q_PROPERTY(bool pastePlainTextShortcutRegistrationFailed READ pastePlainTextShortcutRegistrationFailed
                   WRITE setPastePlainTextShortcutRegistrationFailed NOTIFY
                       pastePlainTextShortcutRegistrationFailedChanged)

public:
    // Loads every value from the store without writing anything back, then registers the login
    // item again when the user asked for it.
    AppSettings(PreferenceStore &userDefaults, LoginItem &loginItem, QObject *parent = nullptr);
    ~AppSettings() override;

    // Made on first use from the installed platform services; never destroyed.
    static AppSettings &shared();

    bool launchAtLogin() const { return launchAtLogin_; }
    bool onboardingCompleted() const { return onboardingCompleted_; }
    bool preserveProtectedTerms() const { return preserveProtectedTerms_; }
    bool preserveURLs() const { return preserveURLs_; }
    bool preserveEmails() const { return preserveEmails_; }
    bool preserveFilePaths() const { return preserveFilePaths_; }
    bool preserveHashtagsAndMentions() const { return preserveHashtagsAndMentions_; }
    bool correctAllUppercaseProse() const { return correctAllUppercaseProse_; }
    bool automaticallyClearFormatting() const { return automaticallyClearFormatting_; }
    bool applySmartCaseToAllCapsCaptures() const { return applySmartCaseToAllCapsCaptures_; }
    bool paletteShortcutRegistrationFailed() const { return registrationFailed_[0]; }
    bool titleCaseShortcutRegistrationFailed() const { return registrationFailed_[1]; }
    bool screenCaptureShortcutRegistrationFailed() const { return registrationFailed_[2]; }
    bool pastePlainTextShortcutRegistrationFailed() const { return registrationFailed_[3]; }
    bool shortcutRegistrationFailed(KeyboardShortcutID id) const;

    void setLaunchAtLogin(bool value);
    void setOnboardingCompleted(bool value);
    void setPreserveProtectedTerms(bool value);
    void setPreserveURLs(bool value);
    void setPreserveEmails(bool value);
    void setPreserveFilePaths(bool value);
    void setPreserveHashtagsAndMentions(bool value);
    void setCorrectAllUppercaseProse(bool value);
    // Also queues one automatic-clearing pass (automaticClearingRequested), so formatted text
    // already on the clipboard is cleaned as soon as the switch is turned on.
    void setAutomaticallyClearFormatting(bool value);
    void setApplySmartCaseToAllCapsCaptures(bool value);
    void setPaletteShortcutRegistrationFailed(bool value);
    void setTitleCaseShortcutRegistrationFailed(bool value);
    void setScreenCaptureShortcutRegistrationFailed(bool value);
    void setPastePlainTextShortcutRegistrationFailed(bool value);
    void setShortcutRegistrationFailed(KeyboardShortcutID id, bool value);

    // A fresh value, read from the switches at the moment of the call.
    TextProtectionOptions textProtectionOptions() const;

    KeyboardShortcutChord shortcut(KeyboardShortcutID id) const;
    // False, changing nothing, when another action already holds the chord.
    bool setShortcut(KeyboardShortcutChord chord, KeyboardShortcutID id);
    void restoreDefaultShortcuts();

    // What a change of the chords sets in motion: the hot keys are registered again at once,
    // the menu is rebuilt in a later main-thread task. Installed by the application.
    void setHotKeyReregistration(std::function<void()> reregisterHotKeys);
    void setMenuRebuild(std::function<void()> rebuildMenu);

signals:
    void launchAtLoginChanged(bool value);
    void onboardingCompletedChanged(bool value);
    void preserveProtectedTermsChanged(bool value);
    void preserveURLsChanged(bool value);
    void preserveEmailsChanged(bool value);
    void preserveFilePathsChanged(bool value);
    void preserveHashtagsAndMentionsChanged(bool value);
    void correctAllUppercaseProseChanged(bool value);
    void automaticallyClearFormattingChanged(bool value);
    void applySmartCaseToAllCapsCapturesChanged(bool value);
    void paletteShortcutRegistrationFailedChanged(bool value);
    void titleCaseShortcutRegistrationFailedChanged(bool value);
    void screenCaptureShortcutRegistrationFailedChanged(bool value);
    void pastePlainTextShortcutRegistrationFailedChanged(bool value);
    // The chords notify through these; read them with shortcut().
    void paletteShortcutChanged();
    void titleCaseShortcutChanged();
    void screenCaptureShortcutChanged();
    void pastePlainTextShortcutChanged();
    // Emitted from a main-thread task after automaticallyClearFormatting was written; the
    // clipboard monitor answers with one pass of automatic clearing.
    void automaticClearingRequested();

private:
    struct StoredSwitch;
    static const std::array<StoredSwitch, 10> &storedSwitches();
    void followStoredSettings();
    // Assigns, writes through, then notifies.
    void writeBoolean(bool &field, std::string_view key, bool value, void (AppSettings::*changed)(bool));
    // What changing a switch sets in motion besides the notification.
    void switchDidChange(bool AppSettings::*field);
    void persistShortcut(KeyboardShortcutID id);
    void notifyShortcutChanged(KeyboardShortcutID id);
    void shortcutsDidChange();

    PreferenceStore &userDefaults_;
    LoginItem &loginItem_;
    bool launchAtLogin_ = false;
    bool onboardingCompleted_ = false;
    bool preserveProtectedTerms_ = true;
    bool preserveURLs_ = true;
    bool preserveEmails_ = true;
    bool preserveFilePaths_ = true;
    bool preserveHashtagsAndMentions_ = true;
    bool correctAllUppercaseProse_ = true;
    bool automaticallyClearFormatting_ = false;
    bool applySmartCaseToAllCapsCaptures_ = false;
    std::array<KeyboardShortcutChord, 4> shortcuts_{};
    std::array<bool, 4> registrationFailed_{};
    bool isReady_ = false;
    std::function<void()> reregisterHotKeys_;
    std::function<void()> rebuildMenu_;
    int storeObserverToken_ = 0;
};

} // namespace glyphmill
