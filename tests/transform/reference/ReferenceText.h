// The text model of the reference transformer, written plainly on top of ICU: graphemes from the
// root-locale break iterator, classes read from ICU properties, case mapping of exactly the string
// handed in, and a caseless search that tries every end position.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glyphmill::reference::text {

// Code points in order; an unpaired surrogate stands for itself.
std::vector<char32_t> codePoints(std::u16string_view text);
// The code point that starts at index (a lone surrogate, or a whole pair).
char32_t codePointStartingAt(std::u16string_view text, std::size_t index);

// The extended grapheme clusters of the text taken on its own.
std::vector<std::u16string> graphemes(std::u16string_view text);
std::size_t graphemeCount(std::u16string_view text);
std::u16string joined(const std::vector<std::u16string> &pieces);

// Root-locale full case mapping of exactly the given string.
std::u16string upperMapped(std::u16string_view text);
std::u16string lowerMapped(std::u16string_view text);
std::u16string capitalizedWord(std::u16string_view word);
bool isMinorWord(std::u16string_view word);

bool isAlphabeticGrapheme(std::u16string_view grapheme);
bool isLetterGrapheme(std::u16string_view grapheme);
bool isNumericGrapheme(std::u16string_view grapheme);
bool isWhiteSpaceGrapheme(std::u16string_view grapheme);
bool isUppercaseGrapheme(std::u16string_view grapheme);
bool isLineFeedGrapheme(std::u16string_view grapheme);

// A code unit of general category L, M or N; surrogate halves never are.
bool isAlphanumericUnit(char16_t unit);
bool containsPrivateUseScalar(std::u16string_view text);

// NFD of the default full case folding of the NFD.
std::u16string caselessForm(std::u16string_view text);

// The caseless forms of text[start, end) for growing ends, each computed once and remembered, so
// that many terms can be tried at one start without redoing the normalisation.
class CaselessPrefixes {
public:
    CaselessPrefixes(std::u16string_view text, std::size_t start) : text_(text), start_(start) {}
    const std::u16string &formUpTo(std::size_t end);

private:
    std::u16string_view text_;
    std::size_t start_;
    std::vector<std::u16string> forms_; // forms_[k] covers text[start, start + k + 1)
};

// The end of the caseless occurrence of a term (given by its caseless form) that starts exactly at
// the prefixes' start, if there is one.
std::optional<std::size_t> caselessOccurrenceEnd(std::u16string_view text, CaselessPrefixes &prefixes,
                                                 std::size_t start, const std::u16string &termForm);

struct PatternMatch {
    std::size_t start;
    std::size_t end;
};
// Compiles the pattern anew and returns every match over the whole text, left to right;
// nothing when the pattern does not compile.
std::optional<std::vector<PatternMatch>> findAllMatches(std::u16string_view pattern, std::uint32_t flags,
                                                        std::u16string_view text);

} // namespace glyphmill::reference::text
