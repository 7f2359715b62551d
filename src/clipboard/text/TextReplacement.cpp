// Find & Replace over the whole text: a literal search in which canonically equivalent text
// matches and, unless case must match, case is ignored.
#include "clipboard/text/LineTools.h"

#include "clipboard/text/LiteralSearch.h"
#include "transform/TextModel.h"

#include <unicode/normalizer2.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <vector>

namespace glyphmill::lineTools {

namespace {

icu::UnicodeString aliasOf(std::u16string_view text) {
    return icu::UnicodeString(false, text.data(), int32_t(text.size()));
}

// A set of positions, one bit each, that counts and steps over its members a word at a time.
class PositionSet {
public:
    void add(std::size_t position) {
        const std::size_t word = position / wordBits;
        if (word >= words_.size())
            words_.resize(std::max(word + 1, words_.size() * 2), 0);
        words_[word] |= std::uint64_t(1) << (position % wordBits);
    }

    // Every position in [first, last).
    void addRange(std::size_t first, std::size_t last) {
        if (first >= last)
            return;
        add(last - 1);
        for (std::size_t word = first / wordBits; word <= (last - 1) / wordBits; ++word) {
            std::uint64_t bits = ~std::uint64_t(0);
            if (word == first / wordBits)
                bits &= ~std::uint64_t(0) << (first % wordBits);
            if (word == (last - 1) / wordBits && last % wordBits != 0)
                bits &= ~(~std::uint64_t(0) << (last % wordBits));
            words_[word] |= bits;
        }
    }

    bool contains(std::size_t position) const {
        const std::size_t word = position / wordBits;
        return word < words_.size() && (words_[word] >> (position % wordBits) & 1) != 0;
    }

    // The members in (from, to].
    std::size_t countAfter(std::size_t from, std::size_t to) const {
        std::size_t count = 0;
        for (std::size_t word = from / wordBits; word <= to / wordBits && word < words_.size(); ++word) {
            std::uint64_t bits = words_[word];
            if (word == from / wordBits)
                bits &= ~std::uint64_t(0) << (from % wordBits) << 1;
            if (word == to / wordBits && to % wordBits + 1 < wordBits)
                bits &= (std::uint64_t(1) << (to % wordBits + 1)) - 1;
            count += std::size_t(std::popcount(bits));
        }
        return count;
    }

    // The count-th member after from (count > 0), which must exist.
    std::size_t stepForward(std::size_t from, std::size_t count) const {
        std::size_t word = from / wordBits;
        std::uint64_t bits = words_[word] & (~std::uint64_t(0) << (from % wordBits) << 1);
        while (true) {
            const std::size_t inWord = std::size_t(std::popcount(bits));
            if (inWord >= count)
                break;
            count -= inWord;
            bits = words_[++word];
        }
        for (; count > 1; --count)
            bits &= bits - 1;
        return word * wordBits + std::size_t(std::countr_zero(bits));
    }

private:
    static constexpr std::size_t wordBits = 64;
    std::vector<std::uint64_t> words_;
};

// The text in the form the search compares (NFD, or the caseless form of text::caselessForm),
// built one canonical segment (a starter and the marks that follow it) at a time, so that
// every segment end in the form maps back to a position in the original text. A match counts
// only from one segment end to another, so it never cuts an accented letter apart.
//
// The segment ends are kept as two sets of positions, in the form and in the text: the k-th
// end in one is the k-th in the other. That is two bits a unit however many segments change
// length, where a list of the places the two drift apart takes 16 bytes for every "é" or "ß".
class SearchForm {
public:
    SearchForm(std::u16string_view original, bool matchCase, const icu::Normalizer2 &nfd)
        : original_(original), matchCase_(matchCase), nfd_(nfd) {
        // Decomposed accents and foldings such as "ß" to "ss" make the form longer than the text;
        // growing a large buffer copies it whole.
        units_.reserve(original.size() + original.size() / 4);
        boundaries_.add(0);
        originalBoundaries_.add(0);
        std::size_t start = 0;
        while (start < original.size()) {
            // A run of ASCII characters, each its own segment, in one go.
            std::size_t asciiEnd = start;
            while (asciiEnd < original.size() && isPlainAsciiSegment(asciiEnd))
                ++asciiEnd;
            if (asciiEnd > start) {
                const std::size_t formStart = units_.size();
                for (std::size_t i = start; i < asciiEnd; ++i) {
                    const char16_t unit = original[i];
                    units_.push_back(!matchCase_ && unit >= u'A' && unit <= u'Z' ? char16_t(unit | 0x20)
                                                                                 : unit);
                }
                boundaries_.addRange(formStart + 1, units_.size() + 1);
                originalBoundaries_.addRange(start + 1, asciiEnd + 1);
                start = asciiEnd;
                continue;
            }
            std::size_t end = segmentEnd(start);
            appendForm(original.substr(start, end - start));
            boundaries_.add(units_.size());
            originalBoundaries_.add(end);
            start = end;
        }
    }

    std::u16string_view units() const { return units_; }
    bool isBoundary(std::size_t formIndex) const { return boundaries_.contains(formIndex); }

    // The original position of a segment end; calls must come in ascending order, from the
    // start again after restartMapping.
    std::size_t originalIndex(std::size_t formIndex) {
        if (formIndex > formCursor_) {
            const std::size_t ends = boundaries_.countAfter(formCursor_, formIndex);
            originalCursor_ = originalBoundaries_.stepForward(originalCursor_, ends);
            formCursor_ = formIndex;
        }
        return originalCursor_;
    }

    void restartMapping() {
        formCursor_ = 0;
        originalCursor_ = 0;
    }

private:
    // An ASCII character that no combining mark follows: its own form, one unit long.
    bool isPlainAsciiSegment(std::size_t index) const {
        return original_[index] < 0x80 && (index + 1 == original_.size() || original_[index + 1] < 0x300);
    }

    std::size_t segmentEnd(std::size_t start) const {
        std::size_t end = start + text::codeUnitCount(text::codePointAt(original_, start));
        // Below U+0300 every character starts a segment of its own.
        while (end < original_.size() && original_[end] >= 0x300) {
            char32_t c = text::codePointAt(original_, end);
            if (nfd_.hasBoundaryBefore(UChar32(c)))
                break;
            end += text::codeUnitCount(c);
        }
        return end;
    }

    void appendForm(std::u16string_view segment) {
        char32_t first = text::codePointAt(segment, 0);
        if (segment.size() == text::codeUnitCount(first) && nfd_.isInert(UChar32(first))) {
            if (matchCase_) {
                units_.append(segment);
                return;
            }
            if (appendInertFolding(segment))
                return;
        }
        if (matchCase_) {
            UErrorCode status = U_ZERO_ERROR;
            icu::UnicodeString decomposed = nfd_.normalize(aliasOf(segment), status);
            units_.append(decomposed.getBuffer(), std::size_t(decomposed.length()));
            return;
        }
        units_.append(text::caselessForm(segment));
    }

    // The full case folding of one character that NFD leaves alone, when the folding is left
    // alone by NFD too; the common case, done without the three normalizing passes.
    bool appendInertFolding(std::u16string_view character) {
        std::array<UChar, 8> folded{};
        UErrorCode status = U_ZERO_ERROR;
        int32_t length = u_strFoldCase(folded.data(), int32_t(folded.size()), character.data(),
                                       int32_t(character.size()), U_FOLD_CASE_DEFAULT, &status);
        if (U_FAILURE(status) || length > int32_t(folded.size()))
            return false;
        std::u16string_view result(folded.data(), std::size_t(length));
        for (std::size_t i = 0; i < result.size();) {
            char32_t c = text::codePointAt(result, i);
            if (!nfd_.isInert(UChar32(c)))
                return false;
            i += text::codeUnitCount(c);
        }
        units_.append(result);
        return true;
    }

    std::u16string_view original_;
    bool matchCase_;
    const icu::Normalizer2 &nfd_;
    std::u16string units_;
    PositionSet boundaries_;         // in the form
    PositionSet originalBoundaries_; // in the text
    std::size_t formCursor_ = 0;
    std::size_t originalCursor_ = 0;
};

std::u16string formOfFind(std::u16string_view find, bool matchCase, const icu::Normalizer2 &nfd) {
    if (!matchCase)
        return text::caselessForm(find);
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString decomposed = nfd.normalize(aliasOf(find), status);
    if (U_FAILURE(status))
        return std::u16string(find);
    return std::u16string(decomposed.getBuffer(), std::size_t(decomposed.length()));
}

} // namespace

std::u16string replacedText(std::u16string_view text, const FindReplaceRequest &request) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *nfd = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status) || request.find.empty())
        return std::u16string(text);
    const std::u16string needle = formOfFind(request.find, request.matchCase, *nfd);
    if (needle.empty())
        return std::u16string(text);

    SearchForm form(text, request.matchCase, *nfd);
    const std::u16string_view haystack = form.units();
    const LiteralSearch search(needle);
    auto onSegmentEnds = [&](std::size_t at) {
        return form.isBoundary(at) && form.isBoundary(at + needle.size());
    };
    // Calls visit(start, end) with the original span of every match, left to right.
    auto forEachMatch = [&](auto &&visit) {
        form.restartMapping();
        std::size_t searchFrom = 0;
        while (true) {
            const std::size_t at = search.find(haystack, searchFrom, onSegmentEnds);
            if (at == LiteralSearch::npos)
                return;
            const std::size_t end = at + needle.size();
            const std::size_t originalStart = form.originalIndex(at);
            visit(originalStart, form.originalIndex(end));
            searchFrom = end;
        }
    };

    // The size of the result first, so that it is made in one allocation. The matches are
    // listed on the way while they are few; a text dense with them is searched a second time
    // instead, since the list would take 16 bytes a match.
    struct Match {
        std::size_t start;
        std::size_t end;
    };
    const std::size_t listLimit = text.size() / 32 + 16;
    std::vector<Match> matches;
    bool listed = true;
    std::size_t resultSize = text.size();
    forEachMatch([&](std::size_t start, std::size_t end) {
        resultSize = resultSize - (end - start) + request.replacement.size();
        if (listed && matches.size() == listLimit) {
            listed = false;
            std::vector<Match>().swap(matches);
        }
        if (listed)
            matches.push_back({start, end});
    });
    std::u16string result;
    result.reserve(resultSize);
    std::size_t copiedUpTo = 0;
    auto replace = [&](std::size_t start, std::size_t end) {
        result.append(text.substr(copiedUpTo, start - copiedUpTo));
        result.append(request.replacement);
        copiedUpTo = end;
    };
    if (listed) {
        for (const Match &match : matches)
            replace(match.start, match.end);
    } else {
        forEachMatch(replace);
    }
    result.append(text.substr(copiedUpTo));
    return result;
}

} // namespace glyphmill::lineTools
