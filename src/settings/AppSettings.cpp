#include "settings/AppSettings.h"

#include "platform/PlatformServices.h"
#include "settings/preferences/SettingsPreferences.h"

#include <QMetaObject>

namespace glyphmill {

namespace {
std::size_t slot(KeyboardShortcutID id) {
    return static_cast<std::size_t>(id);
}
} // namespace

struct AppSettings::StoredSwitch {
    bool AppSettings::*field;
    std::string_view key;
    bool (*read)(const PreferenceStore &, std::string_view);
    void (AppSettings::*changed)(bool);
};

const std::array<AppSettings::StoredSwitch, 10> &AppSettings::storedSwitches() {
    static const std::array<StoredSwitch, 10> switches{{
        {&AppSettings::launchAtLogin_, settingsKeys::launchAtLogin, readBooleanSetting,
         &AppSettings::launchAtLoginChanged},
        {&AppSettings::onboardingCompleted_, settingsKeys::onboardingCompleted, readBooleanSetting,
         &AppSettings::onboardingCompletedChanged},
        {&AppSettings::preserveProtectedTerms_, settingsKeys::preserveProtectedTerms, readSwitchSetting,
         &AppSettings::preserveProtectedTermsChanged},
        {&AppSettings::preserveURLs_, settingsKeys::preserveURLs, readSwitchSetting,
         &AppSettings::preserveURLsChanged},
        {&AppSettings::preserveEmails_, settingsKeys::preserveEmails, readSwitchSetting,
         &AppSettings::preserveEmailsChanged},
        {&AppSettings::preserveFilePaths_, settingsKeys::preserveFilePaths, readSwitchSetting,
         &AppSettings::preserveFilePathsChanged},
        {&AppSettings::preserveHashtagsAndMentions_, settingsKeys::preserveHashtagsAndMentions,
         readSwitchSetting, &AppSettings::preserveHashtagsAndMentionsChanged},
        {&AppSettings::correctAllUppercaseProse_, settingsKeys::correctAllUppercaseProse, readSwitchSetting,
         &AppSettings::correctAllUppercaseProseChanged},
        {&AppSettings::automaticallyClearFormatting_, settingsKeys::automaticallyClearFormatting,
         readBooleanSetting, &AppSettings::automaticallyClearFormattingChanged},
        {&AppSettings::applySmartCaseToAllCapsCaptures_, settingsKeys::applySmartCaseToAllCapsCaptures,
         readBooleanSetting, &AppSettings::applySmartCaseToAllCapsCapturesChanged},
    }};
    return switches;
}

AppSettings::AppSettings(PreferenceStore &userDefaults, LoginItem &loginItem, QObject *parent)
    : QObject(parent), userDefaults_(userDefaults), loginItem_(loginItem) {
    // Loading assigns the fields directly: nothing is written back and nobody is notified.
    for (const StoredSwitch &stored : storedSwitches())
        this->*stored.field = stored.read(userDefaults_, stored.key);
    for (auto id : allKeyboardShortcutIDs)
        shortcuts_[slot(id)] = readShortcutSetting(userDefaults_, id);
    // Registered again at every start, so a login item removed behind our back comes back.
    if (launchAtLogin_)
        loginItem_.registerLoginItem();
    isReady_ = true;
    storeObserverToken_ = userDefaults_.addObserver([this] { followStoredSettings(); });
}

AppSettings::~AppSettings() {
    userDefaults_.removeObserver(storeObserverToken_);
}

void AppSettings::followStoredSettings() {
    for (const StoredSwitch &stored : storedSwitches()) {
        const bool value = stored.read(userDefaults_, stored.key);
        if (value == this->*stored.field)
            continue;
        this->*stored.field = value;
        emit(this->*stored.changed)(value);
        switchDidChange(stored.field);
    }
    bool chordsChanged = false;
    for (auto id : allKeyboardShortcutIDs) {
        const KeyboardShortcutChord chord = readShortcutSetting(userDefaults_, id);
        if (chord == shortcuts_[slot(id)])
            continue;
        shortcuts_[slot(id)] = chord;
        notifyShortcutChanged(id);
        chordsChanged = true;
    }
    if (chordsChanged)
        shortcutsDidChange();
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

void AppSettings::switchDidChange(bool AppSettings::*field) {
    if (field == &AppSettings::launchAtLogin_) {
        // A refusal is not reported: the stored choice stays what the user picked.
        if (launchAtLogin_)
            loginItem_.registerLoginItem();
        else
            loginItem_.unregisterLoginItem();
    } else if (field == &AppSettings::automaticallyClearFormatting_) {
        // After this change has been handled: the pass may rewrite the clipboard and refresh
        // observers, so formatted text already on the clipboard is cleaned at once.
        QMetaObject::invokeMethod(
            this, [this] { emit automaticClearingRequested(); }, Qt::QueuedConnection);
    }
}

void AppSettings::setLaunchAtLogin(bool value) {
    writeBoolean(launchAtLogin_, settingsKeys::launchAtLogin, value, &AppSettings::launchAtLoginChanged);
    switchDidChange(&AppSettings::launchAtLogin_);
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
    switchDidChange(&AppSettings::automaticallyClearFormatting_);
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
    notifyShortcutChanged(id);
}

void AppSettings::notifyShortcutChanged(KeyboardShortcutID id) {
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
