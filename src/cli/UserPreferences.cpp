#include "cli/UserPreferences.h"

#include "cli/Failure.h"
#include "cli/InputOutput.h"
#include "settings/preferences/SettingsPreferences.h"

namespace glyphmill::cli {

// Forwards to the file store and remembers a refused write, which the terms store itself
// does not report.
class UserPreferences::WriteCheckingStore final : public PreferenceStore {
public:
    explicit WriteCheckingStore(PreferenceStore &target) : target_(target) {}

    std::optional<PreferenceValue> value(std::string_view key) const override { return target_.value(key); }
    bool setValue(std::string_view key, const PreferenceValue &value) override {
        return noted(target_.setValue(key, value));
    }
    bool removeValue(std::string_view key) override { return noted(target_.removeValue(key)); }
    bool updateValue(std::string_view key, const PreferenceUpdate &update) override {
        return noted(target_.updateValue(key, update));
    }

    bool failed = false;

private:
    bool noted(bool succeeded) {
        failed = failed || !succeeded;
        return succeeded;
    }

    PreferenceStore &target_;
};

UserPreferences::UserPreferences() = default;
UserPreferences::~UserPreferences() = default;

PreferenceStore &UserPreferences::store() {
    if (!checked_) {
        file_ = std::make_unique<JsonFilePreferenceStore>();
        // Going on with the defaults would give results the user did not choose.
        if (auto failure = file_->readFailure())
            fail(ExitStatus::preferencesUnusable,
                 "cannot read the preference file " + quoted(failure->file) + ": " + failure->reason);
        if (const auto &setAside = file_->setAsidePath())
            writeDiagnostic("warning: the preference file held no valid preferences; it was moved to " +
                            quoted(*setAside) + " and the defaults are used");
        checked_ = std::make_unique<WriteCheckingStore>(*file_);
    }
    return *checked_;
}

bool UserPreferences::writeFailed() const {
    return checked_ && checked_->failed;
}

std::string UserPreferences::path() const {
    return file_ ? file_->path() : JsonFilePreferenceStore::defaultPath();
}

TextProtectionOptions protectionOptionsFromPreferences(UserPreferences &preferences) {
    return readTextProtectionOptions(preferences.store());
}

} // namespace glyphmill::cli
