#include "TextModel.h"

#include "FastScan.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <optional>

namespace glyphmill::text {
namespace {

// ---- Grapheme cluster boundaries (UAX #29 rules GB3 to GB13) ----

enum class Gcb : unsigned char {
    other,
    cr,
    lf,
    control,
    extend,
    zwj,
    spacingMark,
    prepend,
    l,
    v,
    t,
    lv,
    lvt,
    ri
};

Gcb graphemeBreakClass(char32_t c) {
    switch (u_getIntPropertyValue(UChar32(c), UCHAR_GRAPHEME_CLUSTER_BREAK)) {
    case U_GCB_CR:
        return Gcb::cr;
    case U_GCB_LF:
        return Gcb::lf;
    case U_GCB_CONTROL:
        return Gcb::control;
    case U_GCB_EXTEND:
        return Gcb::extend;
    case U_GCB_ZWJ:
        return Gcb::zwj;
    case U_GCB_SPACING_MARK:
        return Gcb::spacingMark;
    case U_GCB_PREPEND:
        return Gcb::prepend;
    case U_GCB_L:
        return Gcb::l;
    case U_GCB_V:
        return Gcb::v;
    case U_GCB_T:
        return Gcb::t;
    case U_GCB_LV:
        return Gcb::lv;
    case U_GCB_LVT:
        return Gcb::lvt;
    case U_GCB_REGIONAL_INDICATOR:
        return Gcb::ri;
    default:
        return Gcb::other;
    }
}

bool isExtendedPictographic(char32_t c) {
    return u_hasBinaryProperty(UChar32(c), UCHAR_EXTENDED_PICTOGRAPHIC);
}

// The break class and the pictographic flag of a code point; those of the Basic
// Multilingual Plane are remembered once asked for.
struct BreakProperties {
    Gcb gcb;
    bool pictographic;
};
BreakProperties breakProperties(char32_t c) {
    static std::array<std::atomic<std::uint8_t>, 0x10000> memo{};
    constexpr std::uint8_t known = 0x80, pictographicBit = 0x40;
    if (c < 0x10000) {
        std::uint8_t entry = memo[c].load(std::memory_order_relaxed);
        if (entry & known)
            return {Gcb(entry & 0x3F), (entry & pictographicBit) != 0};
        BreakProperties properties{graphemeBreakClass(c), isExtendedPictographic(c)};
        memo[c].store(std::uint8_t(known | (properties.pictographic ? pictographicBit : 0) |
                                   std::uint8_t(properties.gcb)),
                      std::memory_order_relaxed);
        return properties;
    }
    return {graphemeBreakClass(c), isExtendedPictographic(c)};
}

} // namespace

std::size_t GraphemeCursor::slowNext(std::size_t start) const {
    const std::size_t size = text_.size();
    char32_t a = codePointAt(text_, start);
    auto [before, firstPictographic] = breakProperties(a);
    // State for the emoji rule (ExtPict Extend* ZWJ x ExtPict) and the flag-pair rule; both
    // sequences can only begin inside the current cluster, so the walk needs no look-back.
    enum { none, pictograph, pictographZwj } emoji = firstPictographic ? pictograph : none;
    int regionalIndicators = before == Gcb::ri ? 1 : 0;
    std::size_t i = start + codeUnitCount(a);
    while (i < size) {
        char32_t b = codePointAt(text_, i);
        auto [after, pictographic] = breakProperties(b);
        bool joined;
        if (before == Gcb::cr && after == Gcb::lf)
            joined = true;
        else if (before == Gcb::cr || before == Gcb::lf || before == Gcb::control)
            joined = false;
        else if (after == Gcb::cr || after == Gcb::lf || after == Gcb::control)
            joined = false;
        else if (before == Gcb::l &&
                 (after == Gcb::l || after == Gcb::v || after == Gcb::lv || after == Gcb::lvt))
            joined = true;
        else if ((before == Gcb::lv || before == Gcb::v) && (after == Gcb::v || after == Gcb::t))
            joined = true;
        else if ((before == Gcb::lvt || before == Gcb::t) && after == Gcb::t)
            joined = true;
        else if (after == Gcb::extend || after == Gcb::zwj || after == Gcb::spacingMark)
            joined = true;
        else if (before == Gcb::prepend)
            joined = true;
        else if (emoji == pictographZwj && before == Gcb::zwj && pictographic)
            joined = true;
        else if (before == Gcb::ri && after == Gcb::ri)
            joined = (regionalIndicators % 2) == 1;
        else
            joined = false;
        if (!joined)
            break;

        if (pictographic)
            emoji = pictograph;
        else if (emoji == pictograph && after == Gcb::zwj)
            emoji = pictographZwj;
        else if (!(emoji == pictograph && after == Gcb::extend))
            emoji = none;
        regionalIndicators = after == Gcb::ri ? regionalIndicators + 1 : 0;
        before = after;
        i += codeUnitCount(b);
    }
    return i;
}

bool isStandaloneGrapheme(std::u16string_view text, std::size_t index) {
    if (text[index] == lineFeed) // GB3 to GB5: only a carriage return before it joins it
        return index == 0 || text[index - 1] != carriageReturn;
    if (index > 0 && breakProperties(codePointBefore(text, index)).gcb == Gcb::prepend)
        return false;
    if (index + 1 < text.size()) {
        Gcb after = breakProperties(codePointAt(text, index + 1)).gcb;
        if (after == Gcb::extend || after == Gcb::zwj || after == Gcb::spacingMark)
            return false;
    }
    return true;
}

std::size_t graphemeCount(std::u16string_view text) {
    GraphemeCursor cursor(text);
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); i = cursor.next(i))
        ++count;
    return count;
}

// ---- Character and grapheme classes ----

bool isLetterOrMark(char32_t c) {
    return (U_GET_GC_MASK(UChar32(c)) & (U_GC_L_MASK | U_GC_M_MASK)) != 0;
}

bool isLetterMarkOrNumber(char32_t c) {
    return (U_GET_GC_MASK(UChar32(c)) & (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0;
}

bool isWhiteSpaceOrNewline(char32_t c) {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || (U_GET_GC_MASK(UChar32(c)) & U_GC_Z_MASK) != 0;
}

bool detail::isAlphabeticGrapheme(std::u16string_view g) {
    char16_t unit = g[0];
    if (unit < 0x80)
        return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z';
    return u_isUAlphabetic(UChar32(codePointAt(g, 0)));
}

bool detail::isLetterGrapheme(std::u16string_view g) {
    for (std::size_t i = 0; i < g.size();) {
        char32_t c = codePointAt(g, i);
        if (c < 0x80) {
            if ((c | 0x20) < u'a' || (c | 0x20) > u'z')
                return false;
        } else if (!isLetterOrMark(c)) {
            return false;
        }
        i += codeUnitCount(c);
    }
    return !g.empty();
}

bool detail::isNumericGrapheme(std::u16string_view g) {
    char16_t unit = g[0];
    if (unit < 0x80)
        return unit >= u'0' && unit <= u'9';
    return u_getIntPropertyValue(UChar32(codePointAt(g, 0)), UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

bool detail::isWhiteSpaceGrapheme(std::u16string_view g) {
    char16_t unit = g[0];
    if (unit < 0x80)
        return unit == u' ' || (unit >= 0x09 && unit <= 0x0D);
    return u_isUWhiteSpace(UChar32(codePointAt(g, 0)));
}

bool detail::isUppercaseGrapheme(std::u16string_view g) {
    char32_t first = codePointAt(g, 0);
    bool single = codeUnitCount(first) == g.size();
    if (single && first < 0x80)
        return first >= u'A' && first <= u'Z';
    if (single && u_hasBinaryProperty(UChar32(first), UCHAR_UPPERCASE))
        return true;
    if (upperMapped(g) != g)
        return false;
    if (single && u_hasBinaryProperty(UChar32(first), UCHAR_CASED))
        return true;
    return lowerMapped(g) != g;
}

// ---- Case mapping ----
namespace {

using IcuCaseMapping = int32_t (*)(UChar *, int32_t, const UChar *, int32_t, const char *, UErrorCode *);

int32_t icuLower(UChar *dest, int32_t capacity, const UChar *src, int32_t length, const char *locale,
                 UErrorCode *status) {
    return u_strToLower(dest, capacity, src, length, locale, status);
}
int32_t icuUpper(UChar *dest, int32_t capacity, const UChar *src, int32_t length, const char *locale,
                 UErrorCode *status) {
    return u_strToUpper(dest, capacity, src, length, locale, status);
}

// Root-locale full mapping of text by ICU, appended to out.
void appendIcuMapped(std::u16string &out, std::u16string_view text, IcuCaseMapping mapping) {
    if (text.empty())
        return;
    std::size_t start = out.size();
    // Full mappings grow a code unit at most threefold.
    out.resize(start + text.size() * 3 + 4);
    UErrorCode status = U_ZERO_ERROR;
    auto run = [&] {
        return mapping(reinterpret_cast<UChar *>(out.data() + start), int32_t(out.size() - start),
                       reinterpret_cast<const UChar *>(text.data()), int32_t(text.size()), "", &status);
    };
    int32_t length = run();
    if (status == U_BUFFER_OVERFLOW_ERROR) {
        status = U_ZERO_ERROR;
        out.resize(start + std::size_t(length));
        length = run();
    }
    if (U_FAILURE(status)) {
        out.resize(start);
        out.append(text);
        return;
    }
    out.resize(start + std::size_t(length));
}

// Per code point memo of the full mapping in the Basic Multilingual Plane. Outside of the
// final sigma rule the root mappings are context-free, so a string maps code point by code
// point. Entries: 0 unknown, singleFlag|unit for a one-unit result, multiFlag for longer ones.
class MappingMemo {
public:
    explicit MappingMemo(IcuCaseMapping mapping, UProperty changes) : mapping_(mapping), changes_(changes) {}

    // The one-unit mapping of a BMP code unit that is not a surrogate, if it has one.
    std::optional<char16_t> single(char16_t unit) {
        if (unit >= 0xD800 && unit <= 0xDFFF)
            return std::nullopt;
        std::uint32_t entry = memo_[unit].load(std::memory_order_relaxed);
        if (entry == 0)
            entry = remember(unit);
        if (entry & singleFlag)
            return char16_t(entry & 0xFFFF);
        return std::nullopt;
    }

    void append(std::u16string &out, char32_t c) {
        if (c >= 0x10000) {
            appendUncached(out, c);
            return;
        }
        std::uint32_t entry = memo_[c].load(std::memory_order_relaxed);
        if (entry == 0)
            entry = remember(c);
        if (entry & singleFlag)
            out.push_back(char16_t(entry & 0xFFFF));
        else
            appendUncached(out, c);
    }

private:
    static constexpr std::uint32_t singleFlag = 0x10000;
    static constexpr std::uint32_t multiFlag = 0x20000;

    void appendUncached(std::u16string &out, char32_t c) const {
        if (!u_hasBinaryProperty(UChar32(c), changes_)) {
            appendCodePoint(out, c);
            return;
        }
        std::u16string one;
        appendCodePoint(one, c);
        appendIcuMapped(out, one, mapping_);
    }

    std::uint32_t remember(char32_t c) {
        std::u16string mapped;
        appendUncached(mapped, c);
        std::uint32_t entry = mapped.size() == 1 ? (singleFlag | mapped[0]) : multiFlag;
        memo_[c].store(entry, std::memory_order_relaxed);
        return entry;
    }

    IcuCaseMapping mapping_;
    UProperty changes_;
    std::array<std::atomic<std::uint32_t>, 0x10000> memo_{};
};

MappingMemo &upperMemo() {
    static MappingMemo memo(icuUpper, UCHAR_CHANGES_WHEN_UPPERCASED);
    return memo;
}
MappingMemo &lowerMemo() {
    static MappingMemo memo(icuLower, UCHAR_CHANGES_WHEN_LOWERCASED);
    return memo;
}

constexpr char16_t capitalSigma = 0x03A3;

// Maps count ASCII units (a multiple of eight) from source to dest.
template <bool upper> void mapAsciiBlocks(const char16_t *source, char16_t *dest, std::size_t count) {
#if defined(__SSE2__)
    const __m128i first = _mm_set1_epi16(short(upper ? u'a' - 1 : u'A' - 1));
    const __m128i last = _mm_set1_epi16(short(upper ? u'z' + 1 : u'Z' + 1));
    const __m128i caseBit = _mm_set1_epi16(0x20);
    for (std::size_t i = 0; i < count; i += 8) {
        __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(source + i));
        __m128i inRange = _mm_and_si128(_mm_cmpgt_epi16(units, first), _mm_cmplt_epi16(units, last));
        __m128i flip = _mm_and_si128(inRange, caseBit);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(dest + i), _mm_xor_si128(units, flip));
    }
#else
    for (std::size_t i = 0; i < count; ++i) {
        char16_t unit = source[i];
        if constexpr (upper)
            dest[i] = unit >= u'a' && unit <= u'z' ? char16_t(unit - 0x20) : unit;
        else
            dest[i] = unit >= u'A' && unit <= u'Z' ? char16_t(unit + 0x20) : unit;
    }
#endif
}

template <bool upper> void appendMapped(std::u16string &out, std::u16string_view text) {
    MappingMemo &memo = upper ? upperMemo() : lowerMemo();
    const std::size_t start = out.size();
    const std::size_t size = text.size();
    out.resize(start + size);
    char16_t *dest = out.data() + start;
    for (std::size_t i = 0; i < size;) {
        std::size_t ascii = scan::asciiBlockRun(text.data() + i, size - i);
        if (ascii > 0) {
            mapAsciiBlocks<upper>(text.data() + i, dest, ascii);
            i += ascii;
            dest += ascii;
            continue;
        }
        char16_t unit = text[i];
        if (unit < 0x80) {
            if constexpr (upper)
                *dest++ = unit >= u'a' && unit <= u'z' ? char16_t(unit - 0x20) : unit;
            else
                *dest++ = unit >= u'A' && unit <= u'Z' ? char16_t(unit + 0x20) : unit;
            ++i;
            continue;
        }
        if (!upper && unit == capitalSigma) {
            // The final sigma depends on its neighbours: leave such strings to ICU whole.
            out.resize(start);
            appendIcuMapped(out, text, icuLower);
            return;
        }
        if (auto single = memo.single(unit)) {
            *dest++ = *single;
            ++i;
            continue;
        }
        // A mapping longer than its source, or a supplementary code point.
        char32_t c = codePointAt(text, i);
        i += codeUnitCount(c);
        std::u16string mapped;
        memo.append(mapped, c);
        std::size_t written = std::size_t(dest - out.data());
        std::size_t needed = written + mapped.size() + (size - i);
        if (needed > out.size())
            out.resize(needed + (size - i) / 8);
        dest = std::copy(mapped.begin(), mapped.end(), out.data() + written);
    }
    out.resize(std::size_t(dest - out.data()));
}

} // namespace

void appendUpperMapped(std::u16string &out, std::u16string_view text) {
    appendMapped<true>(out, text);
}
void appendLowerMapped(std::u16string &out, std::u16string_view text) {
    appendMapped<false>(out, text);
}

std::u16string upperMapped(std::u16string_view text) {
    std::u16string out;
    appendUpperMapped(out, text);
    return out;
}

std::u16string lowerMapped(std::u16string_view text) {
    std::u16string out;
    appendLowerMapped(out, text);
    return out;
}

void appendCapitalizedWord(std::u16string &out, std::u16string_view word) {
    if (word.empty())
        return;
    if (word[0] < 0x80 && word[0] != carriageReturn &&
        std::all_of(word.begin(), word.end(), [](char16_t unit) { return unit < 0x80; })) {
        std::size_t start = out.size();
        out.resize(start + word.size());
        char16_t *dest = out.data() + start;
        dest[0] = word[0] >= u'a' && word[0] <= u'z' ? char16_t(word[0] - 0x20) : word[0];
        for (std::size_t i = 1; i < word.size(); ++i)
            dest[i] = word[i] >= u'A' && word[i] <= u'Z' ? char16_t(word[i] + 0x20) : word[i];
        return;
    }
    std::size_t firstEnd = GraphemeCursor(word).next(0);
    appendUpperMapped(out, word.substr(0, firstEnd));
    appendLowerMapped(out, word.substr(firstEnd));
}

std::u16string capitalizedWord(std::u16string_view word) {
    std::u16string out;
    appendCapitalizedWord(out, word);
    return out;
}

namespace {

constexpr std::u16string_view minorWords[] = {
    u"a",  u"an", u"and", u"as",  u"at", u"but", u"by", u"for", u"from", u"in",   u"into", u"nor",
    u"of", u"on", u"or",  u"per", u"so", u"the", u"to", u"up",  u"via",  u"with", u"yet"};

// Up to four lower-case ASCII letters packed into one number, for a cheap comparison.
constexpr std::uint32_t packed(std::u16string_view word) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < word.size(); ++i)
        value |= std::uint32_t(word[i]) << (8 * i);
    return value;
}

constexpr auto packedMinorWords = [] {
    std::array<std::uint32_t, std::size(minorWords)> values{};
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = packed(minorWords[i]);
    return values;
}();

} // namespace

bool isMinorWord(std::u16string_view word) {
    if (word.empty())
        return false;
    std::uint32_t value = 0;
    std::size_t i = 0;
    for (; i < word.size() && i < 5; ++i) {
        char16_t unit = word[i];
        if (unit >= 0x80)
            break;
        if (i == 4)
            return false; // five ASCII characters already: longer than any minor word
        value |= std::uint32_t(unit >= u'A' && unit <= u'Z' ? unit + 0x20 : unit) << (8 * i);
    }
    if (i == word.size())
        return std::find(packedMinorWords.begin(), packedMinorWords.end(), value) != packedMinorWords.end();
    // Outside ASCII a full lower-mapping never shrinks a word fourfold.
    if (word.size() > 16)
        return false;
    std::u16string lowered = lowerMapped(word);
    return std::find(std::begin(minorWords), std::end(minorWords), std::u16string_view(lowered)) !=
           std::end(minorWords);
}

// ---- Caseless comparison ----

std::u16string caselessForm(std::u16string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *nfd = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status))
        return std::u16string(text);
    icu::UnicodeString decomposed =
        nfd->normalize(icu::UnicodeString(false, text.data(), int32_t(text.size())), status);
    decomposed.foldCase(U_FOLD_CASE_DEFAULT);
    icu::UnicodeString result = nfd->normalize(decomposed, status);
    if (U_FAILURE(status))
        return std::u16string(text);
    return std::u16string(result.getBuffer(), std::size_t(result.length()));
}

bool equalIgnoringCase(std::u16string_view a, std::u16string_view b) {
    return caselessForm(a) == caselessForm(b);
}

std::u16string_view trimmedWhiteSpaceAndNewlines(std::u16string_view text) {
    std::size_t start = 0;
    std::size_t end = text.size();
    while (start < end) {
        char32_t c = codePointAt(text, start);
        if (!isWhiteSpaceOrNewline(c))
            break;
        start += codeUnitCount(c);
    }
    while (end > start) {
        char32_t c = codePointBefore(text, end);
        if (!isWhiteSpaceOrNewline(c))
            break;
        end -= codeUnitCount(c);
    }
    return text.substr(start, end - start);
}

} // namespace glyphmill::text
