#include "ProtectedTermsStore.h"

#include "TextModel.h"

#include <algorithm>

namespace glyphmill {

const std::vector<std::u16string> &ProtectedTermsStore::defaultTerms() {
    static const std::vector<std::u16string> terms = {
        u"LLC",    u"Inc.", u"USA",   u"US",  u"U.S.",      u"NY",      u"NJ",         u"MA",
        u"API",    u"PDF",  u"QR",    u"URL", u"HTML",      u"CSS",     u"JavaScript", u"SwiftUI",
        u"iPhone", u"iPad", u"macOS", u"iOS", u"App Store", u"ChatGPT", u"OpenAI",
    };
    return terms;
}

ProtectedTermsStore::ProtectedTermsStore(PreferenceStore &userDefaults) : userDefaults_(userDefaults) {
    // A stored list is taken as it is, blanks and duplicates included; an empty or missing
    // list means the built-in one. Nothing is written here, so the stored value stays as found.
    auto stored = userDefaults_.stringArrayValue(preferenceKey);
    if (stored && !stored->empty())
        terms_ = std::move(*stored);
    else
        terms_ = defaultTerms();
}

void ProtectedTermsStore::addTerm(std::u16string_view text) {
    const std::u16string_view term = text::trimmedWhiteSpaceAndNewlines(text);
    if (term.empty())
        return;
    // The spelling already in the list wins over the new one.
    auto equalsTerm = [term](const std::u16string &present) {
        return text::equalIgnoringCase(present, term);
    };
    if (std::any_of(terms_.begin(), terms_.end(), equalsTerm))
        return;
    std::vector<std::u16string> terms = terms_;
    terms.emplace_back(term);
    assign(std::move(terms));
    save();
}

void ProtectedTermsStore::removeTerm(std::u16string_view text) {
    std::vector<std::u16string> terms = terms_;
    std::erase_if(terms,
                  [text](const std::u16string &present) { return text::equalIgnoringCase(present, text); });
    // Observers hear of the assignment even when nothing was removed.
    assign(std::move(terms));
    save();
}

void ProtectedTermsStore::restoreDefaultTerms() {
    assign(defaultTerms());
    save();
}

int ProtectedTermsStore::addObserver(Observer observer) {
    const int token = nextObserverToken_++;
    observers_.emplace_back(token, std::move(observer));
    return token;
}

void ProtectedTermsStore::removeObserver(int token) {
    std::erase_if(observers_, [token](const auto &entry) { return entry.first == token; });
}

void ProtectedTermsStore::assign(std::vector<std::u16string> terms) {
    terms_ = std::move(terms);
    // By token, so that an observer may add or remove observers (itself included) while being
    // called: one removed meanwhile is not called, one added meanwhile waits for the next change.
    std::vector<int> tokens;
    tokens.reserve(observers_.size());
    for (const auto &entry : observers_)
        tokens.push_back(entry.first);
    for (int token : tokens) {
        auto found = std::find_if(observers_.begin(), observers_.end(),
                                  [token](const auto &entry) { return entry.first == token; });
        if (found == observers_.end())
            continue;
        const Observer observer = found->second; // survives its own removal during the call
        observer(terms_);
    }
}

void ProtectedTermsStore::save() {
    // The preference store keeps what it had when a write fails; the list in memory stays the
    // user's current list either way, as nothing here can report the failure.
    userDefaults_.setValue(preferenceKey, terms_);
}

} // namespace glyphmill
