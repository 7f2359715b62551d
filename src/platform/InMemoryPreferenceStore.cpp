#include "InMemoryPreferenceStore.h"

namespace glyphmill {

std::optional<PreferenceValue> InMemoryPreferenceStore::value(std::string_view key) const {
    auto found = values_.find(key);
    if (found == values_.end())
        return std::nullopt;
    return found->second;
}

bool InMemoryPreferenceStore::setValue(std::string_view key, const PreferenceValue &value) {
    if (readFailure_)
        return false;
    values_.insert_or_assign(std::string(key), value);
    ++writeCount_;
    return true;
}

bool InMemoryPreferenceStore::removeValue(std::string_view key) {
    if (readFailure_)
        return false;
    if (auto found = values_.find(key); found != values_.end())
        values_.erase(found);
    ++writeCount_;
    return true;
}

void InMemoryPreferenceStore::storeFromElsewhere(std::string_view key,
                                                 const std::optional<PreferenceValue> &value) {
    if (value)
        values_.insert_or_assign(std::string(key), *value);
    else if (auto found = values_.find(key); found != values_.end())
        values_.erase(found);
    notifyObservers();
}

} // namespace glyphmill
