// A preference store that lives only in memory, for tests. It can be told that its preferences
// could not be read, and counts the writes it accepted, so callers can check that nothing was
// written.
#pragma once

#include "platform/PreferenceStore.h"

#include <functional>
#include <map>
#include <optional>
#include <utility>

namespace glyphmill {

class InMemoryPreferenceStore final : public PreferenceStore {
public:
    std::optional<PreferenceValue> value(std::string_view key) const override;
    bool setValue(std::string_view key, const PreferenceValue &value) override;
    bool removeValue(std::string_view key) override;

    // As if another program had stored the value (none removes it): observers hear of it.
    void storeFromElsewhere(std::string_view key, const std::optional<PreferenceValue> &value);

    // As if the stored preferences could not be read; none clears it. Writes are refused meanwhile.
    void setReadFailure(std::optional<PreferenceReadFailure> failure) { readFailure_ = std::move(failure); }
    std::optional<PreferenceReadFailure> readFailure() const override { return readFailure_; }
    // Accepted calls of setValue and removeValue.
    int writeCount() const { return writeCount_; }

private:
    std::map<std::string, PreferenceValue, std::less<>> values_;
    std::optional<PreferenceReadFailure> readFailure_;
    int writeCount_ = 0;
};

} // namespace glyphmill
