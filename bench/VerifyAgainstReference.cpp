// Checks that the engine gives the same text as the slow reference transformer on the benchmark
// corpora, so that the figures of transform_bench are of a correct engine. Exit status 1 and the
// first difference of each failing case when they disagree.
#include "Corpus.h"

#include "common/Utf8.h"
#include "reference/ReferenceTransformer.h"
#include "settings/preferences/ProtectedTermsStore.h"
#include "transform/TextTransformer.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

namespace {

using glyphmill::TextProtectionOptions;
using glyphmill::TextTransformer;
using glyphmill::TextTransformKind;
using glyphmill::bench::Lettering;

struct Case {
    TextTransformKind kind;
    Lettering lettering;
    std::size_t corpusBytes;
    const std::vector<std::u16string> *terms;
    TextProtectionOptions options;
};

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::string excerpt(const std::u16string &text, std::size_t from) {
    std::size_t start = from > 30 ? from - 30 : 0;
    return glyphmill::utf8::encode(std::u16string_view(text).substr(start, 80));
}

void reportDifference(const std::u16string &engine, const std::u16string &reference) {
    auto [engineAt, referenceAt] =
        std::mismatch(engine.begin(), engine.end(), reference.begin(), reference.end());
    auto offset = static_cast<std::size_t>(engineAt - engine.begin());
    auto line = 1 + std::count(engine.begin(), engineAt, u'\n');
    std::cout << "    first difference at UTF-16 offset " << offset << ", line " << line << " (lengths "
              << engine.size() << " and " << reference.size() << ")\n"
              << "    engine:    «" << excerpt(engine, offset) << "»\n"
              << "    reference: «" << excerpt(reference, offset) << "»\n";
}

bool verify(const Case &check) {
    std::u16string input =
        glyphmill::utf8::decodeLossy(glyphmill::bench::makeCorpus(check.corpusBytes, check.lettering));
    auto start = std::chrono::steady_clock::now();
    std::u16string engine = TextTransformer{*check.terms, check.options}.apply(check.kind, input);
    double engineSeconds = secondsSince(start);
    start = std::chrono::steady_clock::now();
    std::u16string reference = glyphmill::reference::apply(check.kind, input, *check.terms, check.options);
    double referenceSeconds = secondsSince(start);

    bool same = engine == reference;
    char timing[96];
    std::snprintf(timing, sizeof timing, "engine %.1f ms, reference %.1f ms", engineSeconds * 1e3,
                  referenceSeconds * 1e3);
    std::cout << (same ? "same  " : "DIFFER") << "  "
              << glyphmill::utf8::encode(glyphmill::displayTitle(check.kind))
              << (check.lettering == Lettering::allCaps ? ", in capitals" : "") << ", " << check.corpusBytes
              << " bytes, " << check.terms->size() << " terms"
              << (check.options == TextProtectionOptions{} ? "" : ", switches off") << "  (" << timing
              << ")\n";
    if (!same)
        reportDifference(engine, reference);
    return same;
}

std::size_t parseSize(const char *text) {
    std::size_t value = 0;
    std::string_view view(text);
    auto [end, error] = std::from_chars(view.data(), view.data() + view.size(), value);
    return (error == std::errc{} && end == view.data() + view.size()) ? value : 0;
}

} // namespace

int main(int argc, char **argv) {
    // The reference tries every term at every position, so the 1,000 terms get a shorter text.
    std::size_t corpusBytes = 100'000;
    std::size_t largeTermsCorpusBytes = 10'000;
    for (int i = 1; i < argc; ++i) {
        std::string_view argument(argv[i]);
        std::size_t *target = argument == "--bytes"               ? &corpusBytes
                              : argument == "--large-terms-bytes" ? &largeTermsCorpusBytes
                                                                  : nullptr;
        if (target == nullptr || i + 1 == argc || (*target = parseSize(argv[++i])) == 0) {
            std::cerr << "Usage: verify_against_reference [--bytes N] [--large-terms-bytes N]\n";
            return 64;
        }
    }

    const auto &builtInTerms = glyphmill::ProtectedTermsStore::defaultTerms();
    const std::vector<std::u16string> largeTerms = glyphmill::bench::makeLargeTermList();
    const std::vector<std::u16string> noTerms;
    const TextProtectionOptions allOn{};
    const TextProtectionOptions allOff{false, false, false, false, false, false, false};

    std::vector<Case> cases;
    for (TextTransformKind kind : glyphmill::allTextTransformKinds) {
        cases.push_back({kind, Lettering::mixed, corpusBytes, &builtInTerms, allOn});
        if (kind == TextTransformKind::smartCase)
            cases.push_back({kind, Lettering::allCaps, corpusBytes, &builtInTerms, allOn});
    }
    // Without masking every shouted word and sentence start of the corpus reaches the kind itself.
    for (TextTransformKind kind : glyphmill::allTextTransformKinds)
        cases.push_back({kind, Lettering::allCaps, corpusBytes, &noTerms, allOff});
    for (TextTransformKind kind : glyphmill::allTextTransformKinds)
        cases.push_back({kind, Lettering::mixed, largeTermsCorpusBytes, &largeTerms, allOn});

    bool allSame = true;
    for (const Case &check : cases)
        allSame = verify(check) && allSame;
    std::cout << (allSame ? "engine and reference agree\n" : "engine and reference DISAGREE\n");
    return allSame ? 0 : 1;
}
