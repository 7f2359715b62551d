#include "settings/preferences/ProtectedTermsStore.h"

#include "transform/TextModel.h"

#include <algorithm>
#include <optional>

namespace glyphmill {

namespace {

// A stored list is taken as it is, blanks and duplicates included; an empty or missing list,
// or a value of another type, means the built-in one.
std::vector<std::u16string> termsFrom(const std::optional<PreferenceValue> &stored) {
    if (stored)
        if (const auto *list = std::get_if<std::vector<std::u16string>>(&*stored); list && !list->empty())
            return *list;
    return ProtectedTermsStore::defaultTerms();
}

} // namespace

const std::vector<std::u16string> &ProtectedTermsStore::defaultTerms() {
    static const std::vector<std::u16string> terms = {
        u"LLC",    u"Inc.", u"USA",   u"US",  u"U.S.",      u"NY",      u"NJ",         u"MA",
        u"API",    u"PDF",  u"QR",    u"URL", u"HTML",      u"CSS",     u"JavaScript", u"SwiftUI",
        u"iPhone", u"iPad", u"macOS", u"iOS", u"App Store", u"ChatGPT", u"OpenAI",
    };
    return terms;
}

ProtectedTermsStore::ProtectedTermsStore(PreferenceStore &userDefaults)
    : userDefaults_(userDefaults), terms_(termsFrom(userDefaults.value(preferenceKey))) {
    // Nothing is written here, so the stored value stays as found.
    storeObserverToken_ = userDefaults_.addObserver([this] { followStoredList(); });
}

ProtectedTermsStore::~ProtectedTermsStore() {
    userDefaults_.removeObserver(storeObserverToken_);
}

void ProtectedTermsStore::addTerm(std::u16string_view text) {
    const std::u16string_view term = text::trimmedWhiteSpaceAndNewlines(text);
    if (term.empty())
        return;
    std::vector<std::u16string> terms;
    // The list is the stored one at this moment, which may hold terms added elsewhere.
    userDefaults_.updateValue(preferenceKey, [&](const std::optional<PreferenceValue> &stored) {
        terms = termsFrom(stored);
        // The spelling already in the list wins over the new one, and nothing is written.
        auto equalsTerm = [term](const std::u16string &present) {
            return text::equalIgnoringCase(present, term);
        };
        if (std::any_of(terms.begin(), terms.end(), equalsTerm))
            return std::optional<PreferenceValue>();
        terms.emplace_back(term);
        return std::optional<PreferenceValue>(terms);
    });
    // A refused write leaves the file as it was; the list in memory stays the user's current
    // list either way, as nothing here can report the failure.
    if (terms != terms_)
        assign(std::move(terms));
}

void ProtectedTermsStore::removeTerm(std::u16string_view text) {
    std::vector<std::u16string> terms;
    userDefaults_.updateValue(preferenceKey, [&](const std::optional<PreferenceValue> &stored) {
        terms = termsFrom(stored);
        std::erase_if(
            terms, [text](const std::u16string &present) { return text::equalIgnoringCase(present, text); });
        // Written even when nothing was removed.
        return std::optional<PreferenceValue>(terms);
    });
    // Observers hear of the assignment even when nothing was removed.
    assign(std::move(terms));
}

void ProtectedTermsStore::restoreDefaultTerms() {
    assign(defaultTerms());
    userDefaults_.setValue(preferenceKey, terms_);
}

void ProtectedTermsStore::assign(std::vector<std::u16string> terms) {
    terms_ = std::move(terms);
    observers_.notify(terms_);
}

void ProtectedTermsStore::followStoredList() {
    auto stored = termsFrom(userDefaults_.value(preferenceKey));
    if (stored != terms_)
        assign(std::move(stored));
}

} // namespace glyphmill
