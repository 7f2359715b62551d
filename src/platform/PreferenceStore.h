// The key-value preference store every controller reads and writes through. Values keep
// their type, so "absent" and "present but of another type" can be told apart.
#pragma once

#include "platform/ObserverList.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace glyphmill {

using PreferenceData = std::vector<std::uint8_t>;
using PreferenceValue = std::variant<bool, std::u16string, std::vector<std::u16string>, PreferenceData>;
// Given the value stored now (none when absent), the value to store instead, or none to leave it.
using PreferenceUpdate =
    std::function<std::optional<PreferenceValue>(const std::optional<PreferenceValue> &stored)>;

// Why the stored preferences could not be read (they are not merely absent, nor content that
// does not parse and was set aside): the file, and the reason, such as "Permission denied".
struct PreferenceReadFailure {
    std::string file;
    std::string reason;
};

class PreferenceStore {
public:
    virtual ~PreferenceStore() = default;

    // Set while the stored preferences could not be read; the user should be told. The store
    // answers with what it last read (nothing at first, so callers see their defaults) and
    // refuses every write, so what is stored is never replaced by values not read from it.
    virtual std::optional<PreferenceReadFailure> readFailure() const { return std::nullopt; }

    virtual std::optional<PreferenceValue> value(std::string_view key) const = 0;
    // False when the value could not be stored; the store then keeps what it had.
    virtual bool setValue(std::string_view key, const PreferenceValue &value) = 0;
    virtual bool removeValue(std::string_view key) = 0;
    // Reads the key and stores what the update makes of it as one step that no other writer,
    // in this program or another, can come between: a list changed this way never loses an
    // entry someone else added meanwhile. False when a new value could not be stored.
    virtual bool updateValue(std::string_view key, const PreferenceUpdate &update);

    // Takes in what other programs wrote since the store last looked, telling the observers
    // when anything differs. A store that no other program shares has nothing to take in.
    virtual void reload() {}
    // Observers hear of changes made elsewhere, after they are in place; what this program
    // writes itself is not announced. Returns a token for removeObserver.
    int addObserver(std::function<void()> observer) { return observers_.add(std::move(observer)); }
    void removeObserver(int token) { observers_.remove(token); }

    // Typed reads: none when the key is absent or holds another type.
    std::optional<bool> boolValue(std::string_view key) const { return typed<bool>(key); }
    std::optional<std::u16string> stringValue(std::string_view key) const {
        return typed<std::u16string>(key);
    }
    std::optional<std::vector<std::u16string>> stringArrayValue(std::string_view key) const {
        return typed<std::vector<std::u16string>>(key);
    }
    std::optional<PreferenceData> dataValue(std::string_view key) const { return typed<PreferenceData>(key); }

protected:
    void notifyObservers() const { observers_.notify(); }

private:
    template <typename T> std::optional<T> typed(std::string_view key) const {
        auto stored = value(key);
        if (!stored)
            return std::nullopt;
        if (auto *held = std::get_if<T>(&*stored))
            return std::move(*held);
        return std::nullopt;
    }

    ObserverList<> observers_;
};

} // namespace glyphmill
