// Throughput of apply for every kind on generated corpora of 100 KB, 1 MB and 10 MB, with the
// built-in terms and with a list of 1,000 terms; Smart Case also on the text in capitals.
// Rates are of the UTF-8 size of the input, the size the user handed over (decoding to UTF-16
// is not timed), and of CPU time, which other processes disturb less than wall time. The
// scaling entries time 1 MB and 10 MB in one run, so a change of machine load between two
// entries cannot skew their ratio.
#include "Corpus.h"

#include "common/Utf8.h"
#include "settings/preferences/ProtectedTermsStore.h"
#include "transform/TextTransformer.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <ctime>
#include <map>
#include <string>
#include <utility>

namespace {

using glyphmill::TextProtectionOptions;
using glyphmill::TextTransformer;
using glyphmill::TextTransformKind;
using glyphmill::bench::Lettering;

struct Corpus {
    std::size_t utf8Bytes = 0;
    std::u16string text;
};

// Built on first use and shared by every entry that measures the same text.
const Corpus &corpus(Lettering lettering, std::size_t minimumBytes) {
    static std::map<std::pair<Lettering, std::size_t>, Corpus> cache;
    auto [entry, inserted] = cache.try_emplace({lettering, minimumBytes});
    if (inserted) {
        std::string utf8 = glyphmill::bench::makeCorpus(minimumBytes, lettering);
        entry->second.utf8Bytes = utf8.size();
        entry->second.text = glyphmill::utf8::decodeLossy(utf8);
    }
    return entry->second;
}

enum class TermSet { builtIn, large };

const std::vector<std::u16string> &terms(TermSet set) {
    static const std::vector<std::u16string> large = glyphmill::bench::makeLargeTermList();
    return set == TermSet::builtIn ? glyphmill::ProtectedTermsStore::defaultTerms() : large;
}

// The names the command line uses, which also keep spaces out of benchmark filters.
std::string commandName(TextTransformKind kind) {
    switch (kind) {
    case TextTransformKind::smartCase:
        return "smart-case";
    case TextTransformKind::titleCase:
        return "title-case";
    case TextTransformKind::uppercase:
        return "uppercase";
    case TextTransformKind::lowercase:
        return "lowercase";
    case TextTransformKind::capitalizeWords:
        return "capitalize-words";
    }
    return "unknown";
}

void applyToCorpus(benchmark::State &state, TextTransformKind kind, Lettering lettering, TermSet termSet,
                   std::size_t minimumBytes) {
    const Corpus &input = corpus(lettering, minimumBytes);
    // All switches on, as a user who never changed them has it.
    const TextTransformer transformer{terms(termSet), TextProtectionOptions{}};
    for ([[maybe_unused]] auto _ : state) {
        std::u16string output = transformer.apply(kind, input.text);
        benchmark::DoNotOptimize(output.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(input.utf8Bytes));
    // Decimal megabytes, the unit of our aims; bytes_per_second is shown in binary units.
    state.counters["MB"] = benchmark::Counter(static_cast<double>(input.utf8Bytes) / 1e6,
                                              benchmark::Counter::kIsIterationInvariantRate);
}

// CPU time of this thread, like the rates of the other entries.
double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double secondsToApply(const TextTransformer &transformer, TextTransformKind kind,
                      const std::u16string &text) {
    double start = threadSeconds();
    std::u16string output = transformer.apply(kind, text);
    benchmark::DoNotOptimize(output.data());
    output = {};
    return threadSeconds() - start;
}

// Linear work gives a ratio near 10 (the texts differ tenfold in size).
void linearScaling(benchmark::State &state, TextTransformKind kind) {
    const Corpus &small = corpus(Lettering::mixed, 1'000'000);
    const Corpus &large = corpus(Lettering::mixed, 10'000'000);
    const TextTransformer transformer{terms(TermSet::builtIn), TextProtectionOptions{}};
    double smallSeconds = 0;
    double largeSeconds = 0;
    for ([[maybe_unused]] auto _ : state) {
        double smallRun = secondsToApply(transformer, kind, small.text);
        double largeRun = secondsToApply(transformer, kind, large.text);
        smallSeconds += smallRun;
        largeSeconds += largeRun;
        state.SetIterationTime(smallRun + largeRun);
    }
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(small.utf8Bytes + large.utf8Bytes));
    state.counters["size_ratio"] =
        static_cast<double>(large.utf8Bytes) / static_cast<double>(small.utf8Bytes);
    state.counters["time_ratio"] = smallSeconds > 0 ? largeSeconds / smallSeconds : 0;
}

void registerApply(TextTransformKind kind, Lettering lettering, TermSet termSet) {
    std::string prefix = "apply/" + commandName(kind) +
                         (lettering == Lettering::allCaps ? "/all-caps" : "/mixed") +
                         (termSet == TermSet::builtIn ? "/23-terms/" : "/1000-terms/");
    for (const auto &size : glyphmill::bench::corpusSizes) {
        std::string name = prefix + std::string(size.name);
        benchmark::RegisterBenchmark(name.c_str(), applyToCorpus, kind, lettering, termSet, size.utf8Bytes)
            ->Unit(benchmark::kMillisecond);
    }
}

void registerAll() {
    for (TextTransformKind kind : glyphmill::allTextTransformKinds) {
        for (TermSet termSet : {TermSet::builtIn, TermSet::large}) {
            registerApply(kind, Lettering::mixed, termSet);
            if (kind == TextTransformKind::smartCase)
                registerApply(kind, Lettering::allCaps, termSet);
        }
    }
    for (TextTransformKind kind : glyphmill::allTextTransformKinds) {
        std::string name = "scaling/" + commandName(kind) + "/1MB-and-10MB";
        benchmark::RegisterBenchmark(name.c_str(), linearScaling, kind)
            ->UseManualTime()
            ->MinTime(2.0) // a few rounds, each of them slow
            ->Unit(benchmark::kMillisecond);
    }
}

} // namespace

int main(int argc, char **argv) {
    registerAll();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
