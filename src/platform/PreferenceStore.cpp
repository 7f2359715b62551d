#include "platform/PreferenceStore.h"

namespace glyphmill {

bool PreferenceStore::updateValue(std::string_view key, const PreferenceUpdate &update) {
    // Enough for a store that only this program uses; a shared one overrides this with a lock.
    auto changed = update(value(key));
    return !changed || setValue(key, *changed);
}

} // namespace glyphmill
