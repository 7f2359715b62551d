// The user's protected terms, loaded from the preference store and kept in step with it: every
// change is one read-modify-write of the stored list, so a term another program added meanwhile
// is kept, and a change made elsewhere is taken in when the preference store announces it.
// Observers hear every assignment of the list.
#pragma once

#include "platform/ObserverList.h"
#include "platform/PreferenceStore.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace glyphmill {

class ProtectedTermsStore {
public:
    using Observer = std::function<void(const std::vector<std::u16string> &terms)>;

    static constexpr std::string_view preferenceKey = "protectedTerms";
    static const std::vector<std::u16string> &defaultTerms();

    explicit ProtectedTermsStore(PreferenceStore &userDefaults);
    ~ProtectedTermsStore();
    ProtectedTermsStore(const ProtectedTermsStore &) = delete;
    ProtectedTermsStore &operator=(const ProtectedTermsStore &) = delete;

    const std::vector<std::u16string> &terms() const { return terms_; }
    void addTerm(std::u16string_view text);
    void removeTerm(std::u16string_view text);
    void restoreDefaultTerms();

    // Returns a token for removeObserver.
    int addObserver(Observer observer) { return observers_.add(std::move(observer)); }
    void removeObserver(int token) { observers_.remove(token); }

private:
    void assign(std::vector<std::u16string> terms);
    void followStoredList();

    PreferenceStore &userDefaults_;
    std::vector<std::u16string> terms_;
    ObserverList<std::vector<std::u16string>> observers_;
    int storeObserverToken_ = 0;
};

} // namespace glyphmill
