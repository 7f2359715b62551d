// The engine against the reference transformer, function by function, on hand-picked inputs and
// on seeded random strings built from characters that have broken case transforms before. A
// mismatch is shrunk to a small input and printed as escaped code points.
#include "reference/ReferenceTransformer.h"
#include "support/RepeatedText.h"
#include "transform/CaseRules.h"
#include "transform/ProtectedSpans.h"
#include "transform/TextTransformer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <random>
#include <sstream>

namespace glyphmill {
namespace {

using Terms = std::vector<std::u16string>;
using Segment = TextTransformer::Segment;

struct Probe {
    std::u16string text;
    Terms terms;
    TextProtectionOptions options;
};

// --- Printing ----------------------------------------------------------------------------------

std::string escaped(std::u16string_view text) {
    std::ostringstream out;
    out << '"';
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t codePoint = text[i];
        if ((text[i] & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00) {
            codePoint = 0x10000 + ((char32_t(text[i]) - 0xD800) << 10) + (char32_t(text[i + 1]) - 0xDC00);
            ++i;
        }
        if (codePoint >= 0x20 && codePoint < 0x7F && codePoint != '"' && codePoint != '\\') {
            out << static_cast<char>(codePoint);
        } else {
            char buffer[16];
            std::snprintf(buffer, sizeof buffer, "\\u{%04X}", static_cast<unsigned>(codePoint));
            out << buffer;
        }
    }
    out << '"';
    return out.str();
}

std::string describe(const Probe &probe) {
    std::ostringstream out;
    out << "  text:    " << escaped(probe.text) << "\n  terms:   {";
    for (std::size_t i = 0; i < probe.terms.size(); ++i)
        out << (i ? ", " : "") << escaped(probe.terms[i]);
    const TextProtectionOptions &o = probe.options;
    out << "}\n  options: terms=" << o.preserveProtectedTerms << " urls=" << o.preserveURLs
        << " emails=" << o.preserveEmails << " paths=" << o.preserveFilePaths
        << " tags=" << o.preserveHashtagsAndMentions << " code=" << o.preserveCodeLikeTokens
        << " allCaps=" << o.correctAllUppercaseProse << "\n";
    return out.str();
}

std::u16string serialized(const std::vector<Segment> &segments) {
    std::u16string out;
    for (const auto &segment : segments)
        out += (segment.kind == Segment::Kind::plain ? u"[plain:" : u"[term:") + segment.text + u"]";
    return out;
}

std::u16string serialized(const std::u16string &text,
                          const std::map<std::u16string, std::u16string> &entries) {
    std::u16string out = text + u" {";
    for (const auto &[key, value] : entries)
        out += key + u"=>" + value + u";";
    return out + u"}";
}

// --- The functions compared --------------------------------------------------------------------

struct Outputs {
    std::u16string reference;
    std::u16string engine;
};

struct Check {
    std::string name;
    std::function<Outputs(const Probe &)> run;
};

// Where the literal placeholder rules would mix texts up (the text holds a placeholder of its
// own, a term holds a placeholder character), the engine keeps them apart instead: there the
// check is that every placeholder character and digit comes through.
Check applyCheck(std::string name, TextTransformKind kind) {
    return {
        std::move(name), [kind](const Probe &p) {
            std::u16string engine = TextTransformer{p.terms, p.options}.apply(kind, p.text);
            if (auto expected = reference::applyWhereUnambiguous(kind, p.text, p.terms, p.options))
                return Outputs{*expected, engine};
            return Outputs{reference::placeholderSkeleton(p.text), reference::placeholderSkeleton(engine)};
        }};
}

const std::vector<Check> &checks() {
    static const std::vector<Check> all = {
        applyCheck("apply(smartCase)", TextTransformKind::smartCase),
        applyCheck("apply(titleCase)", TextTransformKind::titleCase),
        applyCheck("apply(uppercase)", TextTransformKind::uppercase),
        applyCheck("apply(lowercase)", TextTransformKind::lowercase),
        applyCheck("apply(capitalizeWords)", TextTransformKind::capitalizeWords),
        {"maskProtectedSpans",
         [](const Probe &p) {
             auto expected = reference::maskProtectedSpans(p.text, p.options);
             MaskedText actual = maskProtectedSpans(p.text, p.options);
             return Outputs{serialized(expected.text, expected.placeholders),
                            serialized(actual.text, actual.placeholders.entries())};
         }},
        {"splitByProtectedTerms",
         [](const Probe &p) {
             return Outputs{serialized(reference::splitByProtectedTerms(p.text, p.terms)),
                            serialized(splitByProtectedTerms(p.text, p.terms))};
         }},
        {"maskProtectedTerms",
         [](const Probe &p) {
             auto expected = reference::maskProtectedTerms(p.text, p.terms);
             MaskedText actual =
                 maskProtectedSpans(p.text, {false, false, false, false, false, false, false});
             maskProtectedTerms(actual, p.terms);
             return Outputs{serialized(expected.text, expected.placeholders),
                            serialized(actual.text, actual.placeholders.entries())};
         }},
        {"titleCaseText",
         [](const Probe &p) {
             return Outputs{reference::titleCaseText(p.text, p.terms), titleCaseText(p.text, p.terms)};
         }},
        {"capitalizeWordRuns",
         [](const Probe &p) {
             return Outputs{reference::capitalizeWordRuns(p.text), capitalizeWordRuns(p.text)};
         }},
        {"looksAllCaps",
         [](const Probe &p) {
             return Outputs{reference::looksAllCaps(p.text) ? u"true" : u"false",
                            looksAllCaps(p.text) ? u"true" : u"false"};
         }},
    };
    return all;
}

bool differs(const Check &check, const Probe &probe) {
    Outputs outputs = check.run(probe);
    return outputs.reference != outputs.engine;
}

// Drops terms, switches and runs of code units for as long as the mismatch stays.
Probe shrunk(const Check &check, Probe probe) {
    for (std::size_t i = probe.terms.size(); i-- > 0;) {
        Probe candidate = probe;
        candidate.terms.erase(candidate.terms.begin() + static_cast<std::ptrdiff_t>(i));
        if (differs(check, candidate))
            probe = std::move(candidate);
    }
    for (bool TextProtectionOptions::*option :
         {&TextProtectionOptions::preserveProtectedTerms, &TextProtectionOptions::preserveURLs,
          &TextProtectionOptions::preserveEmails, &TextProtectionOptions::preserveFilePaths,
          &TextProtectionOptions::preserveHashtagsAndMentions, &TextProtectionOptions::preserveCodeLikeTokens,
          &TextProtectionOptions::correctAllUppercaseProse}) {
        Probe candidate = probe;
        candidate.options.*option = false;
        if (probe.options.*option && differs(check, candidate))
            probe = std::move(candidate);
    }
    for (std::size_t chunk = std::max<std::size_t>(probe.text.size() / 2, 1); chunk > 0; chunk /= 2) {
        for (std::size_t start = 0; start + chunk <= probe.text.size();) {
            Probe candidate = probe;
            candidate.text.erase(start, chunk);
            if (differs(check, candidate))
                probe = std::move(candidate);
            else
                start += chunk;
        }
    }
    return probe;
}

// Compares every function on one probe; prints the first few mismatches of each function.
class MismatchLog {
public:
    void compare(const Probe &probe) {
        for (const Check &check : checks()) {
            Outputs outputs = check.run(probe);
            if (outputs.reference == outputs.engine)
                continue;
            std::size_t &count = counts_[check.name];
            if (++count > reportedPerFunction)
                continue;
            Probe small = shrunk(check, probe);
            Outputs smallOutputs = check.run(small);
            ADD_FAILURE() << check.name << " differs\n"
                          << describe(probe) << "  reference: " << escaped(outputs.reference)
                          << "\n  engine:    " << escaped(outputs.engine) << "\nshrunk to\n"
                          << describe(small) << "  reference: " << escaped(smallOutputs.reference)
                          << "\n  engine:    " << escaped(smallOutputs.engine);
        }
    }
    ~MismatchLog() {
        for (const auto &[name, count] : counts_) {
            if (count > reportedPerFunction)
                std::printf("%s: %zu mismatches in all\n", name.c_str(), count);
        }
    }

private:
    static constexpr std::size_t reportedPerFunction = 3;
    std::map<std::string, std::size_t> counts_;
};

// --- Inputs ------------------------------------------------------------------------------------

std::u16string unit(char16_t value) {
    return std::u16string(1, value);
}

const std::vector<std::u16string> &fragments() {
    static const std::vector<std::u16string> all = {
        // Plain ASCII, words in every case, minor words and term spellings.
        u"a", u"b", u"e", u"i", u"s", u"x", u"A", u"B", u"E", u"I", u"S", u"X", u"the", u"THE", u"and", u"of",
        u"up", u"to", u"hello", u"WORLD", u"Word", u"iphone", u"IPHONE", u"us", u"US", u"usa", u"app",
        u"store", u"MACOS", u"ABCDEF", u"NASA", u"don't", u"DON'T", u"MP3", u"1", u"2", u"12", u"3.14",
        // Spaces, line ends and punctuation that steer sentences, list items and tokens.
        u" ", u" ", u" ", u"  ", u"\t", u"\r", u"\n", u"\n", u"\r\n", u"\u00A0", u"\u0085", u"\u2028", u".",
        u"!", u"?", u"\u2026", u"-", u"\u2022", u"*", u"\u2013", u"\u2014", u")", u"(", u"'", u"\"", u"`",
        u"@", u"#", u"/", u"~", u":", u"\\", u"_", u"%", u",", u"&",
        // Letters whose case mapping changes length, depends on context or folds oddly.
        u"\u00E9", u"e\u0301", u"\u00C9", u"\u00DF", u"stra\u00DFe", u"\u03A3", u"\u03C3", u"\u03C2",
        u"\u039F\u0394\u039F\u03A3", u"\u03BB\u03CC\u03B3\u03BF\u03C2", u"\u0130", u"\u0131", u"\uFB01",
        u"\u01C5", u"\u01C4", u"\u212A", u"\u017F", u"\u0345", u"\uFF9E", u"\u00AD", u"\u200D", u"\u200C",
        u"\u0301", u"\u0308", u"\u24D0", u"\u2167", u"\u0663",
        // Emoji sequences and flags.
        u"\U0001F469\u200D\U0001F4BB", u"\U0001F44D\U0001F3FD", u"\U0001F1EB\U0001F1F7", u"\U0001F600",
        // Placeholder characters, whole and broken placeholders, lone surrogates.
        u"\uE000", u"\uE001", u"\uE0000\uE001", u"\uE0001\uE001", u"\uE00010000\uE001", unit(0xD83D),
        unit(0xDE00), unit(0xDBFF),
        // Pieces of links, addresses, paths, tags and code.
        u"http://", u"HTTPS://", u"https://x.io/A", u"www.", u"Www.Ex.com", u"/Users/", u"/var", u"/tmp",
        u"C:\\", u"~/", u"@x", u"#x", u"#Tag", u"a@b.co", u"X.Y@Z.ORG", u"`code`", u"`"};
    return all;
}

const std::vector<std::u16string> &termPool() {
    static const std::vector<std::u16string> all = {u"iPhone",
                                                    u"US",
                                                    u"U.S.",
                                                    u"App Store",
                                                    u"App",
                                                    u"macOS",
                                                    u"USA",
                                                    u"Inc.",
                                                    u"stra\u00DFe",
                                                    u"\u00DF",
                                                    u"\u039F\u0394\u039F\u03A3",
                                                    u"\u03BB\u03CC\u03B3\u03BF\u03C2",
                                                    u"",
                                                    u" ",
                                                    u"Caf\u00E9",
                                                    u"Cafe\u0301",
                                                    u"e\u0301",
                                                    u"\uFB01le",
                                                    u"\u212Aelvin",
                                                    u"\u0130stanbul",
                                                    u"0",
                                                    u"1",
                                                    u"a-b",
                                                    u"the",
                                                    u"\uE0000\uE001"};
    return all;
}

Probe randomProbe(std::mt19937 &random) {
    const auto &pieces = fragments();
    const auto &pool = termPool();
    Probe probe;
    std::size_t count = std::uniform_int_distribution<std::size_t>(0, 18)(random);
    for (std::size_t i = 0; i < count; ++i)
        probe.text += pieces[std::uniform_int_distribution<std::size_t>(0, pieces.size() - 1)(random)];
    std::size_t termCount = std::uniform_int_distribution<std::size_t>(0, 5)(random);
    for (std::size_t i = 0; i < termCount; ++i)
        probe.terms.push_back(pool[std::uniform_int_distribution<std::size_t>(0, pool.size() - 1)(random)]);
    std::bernoulli_distribution mostlyOn(0.75);
    TextProtectionOptions &o = probe.options;
    for (bool *option :
         {&o.preserveProtectedTerms, &o.preserveURLs, &o.preserveEmails, &o.preserveFilePaths,
          &o.preserveHashtagsAndMentions, &o.preserveCodeLikeTokens, &o.correctAllUppercaseProse})
        *option = mostlyOn(random);
    return probe;
}

const Terms defaultTerms = {u"LLC",   u"Inc.", u"USA",        u"US",      u"U.S.",   u"NY",
                            u"NJ",    u"MA",   u"API",        u"PDF",     u"QR",     u"URL",
                            u"HTML",  u"CSS",  u"JavaScript", u"SwiftUI", u"iPhone", u"iPad",
                            u"macOS", u"iOS",  u"App Store",  u"ChatGPT", u"OpenAI"};

const std::vector<std::u16string> &handPickedTexts() {
    static const std::vector<std::u16string> all = {
        u"",
        u"THE QUICK BROWN FOX JUMPS OVER THE LAZY DOG. AND THEN?",
        u"\u039F\u0394\u039F\u03A3 \u039A\u0391\u0399 \u0391\u03A3",
        u"\u03C3\u03BF\u03C6\u03CC\u03C2 \u03A3\u039F\u03A6\u039F\u03A3. \u03A3",
        u"stra\u00DFe STRASSE \u00DFig",
        u"\u0130stanbul \u0131s\u0131k I\u0307",
        u"\uFB01ne \u01C5ungla \u01C4 \u212Aelvin \u017Fong",
        u"e\u0301cole E\u0301COLE \u00C9COLE",
        u"x\u0345 \u0399\u0345 \uFF76\uFF9E",
        u"soft\u00ADhyphen zero\u200Dwidth non\u200Cjoiner",
        u"\U0001F469\u200D\U0001F4BB hello \U0001F1EB\U0001F1F7 world \U0001F44D\U0001F3FD",
        u"\uE0000\uE001 \uE000 \uE001 \uE00010000\uE001 #tag",
        u"see https://Example.com/A?b=C. and WWW.EXAMPLE.COM, then HTTP://X.IO",
        u"write to ME@EXAMPLE.COM or X.Y@\u212A.ORG",
        u"/Users/Bob/Docs ~/Notes C:\\Temp\\A.TXT /variable /Library",
        u"`CODE` and `more\nCODE` and ``",
        u"`https://x.io/A` #Tag @Name_1 #\u00E9t\u00E9",
        u"1. first\n2) second\n\u2022 third\n- fourth\n\u2167. fifth\n-sixth",
        u"hello\r\nworld\rnext\u2028line\u0085line",
        u"iPhone's a hit. IPHONE\U0001F600 app store APP STORE U.S. US.",
        u"a.\u0301b. c",
        u"don't STOP. DON'T stop",
        u"\u24D0bc \u24B6BC",
        u"\u0663. \u0664) x",
        std::u16string(1, char16_t(0xD800)) + u"ABC" + std::u16string(1, char16_t(0xDC00)) + u"def",
        // Where a link may start: word boundaries next to marks, joiners and soft hyphens.
        u"xhttp://a _http://a \u00E9www.x.io",
        u"a\u0301www.x.io",
        u"\u0301www.x.io a\u200Dwww.x.io \u00ADwww.x.io",
        // Where links, paths and code end: every kind of white space and a few that are not.
        u"www.a\u2028b www.a\u0085b www.a\u00A0b www.a\u3000b www.a\u200Bb www.a\u000Bb www.a\u001Cb",
        u"/Users\u2028x ~\u0085x C:\\x\u000By ~/a\u001Fb /var/\u00A0x `a\u2029b`",
        // Letters that match [A-Z] only when case is ignored, marks inside addresses and tags.
        u"a@b.\u017Ft a@b.\u212Aa \u017F@b.co a@b.c\u0301o A@B.\u0130O a@b.co\u0301",
        u"#\u0301 #\u0663 #\u216B #\u00BD #a\u200D #a\u0301b @\U0001D400x #\U0001F600",
    };
    return all;
}

TEST(Differential, HandPickedInputs) {
    TextProtectionOptions allOff{false, false, false, false, false, false, false};
    TextProtectionOptions noCorrection;
    noCorrection.correctAllUppercaseProse = false;
    MismatchLog log;
    for (const auto &text : handPickedTexts()) {
        log.compare({text, defaultTerms, TextProtectionOptions{}});
        log.compare({text, termPool(), noCorrection});
        log.compare({text, {}, allOff});
    }
}

TEST(Differential, SeededRandomInputs) {
    // The reference compiles every pattern on every call, which bounds how many fit in a
    // sanitizer run; the fuzz target covers volume.
    constexpr unsigned seeds = 4;
    constexpr int probesPerSeed = 400;
    MismatchLog log;
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        std::mt19937 random(seed);
        for (int i = 0; i < probesPerSeed; ++i)
            log.compare(randomProbe(random));
    }
}

// Long terms that the text nearly repeats make walking the terms from every word too slow, and
// the matcher changes method part way through a text: both must accept the same terms.
TEST(Differential, LongTermsThatTheTextNearlyRepeats) {
    const Terms terms = {repeated(u"Ab ", 30) + u"Stop",
                         repeated(u"ab ", 20) + u"ab",
                         repeated(u"Stra\u00DFe ", 12) + u"x",
                         repeated(u"e\u0301 ", 16) + u"end",
                         u"\u0301ab ab",
                         u"AB"};
    const std::u16string_view pieces[] = {
        u"ab ",          u"AB ",     u"Ab ",      u"ab ",           u"aB ", u"Ab ",  u"Stop ", u"STRASSE ",
        u"stra\u00DFe ", u"\u00E9 ", u"e\u0301 ", u" \u0301ab ab ", u"x ",  u"end ", u", ",    u"abab "};
    std::mt19937 random(7);
    auto pick = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); };
    // The reference searches for every term at every position: the texts stay short.
    MismatchLog log;
    for (int probe = 0; probe < 3; ++probe) {
        std::u16string text;
        while (text.size() < 2000) {
            // Runs of one piece, as long as the terms or a little shorter, then a stray piece.
            text += repeated(pieces[pick(std::size(pieces))], 40 + int(pick(120)));
            text += pieces[pick(std::size(pieces))];
        }
        log.compare({text, terms, TextProtectionOptions{}});
    }
}

} // namespace
} // namespace glyphmill
