// The benchmark figures mean something only if the corpus holds what it claims: protected spans
// at a steady rate, a capitals variant that differs from the mixed text only in its prose, and
// a large term list of distinct names of which some really occur.
#include "Corpus.h"
#include "CorpusVocabulary.h"

#include "common/Utf8.h"
#include "settings/preferences/ProtectedTermsStore.h"

#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace glyphmill::bench {
namespace {

std::vector<std::string_view> spanSamples() {
    std::vector<std::string_view> samples;
    auto append = [&samples](const auto &list) {
        samples.insert(samples.end(), std::begin(list), std::end(list));
    };
    append(vocabulary::linksWithScheme);
    append(vocabulary::linksWithoutScheme);
    append(vocabulary::emailAddresses);
    append(vocabulary::systemPaths);
    append(vocabulary::homePaths);
    append(vocabulary::windowsPaths);
    append(vocabulary::hashtags);
    append(vocabulary::mentions);
    append(vocabulary::codeSpans);
    return samples;
}

struct Found {
    std::size_t start;
    std::size_t end;
};

std::vector<Found> findSpans(const std::string &text) {
    std::vector<Found> found;
    for (std::string_view sample : spanSamples())
        for (auto at = text.find(sample); at != std::string::npos; at = text.find(sample, at + sample.size()))
            found.push_back({at, at + sample.size()});
    std::sort(found.begin(), found.end(), [](Found a, Found b) { return a.start < b.start; });
    return found;
}

// Each span becomes one control character, so the prose around it can be compared.
std::string withSpansBlanked(const std::string &text) {
    std::string blanked;
    std::size_t copied = 0;
    for (Found span : findSpans(text)) {
        blanked.append(text, copied, span.start - copied);
        blanked += '\x01';
        copied = span.end;
    }
    blanked.append(text, copied);
    return blanked;
}

std::string upperMapped(const std::string &text) {
    std::string upper;
    icu::UnicodeString::fromUTF8(text).toUpper(icu::Locale::getRoot()).toUTF8String(upper);
    return upper;
}

std::string asciiLowered(std::string text) {
    for (char &c : text)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return text;
}

std::uint64_t fingerprint(const std::string &text) { // FNV-1a
    std::uint64_t hash = 0xCBF29CE484222325ULL;
    for (unsigned char c : text)
        hash = (hash ^ c) * 0x100000001B3ULL;
    return hash;
}

TEST(BenchCorpus, IsTheSameValidUtf8TextOfTheAskedSizeEveryTime) {
    for (Lettering lettering : {Lettering::mixed, Lettering::allCaps}) {
        std::string corpus = makeCorpus(100'000, lettering);
        EXPECT_EQ(corpus, makeCorpus(100'000, lettering));
        std::u16string decoded;
        EXPECT_FALSE(utf8::decode(corpus, decoded).has_value());
        EXPECT_GE(corpus.size(), 100'000u);
        EXPECT_LT(corpus.size(), 102'000u) << "the last block should end soon after the size is reached";
    }
    // Figures of two commits compare only when they were measured on the same text.
    EXPECT_EQ(fingerprint(makeCorpus(100'000, Lettering::mixed)), 0x2BB7FD60524448E5u)
        << "the corpus changed; say so beside any figures measured with it";
}

TEST(BenchCorpus, PlacesALinkAddressPathTagOrCodeSpanEvery150To250Bytes) {
    std::string corpus = makeCorpus(1'000'000, Lettering::mixed);
    std::vector<Found> spans = findSpans(corpus);
    for (std::string_view sample : spanSamples())
        EXPECT_NE(corpus.find(sample), std::string::npos) << sample;

    std::size_t shortestGap = corpus.size();
    std::size_t longestGap = 0;
    for (std::size_t i = 1; i < spans.size(); ++i) {
        ASSERT_GE(spans[i].start, spans[i - 1].end) << "spans overlap at byte " << spans[i].start;
        shortestGap = std::min(shortestGap, spans[i].start - spans[i - 1].end);
        longestGap = std::max(longestGap, spans[i].start - spans[i - 1].end);
    }
    EXPECT_GE(shortestGap, 150u);
    // Every tenth turn of the rotation is a term, which doubles one gap; a word may overshoot.
    EXPECT_LE(longestGap, 2 * 250u + 150u);
    // Nine of ten turns are detector spans.
    double turns = static_cast<double>(corpus.size()) / 200.0;
    EXPECT_NEAR(static_cast<double>(spans.size()), turns * 0.9, turns * 0.1);
}

TEST(BenchCorpus, CapitalsVariantUpperCasesTheProseAndKeepsTheSpans) {
    std::string mixed = makeCorpus(100'000, Lettering::mixed);
    std::string capitals = makeCorpus(100'000, Lettering::allCaps);
    EXPECT_EQ(findSpans(capitals).size(), findSpans(mixed).size());
    EXPECT_EQ(withSpansBlanked(capitals), upperMapped(withSpansBlanked(mixed)));
    EXPECT_NE(capitals.find("STRASSE"), std::string::npos) << "full mapping, not one letter for one";
}

TEST(BenchCorpus, MixesNonAsciiWordsEmojiSequencesListsAndParagraphs) {
    std::u16string text = utf8::decodeLossy(makeCorpus(100'000, Lettering::mixed));
    auto contains = [&text](std::u16string_view piece) { return text.find(piece) != std::u16string::npos; };
    EXPECT_TRUE(contains(u"ß"));
    EXPECT_TRUE(contains(u"λόγος"));
    EXPECT_TRUE(contains(u"\u200D")) << "zero-width joiner";
    EXPECT_TRUE(contains(u"\U0001F3FD")) << "skin tone modifier";
    EXPECT_TRUE(contains(u"\n\n"));
    EXPECT_TRUE(contains(u"\n- "));
    EXPECT_TRUE(contains(u"\n1. "));

    // An unpaired backtick would make one code span of whole paragraphs.
    std::vector<std::size_t> backticks;
    for (auto at = text.find(u'`'); at != std::u16string::npos; at = text.find(u'`', at + 1))
        backticks.push_back(at);
    ASSERT_EQ(backticks.size() % 2, 0u);
    for (std::size_t i = 0; i < backticks.size(); i += 2)
        EXPECT_LT(backticks[i + 1] - backticks[i], 40u) << "code span at " << backticks[i];
}

TEST(BenchLargeTermList, StartsWithTheBuiltInTermsAndHoldsDistinctMixedCaseNames) {
    std::vector<std::u16string> terms = makeLargeTermList();
    const auto &builtIn = ProtectedTermsStore::defaultTerms();
    ASSERT_EQ(terms.size(), largeTermListSize);
    EXPECT_TRUE(std::equal(builtIn.begin(), builtIn.end(), terms.begin()));

    std::size_t severalWords = 0;
    std::size_t innerCapitals = 0;
    for (std::size_t i = 0; i < terms.size(); ++i) {
        ASSERT_FALSE(terms[i].empty());
        for (std::size_t j = i + 1; j < terms.size(); ++j)
            ASSERT_NE(u_strcasecmp(terms[i].c_str(), terms[j].c_str(), U_FOLD_CASE_DEFAULT), 0)
                << utf8::encode(terms[i]) << " and " << utf8::encode(terms[j]);
        severalWords += terms[i].find(u' ') != std::u16string::npos;
        bool lowerFirst = terms[i][0] >= u'a' && terms[i][0] <= u'z';
        innerCapitals += lowerFirst && std::any_of(terms[i].begin(), terms[i].end(),
                                                   [](char16_t c) { return c >= u'A' && c <= u'Z'; });
    }
    EXPECT_GE(severalWords, 100u);
    EXPECT_GE(innerCapitals, 100u) << "names such as zenTrek";
}

TEST(BenchLargeTermList, SomeGeneratedNamesAndEveryLetterCaseOfTheBuiltInTermsOccur) {
    std::string corpus = makeCorpus(1'000'000, Lettering::mixed);
    std::string lowered = asciiLowered(corpus);
    std::vector<std::u16string> terms = makeLargeTermList();
    std::size_t occurring = 0;
    for (std::size_t i = ProtectedTermsStore::defaultTerms().size(); i < terms.size(); ++i)
        occurring += lowered.find(asciiLowered(utf8::encode(terms[i]))) != std::string::npos;
    EXPECT_GE(occurring, 50u);
    EXPECT_LE(occurring, 300u) << "most of the list should be names the text never mentions";

    for (std::string_view form : {"App Store", "app store", "APP STORE", "macOS", "macos", "MACOS"})
        EXPECT_NE(corpus.find(form), std::string::npos) << form;
}

} // namespace
} // namespace glyphmill::bench
