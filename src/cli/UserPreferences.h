// The user's preference file, opened only when a command first needs it: most transforms given
// --defaults or --term never touch it, which keeps short runs fast.
#pragma once

#include "platform/JsonFilePreferenceStore.h"
#include "transform/TextTransformer.h"

#include <memory>
#include <string>

namespace glyphmill::cli {

class UserPreferences {
public:
    UserPreferences();
    ~UserPreferences();
    UserPreferences(const UserPreferences &) = delete;
    UserPreferences &operator=(const UserPreferences &) = delete;

    // Opens the file on first use. A file that does not parse is set aside with a warning saying
    // where it went, and the command carries on with empty preferences. A file that cannot be
    // read throws Failure (preferences unusable) naming it and the reason.
    PreferenceStore &store();

    // True once any write through store() was refused; the file then still holds what it had.
    bool writeFailed() const;
    std::string path() const;

private:
    class WriteCheckingStore;

    std::unique_ptr<JsonFilePreferenceStore> file_;
    std::unique_ptr<WriteCheckingStore> checked_;
};

// The protection switches the user chose in the settings, read by the same rules as the
// application's: a switch is on unless it is stored as false.
TextProtectionOptions protectionOptionsFromPreferences(UserPreferences &preferences);

} // namespace glyphmill::cli
