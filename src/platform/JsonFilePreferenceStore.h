// The preference store on Linux: one JSON object in one file. Every write takes a lock,
// re-reads the file, changes one key and replaces the file atomically, so the tray
// application and the command line can write at the same time without losing each other's keys.
// A running program calls reload when the file changes (see PreferenceFileWatcher) to follow
// what others wrote. One instance serves one thread.
#pragma once

#include "platform/PreferenceStore.h"

#include <functional>
#include <memory>

namespace glyphmill {

class JsonFilePreferenceStore final : public PreferenceStore {
public:
    // $XDG_CONFIG_HOME/glyphmill/preferences.json; XDG_CONFIG_HOME defaults to ~/.config.
    static std::string defaultPath();

    JsonFilePreferenceStore();
    explicit JsonFilePreferenceStore(std::string path);
    ~JsonFilePreferenceStore() override;
    JsonFilePreferenceStore(const JsonFilePreferenceStore &) = delete;
    JsonFilePreferenceStore &operator=(const JsonFilePreferenceStore &) = delete;

    // Answered from what was last read or written; the file is read again by writes and reload.
    std::optional<PreferenceValue> value(std::string_view key) const override;
    bool setValue(std::string_view key, const PreferenceValue &value) override;
    bool removeValue(std::string_view key) override;
    bool updateValue(std::string_view key, const PreferenceUpdate &update) override;
    // A file that cannot be read or parsed now is left for the next write to deal with.
    void reload() override;
    // As of the last read of the file (at opening, a reload or a write). A missing file, or one
    // in the place of a folder on the way, is no failure: there are no preferences yet. Neither
    // is one that does not parse once it is set aside (see setAsidePath).
    std::optional<PreferenceReadFailure> readFailure() const override;

    // Creates the file's folder (private to the user) if it is missing, so it can be watched.
    bool createDirectory() const;

    const std::string &path() const { return path_; }
    // Every key present, including those whose value has a shape this store does not know.
    std::vector<std::string> keys() const;
    // Where a file that could not be read as preferences was moved, so the user can be told.
    const std::optional<std::string> &setAsidePath() const { return setAsidePath_; }

private:
    struct Entries;
    bool rewrite(std::string_view key, const std::function<void(Entries &)> &change);

    std::string path_;
    std::unique_ptr<Entries> entries_;
    std::optional<std::string> setAsidePath_;
    std::optional<std::string> readFailure_; // the reason, when the file could not be read
    // Set when a write took in keys another program had changed: reload must still announce them.
    bool unannouncedChanges_ = false;
};

} // namespace glyphmill
