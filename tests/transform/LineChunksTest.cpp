// Long texts are transformed in line chunks on several threads; the result must be the one a
// single pass over the whole text gives, whatever sits at the cuts.
#include "transform/LineChunks.h"
#include "transform/TextTransformer.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <new>
#include <random>
#include <stdexcept>

namespace glyphmill {
namespace {

class ChunkedTransform : public ::testing::Test {
protected:
    void TearDown() override { setParallelThresholdForTesting(0); }

    static std::u16string whole(const TextTransformer &transformer, TextTransformKind kind,
                                std::u16string_view text) {
        setParallelThresholdForTesting(SIZE_MAX);
        auto result = transformer.apply(kind, text);
        setParallelThresholdForTesting(0);
        return result;
    }
    static std::u16string chunked(const TextTransformer &transformer, TextTransformKind kind,
                                  std::u16string_view text) {
        setParallelThresholdForTesting(1);
        auto result = transformer.apply(kind, text);
        setParallelThresholdForTesting(0);
        return result;
    }
};

TEST_F(ChunkedTransform, CutsOnlyAfterLineFeedsThatEndALine) {
    setParallelThresholdForTesting(1);
    std::u16string text = u"one\r\ntwo\nthree\r\n\nfour";
    auto chunks = lineChunks(text);
    std::u16string joined;
    for (auto chunk : chunks) {
        joined.append(chunk);
        if (chunk.data() + chunk.size() != text.data() + text.size()) {
            ASSERT_EQ(chunk.back(), u'\n');
            ASSERT_FALSE(chunk.size() >= 2 && chunk[chunk.size() - 2] == u'\r') << "a CR LF pair was cut";
        }
    }
    EXPECT_EQ(joined, text);
    EXPECT_GT(chunks.size(), 1u);
}

TEST_F(ChunkedTransform, EqualsTheWholeTextResultOnLineSpanningContent) {
    // Pieces chosen to straddle cuts: code spans and list markers across lines, CR LF, shouted
    // runs, sigma at line ends, stray placeholder characters, terms at line starts and ends.
    const std::u16string pieces[] = {
        u"\n",     u"\r\n",   u" ",          u". ",           u"`code\nspan`",   u"- \n",
        u"1.\n",   u"ΟΔΟΣ",   u"Σ\n",        u"\uE000",       u"\uE0010\uE001",  u"iphone",
        u"US",     u"THE",    u"and",        u"WORLD ",       u"https://x.io/A", u"a@b.co",
        u"~/x",    u"#Tag",   u"e\u0301",    u"\u0301",       u"HELLO",          u"i think",
        u"of the", u"\u2026", u"\U0001F600", u"ALL CAPS NOW", u"mixed Case",     u"`",
    };
    std::mt19937 random(20261122);
    const std::vector<std::u16string> terms = {u"iPhone", u"US", u"App Store"};
    for (int round = 0; round < 300; ++round) {
        std::u16string text;
        int count = 5 + int(random() % 60);
        for (int k = 0; k < count; ++k)
            text += pieces[random() % std::size(pieces)];
        TextProtectionOptions options;
        options.correctAllUppercaseProse = random() % 2;
        options.preserveCodeLikeTokens = random() % 3 != 0;
        TextTransformer transformer{terms, options};
        for (auto kind : allTextTransformKinds)
            ASSERT_EQ(chunked(transformer, kind, text), whole(transformer, kind, text))
                << "round " << round << ", kind " << int(kind);
    }
}

TEST_F(ChunkedTransform, TermsHoldingALineFeedKeepTheWholeTextTogether) {
    TextTransformer transformer{{u"App\nStore"}, {}};
    std::u16string text = u"the app\nstore is\nopen\n";
    for (auto kind : allTextTransformKinds)
        EXPECT_EQ(chunked(transformer, kind, text), whole(transformer, kind, text));
    EXPECT_EQ(chunked(transformer, TextTransformKind::uppercase, text), u"THE App\nStore IS\nOPEN\n");
}

// An exception leaving a thread would end the program: a failing item, on the calling thread or
// a worker, is thrown here instead, once every item has run.
TEST(RunInParallel, AFailingItemIsThrownToTheCallerAfterTheOthersRan) {
    for (std::size_t failing : {std::size_t(0), std::size_t(3)}) {
        std::array<std::atomic<bool>, 6> ran{};
        EXPECT_THROW(runInParallel(ran.size(),
                                   [&](std::size_t i) {
                                       if (i == failing)
                                           throw std::bad_alloc();
                                       ran[i] = true;
                                   }),
                     std::bad_alloc);
        for (std::size_t i = 0; i < ran.size(); ++i)
            EXPECT_EQ(ran[i], i != failing) << "item " << i << ", failing " << failing;
    }

    // Of several failures, the first item's.
    try {
        runInParallel(4, [](std::size_t i) {
            if (i > 0)
                throw std::runtime_error("item " + std::to_string(i));
        });
        ADD_FAILURE() << "nothing thrown";
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "item 1");
    }
}

} // namespace
} // namespace glyphmill
