// The user's protected terms, loaded from the preference store once and written back whole
// after every change. Observers hear every assignment of the list.
#pragma once

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

    const std::vector<std::u16string> &terms() const { return terms_; }
    void addTerm(std::u16string_view text);
    void removeTerm(std::u16string_view text);
    void restoreDefaultTerms();

    // Returns a token for removeObserver.
    int addObserver(Observer observer);
    void removeObserver(int token);

private:
    void assign(std::vector<std::u16string> terms);
    void save();

    PreferenceStore &userDefaults_;
    std::vector<std::u16string> terms_;
    std::vector<std::pair<int, Observer>> observers_;
    int nextObserverToken_ = 1;
};

} // namespace glyphmill
