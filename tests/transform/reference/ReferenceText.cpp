#include "ReferenceText.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/regex.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include <array>
#include <memory>

namespace glyphmill::reference::text {

namespace {

icu::UnicodeString toIcu(std::u16string_view text) {
    return icu::UnicodeString(text.data(), static_cast<int32_t>(text.size()));
}

std::u16string fromIcu(const icu::UnicodeString &text) {
    return std::u16string(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

using CaseFunction = int32_t (*)(UChar *, int32_t, const UChar *, int32_t, const char *, UErrorCode *);

std::u16string caseMapped(std::u16string_view text, CaseFunction function) {
    if (text.empty())
        return {};
    auto length = static_cast<int32_t>(text.size());
    UErrorCode status = U_ZERO_ERROR;
    // The empty locale name selects the root, locale-independent mapping.
    int32_t needed = function(nullptr, 0, text.data(), length, "", &status);
    std::u16string out(static_cast<std::size_t>(needed), u'\0');
    status = U_ZERO_ERROR;
    function(out.data(), needed, text.data(), length, "", &status);
    if (U_FAILURE(status))
        return std::u16string(text);
    return out;
}

const icu::Normalizer2 &nfd() {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *instance = icu::Normalizer2::getNFDInstance(status);
    return *instance;
}

std::u16string nfdOf(std::u16string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString normalized = nfd().normalize(toIcu(text), status);
    return fromIcu(normalized);
}

std::u16string foldedCase(std::u16string_view text) {
    if (text.empty())
        return {};
    auto length = static_cast<int32_t>(text.size());
    UErrorCode status = U_ZERO_ERROR;
    int32_t needed = u_strFoldCase(nullptr, 0, text.data(), length, U_FOLD_CASE_DEFAULT, &status);
    std::u16string out(static_cast<std::size_t>(needed), u'\0');
    status = U_ZERO_ERROR;
    u_strFoldCase(out.data(), needed, text.data(), length, U_FOLD_CASE_DEFAULT, &status);
    return out;
}

bool inCategories(char32_t codePoint, uint32_t mask) {
    return (U_GET_GC_MASK(static_cast<UChar32>(codePoint)) & mask) != 0;
}

bool hasProperty(char32_t codePoint, UProperty property) {
    return u_hasBinaryProperty(static_cast<UChar32>(codePoint), property) != 0;
}

char32_t firstCodePoint(std::u16string_view grapheme) {
    return grapheme.empty() ? 0 : codePointStartingAt(grapheme, 0);
}

} // namespace

std::vector<char32_t> codePoints(std::u16string_view text) {
    std::vector<char32_t> out;
    for (std::size_t i = 0; i < text.size();) {
        char32_t codePoint = codePointStartingAt(text, i);
        out.push_back(codePoint);
        i += codePoint >= 0x10000 ? 2 : 1;
    }
    return out;
}

char32_t codePointStartingAt(std::u16string_view text, std::size_t index) {
    char16_t unit = text[index];
    if (U16_IS_LEAD(unit) && index + 1 < text.size() && U16_IS_TRAIL(text[index + 1]))
        return static_cast<char32_t>(U16_GET_SUPPLEMENTARY(unit, text[index + 1]));
    return unit;
}

std::vector<std::u16string> graphemes(std::u16string_view text) {
    std::vector<std::u16string> out;
    if (text.empty())
        return out;
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    icu::UnicodeString source = toIcu(text);
    breaks->setText(source);
    int32_t start = breaks->first();
    for (int32_t end = breaks->next(); end != icu::BreakIterator::DONE; end = breaks->next()) {
        out.emplace_back(text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)));
        start = end;
    }
    return out;
}

std::size_t graphemeCount(std::u16string_view text) {
    return graphemes(text).size();
}

std::u16string joined(const std::vector<std::u16string> &pieces) {
    std::u16string out;
    for (const auto &piece : pieces)
        out += piece;
    return out;
}

std::u16string upperMapped(std::u16string_view text) {
    return caseMapped(text, u_strToUpper);
}
std::u16string lowerMapped(std::u16string_view text) {
    return caseMapped(text, u_strToLower);
}

std::u16string capitalizedWord(std::u16string_view word) {
    std::vector<std::u16string> pieces = graphemes(word);
    if (pieces.empty())
        return {};
    return upperMapped(pieces.front()) + lowerMapped(word.substr(pieces.front().size()));
}

bool isMinorWord(std::u16string_view word) {
    static constexpr std::array<std::u16string_view, 23> minorWords = {
        u"a",  u"an", u"and", u"as",  u"at", u"but", u"by", u"for", u"from", u"in",   u"into", u"nor",
        u"of", u"on", u"or",  u"per", u"so", u"the", u"to", u"up",  u"via",  u"with", u"yet"};
    std::u16string lowered = lowerMapped(word);
    for (std::u16string_view minor : minorWords) {
        if (lowered == minor)
            return true;
    }
    return false;
}

bool isAlphabeticGrapheme(std::u16string_view grapheme) {
    return !grapheme.empty() && hasProperty(firstCodePoint(grapheme), UCHAR_ALPHABETIC);
}

bool isLetterGrapheme(std::u16string_view grapheme) {
    if (grapheme.empty())
        return false;
    for (char32_t codePoint : codePoints(grapheme)) {
        if (!inCategories(codePoint, U_GC_L_MASK | U_GC_M_MASK))
            return false;
    }
    return true;
}

bool isNumericGrapheme(std::u16string_view grapheme) {
    return !grapheme.empty() && u_getIntPropertyValue(static_cast<UChar32>(firstCodePoint(grapheme)),
                                                      UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

bool isWhiteSpaceGrapheme(std::u16string_view grapheme) {
    return !grapheme.empty() && hasProperty(firstCodePoint(grapheme), UCHAR_WHITE_SPACE);
}

bool isUppercaseGrapheme(std::u16string_view grapheme) {
    std::vector<char32_t> scalars = codePoints(grapheme);
    if (scalars.size() == 1 && hasProperty(scalars.front(), UCHAR_UPPERCASE))
        return true;
    if (upperMapped(grapheme) != grapheme)
        return false;
    bool isCased = (scalars.size() == 1 && hasProperty(scalars.front(), UCHAR_CASED)) ||
                   lowerMapped(grapheme) != grapheme;
    return isCased;
}

bool isLineFeedGrapheme(std::u16string_view grapheme) {
    return grapheme == u"\n";
}

bool isAlphanumericUnit(char16_t unit) {
    if (U16_IS_SURROGATE(unit))
        return false;
    return inCategories(unit, U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK);
}

bool containsPrivateUseScalar(std::u16string_view text) {
    for (char32_t codePoint : codePoints(text)) {
        if (codePoint >= 0xE000 && codePoint <= 0xF8FF)
            return true;
    }
    return false;
}

std::u16string caselessForm(std::u16string_view text) {
    return nfdOf(foldedCase(nfdOf(text)));
}

const std::u16string &CaselessPrefixes::formUpTo(std::size_t end) {
    while (forms_.size() < end - start_)
        forms_.push_back(caselessForm(text_.substr(start_, forms_.size() + 1)));
    return forms_[end - start_ - 1];
}

std::optional<std::size_t> caselessOccurrenceEnd(std::u16string_view text, CaselessPrefixes &prefixes,
                                                 std::size_t start, const std::u16string &termForm) {
    if (termForm.empty())
        return std::nullopt;
    // Each further code unit makes the caseless form strictly longer, so at most one end fits.
    for (std::size_t end = start + 1; end <= text.size(); ++end) {
        const std::u16string &candidate = prefixes.formUpTo(end);
        if (candidate.size() > termForm.size())
            break;
        if (candidate != termForm)
            continue;
        if (end == text.size() ||
            nfd().hasBoundaryBefore(static_cast<UChar32>(codePointStartingAt(text, end))))
            return end;
    }
    return std::nullopt;
}

std::optional<std::vector<PatternMatch>> findAllMatches(std::u16string_view pattern, std::uint32_t flags,
                                                        std::u16string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError{};
    std::unique_ptr<icu::RegexPattern> compiled(
        icu::RegexPattern::compile(toIcu(pattern), flags, parseError, status));
    if (U_FAILURE(status))
        return std::nullopt;
    icu::UnicodeString subject = toIcu(text);
    std::unique_ptr<icu::RegexMatcher> matcher(compiled->matcher(subject, status));
    if (U_FAILURE(status))
        return std::nullopt;
    std::vector<PatternMatch> matches;
    while (matcher->find(status) && U_SUCCESS(status)) {
        int32_t start = matcher->start(status);
        int32_t end = matcher->end(status);
        matches.push_back({static_cast<std::size_t>(start), static_cast<std::size_t>(end)});
    }
    return matches;
}

} // namespace glyphmill::reference::text
