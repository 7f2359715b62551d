// The tools that keep only some lines: those a regular expression matches, and those that
// contain a text.
#include "clipboard/text/LineTools.h"

#include "clipboard/text/LiteralSearch.h"
#include "transform/TextModel.h"

#include <unicode/regex.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>

namespace glyphmill::lineTools {

namespace {

void appendKeptLine(std::u16string &out, bool &hasKept, std::u16string_view line) {
    if (hasKept)
        out.push_back(text::lineFeed);
    out.append(line);
    hasKept = true;
}

// The caseless form of text::caselessForm, with ASCII lower-cased in place of the three ICU
// passes.
void appendCaselessPiece(std::u16string &form, std::u16string_view piece) {
    const std::size_t pieceStart = form.size();
    for (char16_t unit : piece) {
        if (unit >= 0x80) {
            form.resize(pieceStart);
            form.append(text::caselessForm(piece));
            return;
        }
        form.push_back(unit >= u'A' && unit <= u'Z' ? char16_t(unit | 0x20) : unit);
    }
}

// Lines longer than this are made caseless a piece at a time, so that ICU's passes over a line
// of megabytes do not each hold a copy of it.
constexpr std::size_t caselessPieceUnits = std::size_t(1) << 16;

// A piece ends before an ASCII character: no character on either side of one moves past it or
// changes with what is on the other side, under NFD or case folding, so the forms of the
// pieces put together are the form of the line.
void assignCaselessForm(std::u16string &form, std::u16string_view line) {
    form.clear();
    form.reserve(line.size());
    std::size_t start = 0;
    while (start < line.size()) {
        std::size_t end = std::min(line.size(), start + caselessPieceUnits);
        while (end < line.size() && line[end] >= 0x80)
            ++end;
        appendCaselessPiece(form, line.substr(start, end - start));
        start = end;
    }
}

std::unique_ptr<icu::RegexPattern> compiledPattern(std::u16string_view pattern) {
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError;
    std::unique_ptr<icu::RegexPattern> compiled(icu::RegexPattern::compile(
        icu::UnicodeString(false, pattern.data(), int32_t(pattern.size())), 0, parseError, status));
    if (U_FAILURE(status))
        return nullptr;
    return compiled;
}

using Clock = std::chrono::steady_clock;

// A second for any text, and one more for every ten million UTF-16 units (10 MB of ASCII), so
// that a fair pattern on a large input is never stopped while a runaway one is stopped soon on
// a clipboard's text.
Clock::duration searchBudget(std::size_t textLength) {
    return std::chrono::seconds(1) + std::chrono::nanoseconds(100 * std::int64_t(textLength));
}

struct Deadline {
    Clock::time_point at;
    bool passed() const { return Clock::now() >= at; }
};

UBool U_CALLCONV beforeDeadline(const void *deadline, int32_t /*timeUnits*/) {
    return !static_cast<const Deadline *>(deadline)->passed();
}

constexpr std::size_t linesBetweenClockReadings = 32;

} // namespace

bool isValidPattern(std::u16string_view pattern) {
    return compiledPattern(pattern) != nullptr;
}

MatchingResult matchingLines(std::u16string_view pattern, std::u16string_view text) {
    // Declared before the matcher, which refers to it until the matcher is gone.
    icu::UnicodeString input;
    std::unique_ptr<icu::RegexPattern> compiled = compiledPattern(pattern);
    if (!compiled)
        return {{}, MatchingFailure::invalidPattern};
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexMatcher> matcher(compiled->matcher(status));
    if (U_FAILURE(status) || !matcher)
        return {{}, MatchingFailure::invalidPattern};
    // The engine calls back at every unit of its time limit (some thousands of backtracking
    // steps); past the deadline the call stops the search with an error.
    const Deadline deadline{Clock::now() + searchBudget(text.size())};
    matcher->setMatchCallback(beforeDeadline, &deadline, status);
    if (U_FAILURE(status))
        return {{}, MatchingFailure::invalidPattern};

    // Each line is its own input, so "^" and "$" anchor at the line without multi-line mode.
    std::u16string result;
    result.reserve(text.size());
    // Every e-mail address holds an "@"; the lines without one would cost the expression a
    // failed attempt at each letter of each word.
    const bool needsAt = pattern == presetPattern(RegexPreset::email);
    bool hasKept = false;
    // A line whose search stays short of one time unit never calls back, so the clock is also
    // read between lines; a few dozen such lines take milliseconds at most.
    std::size_t linesSinceClock = 0;
    bool stopped = false;
    forEachLine(text, [&](std::u16string_view line) {
        if (++linesSinceClock == linesBetweenClockReadings) {
            linesSinceClock = 0;
            if (deadline.passed()) {
                stopped = true;
                return false;
            }
        }
        if (needsAt && line.find(u'@') == std::u16string_view::npos)
            return true;
        input.setTo(false, line.data(), int32_t(line.size()));
        UErrorCode lineStatus = U_ZERO_ERROR;
        matcher->reset(input);
        const bool found = matcher->find(0, lineStatus);
        // Stopped by the deadline, or out of backtracking stack: either way the line's answer
        // is unknown.
        if (U_FAILURE(lineStatus)) {
            stopped = true;
            return false;
        }
        if (found)
            appendKeptLine(result, hasKept, line);
        return true;
    });
    if (stopped)
        return {{}, MatchingFailure::tooSlow};
    return {std::move(result), std::nullopt};
}

// Case-insensitive containment in every locale: both sides are compared in their caseless form
// (NFD of the full default case folding), so "ß" finds "SS" and composed and decomposed accents
// meet. The same default folding serves every locale, the Turkish one included.
std::u16string containingLines(std::u16string_view needle, std::u16string_view text) {
    std::u16string needleForm;
    assignCaselessForm(needleForm, needle);
    std::u16string result;
    if (needleForm.empty())
        return result;
    result.reserve(text.size());
    const LiteralSearch search(needleForm);
    bool hasKept = false;
    std::u16string lineForm;
    forEachLine(text, [&](std::u16string_view line) {
        assignCaselessForm(lineForm, line);
        // A match must not end inside a character: "e" is not found in a decomposed "é".
        auto endsWholeCharacter = [&](std::size_t at) {
            const std::size_t end = at + needleForm.size();
            return end == lineForm.size() ||
                   u_getCombiningClass(UChar32(text::codePointAt(lineForm, end))) == 0;
        };
        if (search.find(lineForm, 0, endsWholeCharacter) != LiteralSearch::npos)
            appendKeptLine(result, hasKept, line);
    });
    return result;
}

} // namespace glyphmill::lineTools
