#include "settings/preferences/SettingsPreferences.h"

namespace glyphmill {

bool readBooleanSetting(const PreferenceStore &store, std::string_view key) {
    return store.boolValue(key).value_or(false);
}

bool readSwitchSetting(const PreferenceStore &store, std::string_view key) {
    return store.boolValue(key).value_or(true);
}

KeyboardShortcutChord readShortcutSetting(const PreferenceStore &store, KeyboardShortcutID id) {
    if (auto data = store.dataValue(preferenceKey(id)))
        if (auto chord = decodeChordData(*data))
            return *chord;
    return defaultChord(id);
}

TextProtectionOptions readTextProtectionOptions(const PreferenceStore &store) {
    TextProtectionOptions options;
    options.preserveProtectedTerms = readSwitchSetting(store, settingsKeys::preserveProtectedTerms);
    options.preserveURLs = readSwitchSetting(store, settingsKeys::preserveURLs);
    options.preserveEmails = readSwitchSetting(store, settingsKeys::preserveEmails);
    options.preserveFilePaths = readSwitchSetting(store, settingsKeys::preserveFilePaths);
    options.preserveHashtagsAndMentions = readSwitchSetting(store, settingsKeys::preserveHashtagsAndMentions);
    options.preserveCodeLikeTokens = true;
    options.correctAllUppercaseProse = readSwitchSetting(store, settingsKeys::correctAllUppercaseProse);
    return options;
}

} // namespace glyphmill
