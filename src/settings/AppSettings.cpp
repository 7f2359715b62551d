#include "settings/AppSettings.h"

#include "platform/PlatformServices.h"
#include "settings/SettingsPreferences.h"

#include <QMetaObject>

namespace glyphmill {

namespace {
std::size_t slot(KeyboardShortcutID id) {
    return static_cast<std::size_t>(id);
}
} // namespace

AppSettings::AppSettings(PreferenceStore &userDefaults, LoginItem &loginItem, QObject *parent)
    : QObject(parent), userDefaults_(userDefaults), loginItem_(loginItem) {
    // Loading assigns the fields directly: nothing is written back and nobody is notified.
    launchAtLogin_ = readBooleanSetting(userDefaults_, settingsKeys::launchAtLogin);
    onboardingCompleted_ = readBooleanSetting(userDefaults_, settingsKeys::onboardingCompleted);
    preserveProtectedTerms_ = readSwitchSetting(userDefaults_, settingsKeys::preserveProtectedTerms);
    preserveURLs_ = readSwitchSetting(userDefaults_, settingsKeys::preserveURLs);
    preserveEmails_ = readSwitchSetting(userDefaults_, settingsKeys::preserveEmails);
    preserveFilePaths_ = readSwitchSetting(userDefaults_, settingsKeys::preserveFilePaths);
    preserveHashtagsAndMentions_ =
        readSwitchSetting(userDefaults_, settingsKeys::preserveHashtagsAndMentions);
    correctAllUppercaseProse_ = readSwitchSetting(userDefaults_, settingsKeys::correctAllUppercaseProse);
    automaticallyClearFormatting_ =
        readBooleanSetting(userDefaults_, settingsKeys::automaticallyClearFormatting);
    applySmartCaseToAllCapsCaptures_ =
        readBooleanSetting(userDefaults_, settingsKeys::applySmartCaseToAllCapsCaptures);
    for (auto id : allKeyboardShortcutIDs)
        shortcuts_[slot(id)] = readShortcutSetting(userDefaults_, id);
    // Registered again at every start, so a login item removed behind our back comes back.
    if (launchAtLogin_)
        loginItem_.registerLoginItem();
    isReady_ = true;
}

AppSettings &AppSettings::shared() {
    static AppSettings *instance = [] {
        const auto &services = platformServices();
        return new AppSettings(*services.preferences, *services.loginItem);
    }();
    return *instance;
}

void AppSettings::writeBoolean(bool &field, std::string_view key, bool value,
                               void (AppSettings::*changed)(bool)) {
    field = value;
    userDefaults_.setValue(key, value);
    emit(this->*changed)(value);
}

void AppSettings::setLaunchAtLogin(bool value) {
    writeBoolean(launchAtLogin_, settingsKeys::launchAtLogin, value, &AppSettings::launchAtLoginChanged);
    // A refusal is not reported: the stored choice stays what the user picked.
    if (value)
        loginItem_.registerLoginItem();
    else
        loginItem_.unregisterLoginItem();
}

void AppSettings::setOnboardingCompleted(bool value) {
    writeBoolean(onboardingCompleted_, settingsKeys::onboardingCompleted, value,
                 &AppSettings::onboardingCompletedChanged);
}

void AppSettings::setPreserveProtectedTerms(bool value) {
    writeBoolean(preserveProtectedTerms_, settingsKeys::preserveProtectedTerms, value,
                 &AppSettings::preserveProtectedTermsChanged);
}

void AppSettings::setPreserveURLs(bool value) {
    writeBoolean(preserveURLs_, settingsKeys::preserveURLs, value, &AppSettings::preserveURLsChanged);
}

void AppSettings::setPreserveEmails(bool value) {
    writeBoolean(preserveEmails_, settingsKeys::preserveEmails, value, &AppSettings::preserveEmailsChanged);
}

void AppSettings::setPreserveFilePaths(bool value) {
    writeBoolean(preserveFilePaths_, settingsKeys::preserveFilePaths, value,
                 &AppSettings::preserveFilePathsChanged);
}

void AppSettings::setPreserveHashtagsAndMentions(bool value) {
    writeBoolean(preserveHashtagsAndMentions_, settingsKeys::preserveHashtagsAndMentions, value,
                 &AppSettings::preserveHashtagsAndMentionsChanged);
}

void AppSettings::setCorrectAllUppercaseProse(bool value) {
    writeBoolean(correctAllUppercaseProse_, settingsKeys::correctAllUppercaseProse, value,
                 &AppSettings::correctAllUppercaseProseChanged);
}

void AppSettings::setAutomaticallyClearFormatting(bool value) {
    writeBoolean(automaticallyClearFormatting_, settingsKeys::automaticallyClearFormatting, value,
                 &AppSettings::automaticallyClearFormattingChanged);
    // After this write has returned: the pass may rewrite the clipboard and refresh observers.
    QMetaObject::invokeMethod(
        this, [this] { emit automaticClearingRequested(); }, Qt::QueuedConnection);
}

void AppSettings::setApplySmartCaseToAllCapsCaptures(bool value) {
    writeBoolean(applySmartCaseToAllCapsCaptures_, settingsKeys::applySmartCaseToAllCapsCaptures, value,
                 &AppSettings::applySmartCaseToAllCapsCapturesChanged);
}

void AppSettings::setPaletteShortcutRegistrationFailed(bool value) {
    setShortcutRegistrationFailed(KeyboardShortcutID::palette, value);
}
void AppSettings::setTitleCaseShortcutRegistrationFailed(bool value) {
    setShortcutRegistrationFailed(KeyboardShortcutID::titleCase, value);
}
void AppSettings::setScreenCaptureShortcutRegistrationFailed(bool value) {
    setShortcutRegistrationFailed(KeyboardShortcutID::screenCapture, value);
}
void AppSettings::setPastePlainTextShortcutRegistrationFailed(bool value) {
    setShortcutRegistrationFailed(KeyboardShortcutID::pastePlainText, value);
}

bool AppSettings::shortcutRegistrationFailed(KeyboardShortcutID id) const {
    return registrationFailed_[slot(id)];
}

void AppSettings::setShortcutRegistrationFailed(KeyboardShortcutID id, bool value) {
    registrationFailed_[slot(id)] = value;
    switch (id) {
    case KeyboardShortcutID::palette:
        emit paletteShortcutRegistrationFailedChanged(value);
        break;
    case KeyboardShortcutID::titleCase:
        emit titleCaseShortcutRegistrationFailedChanged(value);
        break;
    case KeyboardShortcutID::screenCapture:
        emit screenCaptureShortcutRegistrationFailedChanged(value);
        break;
    case KeyboardShortcutID::pastePlainText:
        emit pastePlainTextShortcutRegistrationFailedChanged(value);
        break;
    }
}

TextProtectionOptions AppSettings::textProtectionOptions() const {
    TextProtectionOptions options;
    options.preserveProtectedTerms = preserveProtectedTerms_;
    options.preserveURLs = preserveURLs_;
    options.preserveEmails = preserveEmails_;
    options.preserveFilePaths = preserveFilePaths_;
    options.preserveHashtagsAndMentions = preserveHashtagsAndMentions_;
    options.preserveCodeLikeTokens = true;
    options.correctAllUppercaseProse = correctAllUppercaseProse_;
    return options;
}

KeyboardShortcutChord AppSettings::shortcut(KeyboardShortcutID id) const {
    return shortcuts_[slot(id)];
}

void AppSettings::persistShortcut(KeyboardShortcutID id) {
    userDefaults_.setValue(preferenceKey(id), encodeChordData(shortcuts_[slot(id)]));
    switch (id) {
    case KeyboardShortcutID::palette:
        emit paletteShortcutChanged();
        break;
    case KeyboardShortcutID::titleCase:
        emit titleCaseShortcutChanged();
        break;
    case KeyboardShortcutID::screenCapture:
        emit screenCaptureShortcutChanged();
        break;
    case KeyboardShortcutID::pastePlainText:
        emit pastePlainTextShortcutChanged();
        break;
    }
}

bool AppSettings::setShortcut(KeyboardShortcutChord chord, KeyboardShortcutID id) {
    for (auto other : allKeyboardShortcutIDs)
        if (other != id && shortcuts_[slot(other)] == chord)
            return false;
    shortcuts_[slot(id)] = chord;
    persistShortcut(id);
    shortcutsDidChange();
    return true;
}

void AppSettings::restoreDefaultShortcuts() {
    for (auto id : allKeyboardShortcutIDs)
        shortcuts_[slot(id)] = defaultChord(id);
    for (auto id : allKeyboardShortcutIDs)
        persistShortcut(id);
    shortcutsDidChange();
}

void AppSettings::setHotKeyReregistration(std::function<void()> reregisterHotKeys) {
    reregisterHotKeys_ = std::move(reregisterHotKeys);
}

void AppSettings::setMenuRebuild(std::function<void()> rebuildMenu) {
    rebuildMenu_ = std::move(rebuildMenu);
}

void AppSettings::shortcutsDidChange() {
    if (!isReady_)
        return;
    if (reregisterHotKeys_)
        reregisterHotKeys_();
    // The menu shows the chords, so it is rebuilt once the current event has been handled.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (rebuildMenu_)
                rebuildMenu_();
        },
        Qt::QueuedConnection);
}

} // namespace glyphmill
