// How the case transforms behave, as tables of input and output. Each table runs
// against the engine and against the reference transformer, so the oracle of the differential
// tests is held to the same examples.
#include "reference/ReferenceTransformer.h"
#include "transform/CaseRules.h"
#include "transform/ProtectedSpans.h"
#include "transform/TextTransformer.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

namespace glyphmill {
namespace {

using Terms = std::vector<std::u16string>;
using Entries = std::map<std::u16string, std::u16string>;
using Segment = TextTransformer::Segment;
using Kind = TextTransformKind;

const Terms defaultTerms = {u"LLC",   u"Inc.", u"USA",        u"US",      u"U.S.",   u"NY",
                            u"NJ",    u"MA",   u"API",        u"PDF",     u"QR",     u"URL",
                            u"HTML",  u"CSS",  u"JavaScript", u"SwiftUI", u"iPhone", u"iPad",
                            u"macOS", u"iOS",  u"App Store",  u"ChatGPT", u"OpenAI"};

TextProtectionOptions allSwitchesOn() {
    return {};
}
TextProtectionOptions allSwitchesOff() {
    return {false, false, false, false, false, false, false};
}
TextProtectionOptions withoutCorrection() {
    TextProtectionOptions options;
    options.correctAllUppercaseProse = false;
    return options;
}
TextProtectionOptions onlyHashtags() {
    TextProtectionOptions options = allSwitchesOff();
    options.preserveHashtagsAndMentions = true;
    return options;
}

std::u16string key(unsigned number) {
    return reference::placeholder(number);
}

// One implementation of the transforms behind a common face.
struct Engine {
    std::string name;
    std::function<std::u16string(Kind, std::u16string_view, const Terms &, const TextProtectionOptions &)>
        apply;
    std::function<std::pair<std::u16string, Entries>(std::u16string_view, const TextProtectionOptions &)>
        mask;
    std::function<std::vector<Segment>(std::u16string_view, const Terms &)> split;
    std::function<bool(std::u16string_view)> looksAllCaps;
};

Engine productionEngine() {
    return {
        "Engine",
        [](Kind kind, std::u16string_view text, const Terms &terms, const TextProtectionOptions &options) {
            return TextTransformer{terms, options}.apply(kind, text);
        },
        [](std::u16string_view text, const TextProtectionOptions &options) {
            MaskedText masked = maskProtectedSpans(text, options);
            return std::make_pair(masked.text, masked.placeholders.entries());
        },
        [](std::u16string_view text, const Terms &terms) { return splitByProtectedTerms(text, terms); },
        [](std::u16string_view text) { return looksAllCaps(text); }};
}

Engine referenceEngine() {
    return {"Reference", reference::apply,
            [](std::u16string_view text, const TextProtectionOptions &options) {
                reference::Masked masked = reference::maskProtectedSpans(text, options);
                return std::make_pair(masked.text, masked.placeholders);
            },
            reference::splitByProtectedTerms, reference::looksAllCaps};
}

struct TransformCase {
    Kind kind;
    std::u16string input;
    std::u16string expected;
    Terms terms = {};
    TextProtectionOptions options = {};
};

class TransformBehaviour : public testing::TestWithParam<Engine> {
protected:
    void expectAll(const std::vector<TransformCase> &cases) const {
        for (const auto &example : cases) {
            EXPECT_EQ(GetParam().apply(example.kind, example.input, example.terms, example.options),
                      example.expected)
                << "input: " << testing::PrintToString(example.input);
        }
    }
};

TEST_P(TransformBehaviour, EmptyTextStaysEmptyForEveryKind) {
    for (Kind kind : allTextTransformKinds)
        EXPECT_EQ(GetParam().apply(kind, u"", defaultTerms, allSwitchesOn()), u"");
}

TEST_P(TransformBehaviour, UppercaseAndLowercase) {
    expectAll({
        {Kind::uppercase, u"straße", u"STRASSE", {}, allSwitchesOff()},
        {Kind::lowercase, u"NEW IPHONE", u"new iPhone", {u"iPhone"}},
        {Kind::uppercase, u"iphone case", u"iPhone CASE", {u"iPhone"}},
        {Kind::uppercase, u"visit https://Example.com/Path?q=a now",
         u"VISIT https://Example.com/Path?q=a NOW"},
        {Kind::lowercase, u"USB BUS USA US. (US)", u"usb bus usa US. (US)", {u"US"}},
        {Kind::lowercase, u"APP STORE AND APP", u"App Store and App", {u"App", u"App Store"}},
        {Kind::lowercase, u"IPHONE😀", u"iPhone😀", {u"iPhone"}},
        // A code span that holds U+E000 is not masked.
        {Kind::uppercase, u"`a\uE000b` x", u"`A\uE000B` X"},
    });
}

TEST_P(TransformBehaviour, CapitalizeWords) {
    expectAll({
        {Kind::capitalizeWords, u"hELLO ÉCOLE ßig", u"Hello École SSig"},
        {Kind::capitalizeWords, u"don't stop", u"Don'T Stop"},
        {Kind::capitalizeWords, u"3rd place jean-luc hello_world", u"3Rd Place Jean-Luc Hello_World"},
        {Kind::capitalizeWords, u"McDONALD", u"Mcdonald"},
        {Kind::capitalizeWords, u"123 !!!", u"123 !!!"},
        {Kind::capitalizeWords, u"MACOS tips", u"macOS Tips", {u"macOS"}},
        {Kind::capitalizeWords, u"open /Users/bob/notes.txt today", u"Open /Users/bob/notes.txt Today"},
    });
}

TEST_P(TransformBehaviour, SmartCaseSentences) {
    expectAll({
        {Kind::smartCase, u"hello world. how are you?", u"Hello world. How are you?"},
        {Kind::smartCase, u"i think so", u"I think so"},
        {Kind::smartCase, u"so i think", u"So i think"},
        {Kind::smartCase, u"2nd place", u"2Nd place"},
        {Kind::smartCase, u"see e.g. this", u"See e.G. This"},
        {Kind::smartCase, u"pi is 3.14 today", u"Pi is 3.14 Today"},
        {Kind::smartCase, u"hello\r\nworld", u"Hello\r\nworld"},
        {Kind::smartCase, u"1. first\n2. second", u"1. First\n2. Second"},
        {Kind::smartCase, u"- item\n• item\n12. item\n3) item\n-item",
         u"- Item\n• Item\n12. Item\n3) Item\n-Item"},
        {Kind::smartCase, u"The U.S. economy", u"The U.S. economy", defaultTerms},
        {Kind::smartCase, u"iPhone is great", u"iPhone Is great", {u"iPhone"}},
        {Kind::smartCase, u"mail Bob@Example.COM now", u"Mail Bob@Example.COM now"},
    });
}

TEST_P(TransformBehaviour, SmartCaseShouting) {
    expectAll({
        {Kind::smartCase, u"THIS IS A TEST OF THE SYSTEM.", u"This Is a Test of the System."},
        {Kind::smartCase,
         u"THIS IS A TEST OF THE SYSTEM.",
         u"This IS A TEST OF THE SYSTEM.",
         {},
         withoutCorrection()},
        {Kind::smartCase, u"HELLO WORLD", u"Hello WORLD", {}, withoutCorrection()},
        {Kind::smartCase, u"ABC", u"Abc"},
        // 17 of 20 letters in capitals is shouting; 16 of 20 is not.
        {Kind::smartCase, u"xyz ABCDEFGH IJKLMNOPQ", u"Xyz Abcdefgh Ijklmnopq"},
        {Kind::smartCase, u"xyzw ABCDEFGH IJKLMNOP", u"Xyzw abcdefgh ijklmnop"},
        {Kind::smartCase, u"This is VERY important", u"This is very important"},
        {Kind::smartCase, u"I like MP3 and ABC_DEF files", u"I like MP3 and ABC_DEF files"},
        {Kind::smartCase, u"DON'T STOP ME NOW", u"Don't Stop Me Now"},
        {Kind::smartCase, u"PLEASE DON'T STOP", u"Please Don'T Stop"},
        {Kind::smartCase, u"IPHONE sales are up", u"iPhone Sales are up", {u"iPhone"}},
        {Kind::smartCase, u"IPHONE SALES ARE UP", u"iPhone Sales Are up", {u"iPhone"}},
        {Kind::smartCase, u"READ THE DOCS AT https://Example.com/API NOW",
         u"Read the Docs at https://Example.com/API Now"},
    });
}

TEST_P(TransformBehaviour, TitleCase) {
    expectAll({
        {Kind::titleCase, u"the lord of the rings", u"The Lord of the Rings"},
        {Kind::titleCase, u"a tale of two cities", u"A Tale of Two Cities"},
        {Kind::titleCase, u"what are you up to", u"What Are You up To"},
        {Kind::titleCase, u"of", u"Of"},
        {Kind::titleCase, u"war and peace\nthe end", u"War and Peace\nThe End"},
        {Kind::titleCase, u" \t ", u" \t "},
        {Kind::titleCase, u"a\n\nb\n", u"A\n\nB\n"},
        {Kind::titleCase, u"war & peace", u"War & Peace"},
        {Kind::titleCase, u"star wars: the empire", u"Star Wars: the Empire"},
        {Kind::titleCase, u"well-known AND/OR NASA iPad", u"Well-known And/or Nasa Ipad"},
        {Kind::titleCase, u"don't (the) stop", u"Don't (the) Stop"},
        {Kind::titleCase, u"the new app store rules", u"The New App Store Rules", defaultTerms},
        {Kind::titleCase, u"iPhone's a hit", u"iPhone'S A Hit", {u"iPhone"}},
        {Kind::titleCase, u"mail Bob@Example.COM, then", u"Mail Bob@Example.COM, Then"},
    });
}

TEST_P(TransformBehaviour, MaskedSpans) {
    struct MaskCase {
        std::u16string input;
        TextProtectionOptions options;
        std::u16string masked;
        Entries entries;
    };
    const std::vector<MaskCase> cases = {
        {u"", allSwitchesOn(), u"", {}},
        {u"Write to Ann.Lee@Example.com or see www.Example.com/Docs.",
         allSwitchesOn(),
         u"Write to " + key(1) + u" or see " + key(0),
         {{key(0), u"www.Example.com/Docs."}, {key(1), u"Ann.Lee@Example.com"}}},
        // The link swallows the closing backtick, so no code span is left.
        {u"`https://x.io/A` done", allSwitchesOn(), u"`" + key(0) + u" done", {{key(0), u"https://x.io/A`"}}},
        {u"~", allSwitchesOn(), key(0), {{key(0), u"~"}}},
        {u"/tmp", allSwitchesOn(), key(0), {{key(0), u"/tmp"}}},
        {u"C:\\Temp\\x.txt", allSwitchesOn(), key(0), {{key(0), u"C:\\Temp\\x.txt"}}},
        {u"c:/temp", allSwitchesOn(), u"c:/temp", {}},
        {u"/variable", allSwitchesOn(), key(0) + u"iable", {{key(0), u"/var"}}},
        // Matches are replaced from the last one back, so the later one gets the lower number.
        {u"#tag and @name https://x.io",
         onlyHashtags(),
         key(1) + u" and " + key(0) + u" https://x.io",
         {{key(0), u"@name"}, {key(1), u"#tag"}}},
        {u"mail a@b.co at ~/x #t `c` https://x.io",
         allSwitchesOff(),
         u"mail a@b.co at ~/x #t `c` https://x.io",
         {}},
    };
    for (const auto &example : cases) {
        auto [masked, entries] = GetParam().mask(example.input, example.options);
        EXPECT_EQ(masked, example.masked) << "input: " << testing::PrintToString(example.input);
        EXPECT_EQ(entries, example.entries) << "input: " << testing::PrintToString(example.input);
    }
}

TEST_P(TransformBehaviour, TermSegments) {
    auto plain = [](std::u16string text) { return Segment{Segment::Kind::plain, std::move(text)}; };
    auto term = [](std::u16string text) { return Segment{Segment::Kind::protectedTerm, std::move(text)}; };
    struct SplitCase {
        std::u16string input;
        Terms terms;
        std::vector<Segment> expected;
    };
    const std::vector<SplitCase> cases = {
        {u"", {u"US"}, {plain(u"")}},
        {u"no terms", {}, {plain(u"no terms")}},
        {u"US. (US) USB BUS USA",
         {u"US"},
         {term(u"US"), plain(u". ("), term(u"US"), plain(u") USB BUS USA")}},
        {u"app store", {u"App", u"App Store"}, {term(u"App Store")}},
        {u"MACOS", {u"macOS"}, {term(u"macOS")}},
        {u"iPhone😀", {u"iPhone"}, {term(u"iPhone"), plain(u"😀")}},
        {u"my iphone", {u"", u"iPhone"}, {plain(u"my "), term(u"iPhone")}},
    };
    for (const auto &example : cases) {
        EXPECT_EQ(GetParam().split(example.input, example.terms), example.expected)
            << "input: " << testing::PrintToString(example.input);
    }
}

TEST_P(TransformBehaviour, LooksAllCapsCountsCasedScalars) {
    const std::vector<std::pair<std::u16string, bool>> cases = {
        {u"HELLO", true}, {u"HELL", false}, {u"HELLO WORLd", false}, {u"ǅǄǅǄǅ", true}, {u"12345 !!", false}};
    for (const auto &[input, expected] : cases)
        EXPECT_EQ(GetParam().looksAllCaps(input), expected) << testing::PrintToString(input);
}

INSTANTIATE_TEST_SUITE_P(BothImplementations, TransformBehaviour,
                         testing::Values(productionEngine(), referenceEngine()),
                         [](const testing::TestParamInfo<Engine> &engine) { return engine.param.name; });

TEST(TransformKindTitles, OnlyExactTitlesNameKinds) {
    const std::vector<std::pair<Kind, std::u16string_view>> titles = {
        {Kind::smartCase, u"Smart Case"},
        {Kind::titleCase, u"Title Case"},
        {Kind::uppercase, u"UPPERCASE"},
        {Kind::lowercase, u"lowercase"},
        {Kind::capitalizeWords, u"Capitalize Words"}};
    for (const auto &[kind, title] : titles) {
        EXPECT_EQ(displayTitle(kind), title);
        EXPECT_EQ(textTransformKindFromTitle(title), kind);
    }
    for (std::u16string_view wrong : {u"smart case", u"Uppercase", u"", u"Title Case "})
        EXPECT_EQ(textTransformKindFromTitle(wrong), std::nullopt);
}

} // namespace
} // namespace glyphmill
