// Fuzzes TextTransformer::apply. Input layout: one byte for the kind, one byte of protection
// switches, then UTF-16 code units: a byte below 0x80 is that ASCII unit, a byte from 0x80 up is
// followed by two bytes that form one raw unit (lone surrogates included). U+0000 units cut the
// units into the text and up to three protected terms. A 0x01 byte followed by two bytes n
// repeats the last (up to 32) units of the text n times (in a term it does nothing), so that
// short inputs reach texts with tens of thousands of spans and terms.
//
// Checks: every link and e-mail address found in the input comes out unchanged as often as it
// went in; every placeholder character and digit of the input comes out, in order; and short
// inputs give exactly what the reference transformer gives wherever its literal placeholder rules
// cannot mix texts up.
#include "reference/ReferenceTransformer.h"
#include "transform/SpanDetectors.h"
#include "transform/TextTransformer.h"

#include <unicode/regex.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using glyphmill::TextProtectionOptions;
using glyphmill::TextTransformKind;

constexpr std::size_t maximumTerms = 3;
constexpr std::size_t longestTextComparedWithReference = 300;
constexpr std::size_t longestRepeatedPiece = 32;
constexpr std::size_t longestText = 1u << 18; // room for 30,000 short spans
constexpr std::size_t mostSpansCounted = 64;
constexpr std::size_t longestTextMatchedWithIcu = 4096;

struct FuzzInput {
    TextTransformKind kind;
    TextProtectionOptions options;
    std::u16string text;
    std::vector<std::u16string> terms;
};

FuzzInput decode(const std::uint8_t *data, std::size_t size) {
    FuzzInput input{glyphmill::allTextTransformKinds[data[0] % 5], {}, {}, {}};
    std::uint8_t switches = data[1];
    TextProtectionOptions &o = input.options;
    bool *fields[] = {&o.preserveProtectedTerms,
                      &o.preserveURLs,
                      &o.preserveEmails,
                      &o.preserveFilePaths,
                      &o.preserveHashtagsAndMentions,
                      &o.preserveCodeLikeTokens,
                      &o.correctAllUppercaseProse};
    for (std::size_t bit = 0; bit < 7; ++bit)
        *fields[bit] = (switches >> bit) & 1;

    std::u16string *current = &input.text;
    for (std::size_t i = 2; i < size; ++i) {
        if (data[i] == 0x01) {
            if (i + 2 >= size)
                break;
            std::size_t times = data[i + 1] | (data[i + 2] << 8);
            i += 2;
            if (current != &input.text)
                continue; // terms stay short: the term search tries each at every position
            std::size_t length = std::min(current->size(), longestRepeatedPiece);
            std::u16string piece = current->substr(current->size() - length);
            for (std::size_t n = 0; n < times && current->size() + length <= longestText; ++n)
                *current += piece;
            continue;
        }
        char16_t unit = data[i];
        if (data[i] >= 0x80) {
            if (i + 2 >= size)
                break;
            unit = static_cast<char16_t>(data[i + 1] | (data[i + 2] << 8));
            i += 2;
        }
        if (unit == 0) {
            if (input.terms.size() == maximumTerms)
                break;
            current = &input.terms.emplace_back();
            continue;
        }
        current->push_back(unit);
    }
    return input;
}

std::string escaped(std::u16string_view text) {
    std::string out;
    char buffer[12];
    for (char16_t unit : text) {
        if (unit >= 0x20 && unit < 0x7F && unit != '\\') {
            out.push_back(static_cast<char>(unit));
        } else {
            std::snprintf(buffer, sizeof buffer, "\\u%04X", static_cast<unsigned>(unit));
            out += buffer;
        }
    }
    return out;
}

[[noreturn]] void fail(const char *what, const FuzzInput &input, std::u16string_view detail,
                       std::u16string_view output) {
    std::fprintf(stderr, "%s\nkind %d\ntext   \"%s\"\n", what, static_cast<int>(input.kind),
                 escaped(input.text).c_str());
    for (const auto &term : input.terms)
        std::fprintf(stderr, "term   \"%s\"\n", escaped(term).c_str());
    std::fprintf(stderr, "detail \"%s\"\noutput \"%s\"\n", escaped(detail).c_str(), escaped(output).c_str());
    std::abort();
}

struct Span {
    std::int32_t start;
    std::int32_t end;
};

// Matches of a pattern over the original text; the patterns are those of the span detectors.
std::vector<Span> matchesOf(const char16_t *pattern, std::uint32_t flags, const std::u16string &text) {
    // ICU's matcher tries every start of a long run of address characters, quadratic on the long
    // texts repetition builds; there the engine's own detectors, which the tests hold to these
    // patterns, find the spans.
    if (text.size() > longestTextMatchedWithIcu) {
        auto ranges = pattern[0] == u'(' ? glyphmill::findLinks(text) : glyphmill::findEmailAddresses(text);
        std::vector<Span> spans;
        for (auto range : ranges)
            spans.push_back({static_cast<std::int32_t>(range.start), static_cast<std::int32_t>(range.end)});
        return spans;
    }
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError{};
    std::unique_ptr<icu::RegexPattern> compiled(
        icu::RegexPattern::compile(icu::UnicodeString(pattern), flags, parseError, status));
    icu::UnicodeString subject(text.data(), static_cast<int32_t>(text.size()));
    std::unique_ptr<icu::RegexMatcher> matcher(compiled->matcher(subject, status));
    std::vector<Span> spans;
    while (U_SUCCESS(status) && matcher->find(status))
        spans.push_back({matcher->start(status), matcher->end(status)});
    return spans;
}

std::size_t occurrences(std::u16string_view text, std::u16string_view piece) {
    std::size_t count = 0;
    for (std::size_t at = text.find(piece); at != std::u16string_view::npos;
         at = text.find(piece, at + piece.size()))
        ++count;
    return count;
}

// Each distinct span must occur in the output at least as often as the input's matches hold it.
class SpanCounts {
public:
    void add(const FuzzInput &input, Span span) {
        std::u16string found = input.text.substr(static_cast<std::size_t>(span.start),
                                                 static_cast<std::size_t>(span.end - span.start));
        if (found.find(u'\uE000') == std::u16string::npos) // such a match is never masked
            ++counts_[found];
    }
    void check(const FuzzInput &input, const std::u16string &output, const char *what) const {
        std::size_t checked = 0;
        for (const auto &[span, count] : counts_) {
            if (++checked > mostSpansCounted)
                break;
            if (occurrences(output, span) < count)
                fail(what, input, span, output);
        }
    }

private:
    std::map<std::u16string, std::size_t> counts_;
};

void checkLinksAndAddressesSurvive(const FuzzInput &input, const std::u16string &output) {
    std::vector<Span> links;
    if (input.options.preserveURLs) {
        links = matchesOf(uR"re((?i)\b(?:https?://|www\.)[^\s<>'\"]+)re", 0, input.text);
        SpanCounts linkCounts;
        for (Span link : links)
            linkCounts.add(input, link);
        linkCounts.check(input, output, "link changed");
    }
    if (!input.options.preserveEmails)
        return;
    SpanCounts addressCounts;
    std::size_t nextLink = 0;
    for (Span address :
         matchesOf(uR"re([A-Z0-9._%+\-]+@[A-Z0-9.\-]+\.[A-Z]{2,})re", UREGEX_CASE_INSENSITIVE, input.text)) {
        // An address that overlaps a link is masked as part of the link, or cut short by it.
        while (nextLink < links.size() && links[nextLink].end <= address.start)
            ++nextLink;
        if (nextLink == links.size() || links[nextLink].start >= address.end)
            addressCounts.add(input, address);
    }
    addressCounts.check(input, output, "e-mail address changed");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size < 2)
        return 0;
    FuzzInput input = decode(data, size);
    std::u16string output =
        glyphmill::TextTransformer{input.terms, input.options}.apply(input.kind, input.text);
    checkLinksAndAddressesSurvive(input, output);
    std::u16string skeleton = glyphmill::reference::placeholderSkeleton(input.text);
    if (glyphmill::reference::placeholderSkeleton(output) != skeleton)
        fail("placeholder characters or digits changed", input, skeleton, output);
    if (input.text.size() < longestTextComparedWithReference) {
        auto expected =
            glyphmill::reference::applyWhereUnambiguous(input.kind, input.text, input.terms, input.options);
        if (expected && *expected != output)
            fail("differs from the reference", input, *expected, output);
    }
    return 0;
}
