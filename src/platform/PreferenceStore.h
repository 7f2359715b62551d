// The key-value preference store every controller reads and writes through. Values keep
// their type, so "absent" and "present but of another type" can be told apart.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace glyphmill {

using PreferenceData = std::vector<std::uint8_t>;
using PreferenceValue = std::variant<bool, std::u16string, std::vector<std::u16string>, PreferenceData>;

class PreferenceStore {
public:
    virtual ~PreferenceStore() = default;

    virtual std::optional<PreferenceValue> value(std::string_view key) const = 0;
    // False when the value could not be stored; the store then keeps what it had.
    virtual bool setValue(std::string_view key, const PreferenceValue &value) = 0;
    virtual bool removeValue(std::string_view key) = 0;

    // Typed reads: none when the key is absent or holds another type.
    std::optional<bool> boolValue(std::string_view key) const { return typed<bool>(key); }
    std::optional<std::u16string> stringValue(std::string_view key) const {
        return typed<std::u16string>(key);
    }
    std::optional<std::vector<std::u16string>> stringArrayValue(std::string_view key) const {
        return typed<std::vector<std::u16string>>(key);
    }
    std::optional<PreferenceData> dataValue(std::string_view key) const { return typed<PreferenceData>(key); }

private:
    template <typename T> std::optional<T> typed(std::string_view key) const {
        auto stored = value(key);
        if (!stored)
            return std::nullopt;
        if (auto *held = std::get_if<T>(&*stored))
            return std::move(*held);
        return std::nullopt;
    }
};

} // namespace glyphmill
