// Find & Replace over the whole text: a literal search in which canonically equivalent text
// matches and, unless case must match, case is ignored.
#include "clipboard/LineTools.h"

#include "transform/TextModel.h"

#include <unicode/normalizer2.h>
#include <unicode/ustring.h>

#include <array>
#include <vector>

namespace glyphmill::lineTools {

namespace {

icu::UnicodeString aliasOf(std::u16string_view text) {
    return icu::UnicodeString(false, text.data(), int32_t(text.size()));
}

// The text in the form the search compares (NFD, or the caseless form of text::caselessForm),
// built one canonical segment (a starter and the marks that follow it) at a time, so that
// every segment end in the form maps back to a position in the original text. A match counts
// only from one segment end to another, so it never cuts an accented letter apart.
class SearchForm {
public:
    SearchForm(std::u16string_view original, bool matchCase, const icu::Normalizer2 &nfd)
        : original_(original), matchCase_(matchCase), nfd_(nfd) {
        // Decomposed accents and foldings such as "ß" to "ss" make the form longer than the text;
        // growing a large buffer copies it whole.
        units_.reserve(original.size() + original.size() / 4);
        boundaries_.reserve(original.size() + 1);
        boundaries_.push_back(true);
        anchors_.push_back({0, 0});
        std::size_t start = 0;
        while (start < original.size()) {
            if (isPlainAsciiSegment(start)) {
                char16_t unit = original[start];
                units_.push_back(!matchCase_ && unit >= u'A' && unit <= u'Z' ? char16_t(unit | 0x20) : unit);
                boundaries_.push_back(true);
                ++start;
                continue;
            }
            std::size_t end = segmentEnd(start);
            std::size_t formStart = units_.size();
            appendForm(original.substr(start, end - start));
            boundaries_.resize(units_.size() + 1, false);
            boundaries_[units_.size()] = true;
            if (units_.size() - formStart != end - start)
                anchors_.push_back({units_.size(), end});
            start = end;
        }
    }

    std::u16string_view units() const { return units_; }
    bool isBoundary(std::size_t formIndex) const { return boundaries_[formIndex]; }

    // The original position of a segment end; calls must come in ascending order.
    std::size_t originalIndex(std::size_t formIndex) {
        while (anchorCursor_ + 1 < anchors_.size() && anchors_[anchorCursor_ + 1].formIndex <= formIndex)
            ++anchorCursor_;
        const Anchor &anchor = anchors_[anchorCursor_];
        return anchor.originalIndex + (formIndex - anchor.formIndex);
    }

private:
    struct Anchor {
        std::size_t formIndex;
        std::size_t originalIndex;
    };

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
    std::vector<bool> boundaries_;
    std::vector<Anchor> anchors_;
    std::size_t anchorCursor_ = 0;
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
    // The matches first, then the result in one allocation of its exact size.
    struct Match {
        std::size_t start;
        std::size_t end;
    };
    std::vector<Match> matches;
    std::size_t searchFrom = 0;
    while (true) {
        std::size_t at = haystack.find(needle, searchFrom);
        if (at == std::u16string_view::npos)
            break;
        std::size_t end = at + needle.size();
        if (!form.isBoundary(at) || !form.isBoundary(end)) {
            searchFrom = at + 1;
            continue;
        }
        matches.push_back({form.originalIndex(at), form.originalIndex(end)});
        searchFrom = end;
    }

    std::size_t resultSize = text.size();
    for (const Match &match : matches)
        resultSize = resultSize - (match.end - match.start) + request.replacement.size();
    std::u16string result;
    result.reserve(resultSize);
    std::size_t copiedUpTo = 0;
    for (const Match &match : matches) {
        result.append(text.substr(copiedUpTo, match.start - copiedUpTo));
        result.append(request.replacement);
        copiedUpTo = match.end;
    }
    result.append(text.substr(copiedUpTo));
    return result;
}

} // namespace glyphmill::lineTools
