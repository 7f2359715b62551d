// Throughput of the clipboard's text functions, the line tools, the statistics and the HTML and
// RTF readers, on generated inputs of 1 MB and 10 MB (ClipboardCorpus.h), in CPU time. Rates
// are of the UTF-8 size of the input; decoding it to UTF-16 for the line tools is not timed.
// The scaling entries time both sizes in one run, so that a change of machine load between two
// entries cannot skew their ratio: linear work gives about 10, sorting a little more.
// html-to-text/hostile/… are pages made to be hard on the HTML reader (HostileHtml), at 5 MB
// (the single text node at 20 MB): each should take well under a second.
#include "ClipboardCorpus.h"
#include "Corpus.h"

#include "clipboard/text/HtmlText.h"
#include "clipboard/text/LineTools.h"
#include "clipboard/text/RtfReader.h"
#include "clipboard/text/TextStatistics.h"
#include "common/Utf8.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <ctime>
#include <functional>
#include <malloc.h>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using namespace glyphmill::lineTools;
using glyphmill::TextStatistics;

// letterRun: "a" × n, then "b", then "a" × 99,999, the text of the long-needle entries.
enum class Source { lineList, prose, html, rtf, letterRun, hostileHtml };

using glyphmill::bench::HostileHtml;

constexpr std::size_t longNeedleUnits = 100'000;

struct Input {
    std::string bytes;
    std::u16string text; // the bytes decoded, for the functions that take text
};

// Built on first use and shared by every entry that measures the same input.
const Input &input(Source source, std::size_t minimumBytes, HostileHtml shape = {}) {
    static std::map<std::tuple<Source, std::size_t, HostileHtml>, Input> cache;
    auto [entry, inserted] = cache.try_emplace({source, minimumBytes, shape});
    if (inserted) {
        Input &made = entry->second;
        switch (source) {
        case Source::lineList:
            made.bytes = glyphmill::bench::makeLineList(minimumBytes);
            break;
        case Source::prose:
            made.bytes = glyphmill::bench::makeCorpus(minimumBytes, glyphmill::bench::Lettering::mixed);
            break;
        case Source::html:
            made.bytes = glyphmill::bench::makeHtmlPage(minimumBytes);
            break;
        case Source::rtf:
            made.bytes = glyphmill::bench::makeRtfDocument(minimumBytes);
            break;
        case Source::letterRun:
            made.bytes = std::string(minimumBytes - longNeedleUnits, 'a') + 'b' +
                         std::string(longNeedleUnits - 1, 'a');
            break;
        case Source::hostileHtml:
            made.bytes = glyphmill::bench::makeHostileHtml(shape, minimumBytes);
            break;
        }
        if (source == Source::lineList || source == Source::prose || source == Source::letterRun)
            made.text = glyphmill::utf8::decodeLossy(made.bytes);
    }
    return entry->second;
}

// The size of the result: it keeps the call from being optimised away, and an empty result
// means the input did not exercise the function.
using Run = std::function<std::size_t(const Input &)>;

struct Tool {
    std::string name;
    Source source;
    Run run;
    HostileHtml shape{};
};

// A log line of a warning or error, as a user would type the pattern.
constexpr std::u16string_view customPattern = u"^\\d{4}-\\d{2}-\\d{2}T\\S+ (WARN|ERROR)\\b";

std::vector<Tool> allTools() {
    std::vector<Tool> tools;
    auto add = [&tools](std::string name, Source source, Run run) {
        tools.push_back({std::move(name), source, std::move(run)});
    };
    add("lines/sort", Source::lineList, [](const Input &in) { return sortedLines(in.text).size(); });
    add("lines/remove-duplicates", Source::lineList,
        [](const Input &in) { return uniqueLines(in.text).size(); });
    add("lines/remove-empty", Source::lineList,
        [](const Input &in) { return nonEmptyLines(in.text).size(); });
    for (auto [style, name] :
         {std::pair{NumberingStyle::period, "period"}, std::pair{NumberingStyle::zeroPadded, "zero-padded"},
          std::pair{NumberingStyle::parenthesis, "parenthesis"}})
        add(std::string("lines/number/") + name, Source::lineList,
            [style](const Input &in) { return numberedLines(in.text, style).size(); });
    add("lines/bullet", Source::lineList, [](const Input &in) { return bulletedLines(in.text).size(); });
    add("lines/join/comma-space", Source::lineList, [](const Input &in) {
        return joinedLines(in.text, separatorText(JoinSeparator::commaSpace)).size();
    });
    add("lines/split/comma", Source::lineList,
        [](const Input &in) { return splitText(in.text, *delimiterText(SplitDelimiter::comma)).size(); });
    for (auto [preset, name] : {std::pair{RegexPreset::email, "email"}, std::pair{RegexPreset::url, "url"},
                                std::pair{RegexPreset::containsAt, "contains-at"},
                                std::pair{RegexPreset::containsDigit, "contains-digit"},
                                std::pair{RegexPreset::nonEmpty, "non-empty"}}) {
        std::u16string pattern(*presetPattern(preset));
        add(std::string("lines/matching/") + name, Source::lineList,
            [pattern](const Input &in) { return matchingLines(pattern, in.text).lines.size(); });
    }
    add("lines/matching/pattern", Source::lineList,
        [](const Input &in) { return matchingLines(customPattern, in.text).lines.size(); });
    add("lines/containing", Source::lineList,
        [](const Input &in) { return containingLines(u"report", in.text).size(); });
    add("lines/fix-whitespace", Source::lineList,
        [](const Input &in) { return fixedWhitespace(in.text).size(); });
    add("lines/replace", Source::lineList, [](const Input &in) {
        return replacedText(in.text, {u"report", u"summary", false}).size();
    });
    add("lines/replace/match-case", Source::lineList, [](const Input &in) {
        return replacedText(in.text, {u"report", u"summary", true}).size();
    });
    // Needles of 100,000 units that match in part at every position of the text: "a" × 99,999
    // then "b", found once at the end, and "b" then "a" × 99,999, whose search compares from the
    // end in other searchers.
    for (auto [needle, name] : {std::pair{std::u16string(longNeedleUnits - 1, u'a') + u'b', "a-then-b"},
                                std::pair{u'b' + std::u16string(longNeedleUnits - 1, u'a'), "b-then-a"}}) {
        add(std::string("lines/containing/long-needle/") + name, Source::letterRun,
            [needle](const Input &in) { return containingLines(needle, in.text).size(); });
        add(std::string("lines/replace/long-needle/") + name, Source::letterRun, [needle](const Input &in) {
            return replacedText(in.text, {needle, u"x", false}).size();
        });
        add(std::string("lines/split/long-needle/") + name, Source::letterRun,
            [needle](const Input &in) { return splitText(in.text, needle).size(); });
    }
    add("stats/lines", Source::lineList,
        [](const Input &in) { return std::size_t(TextStatistics::compute(in.text).characters); });
    add("stats/prose", Source::prose,
        [](const Input &in) { return std::size_t(TextStatistics::compute(in.text).characters); });
    add("html-to-text", Source::html,
        [](const Input &in) { return glyphmill::clipboard::htmlVisibleText(in.bytes).value_or(u"").size(); });
    add("rtf-to-text", Source::rtf,
        [](const Input &in) { return glyphmill::clipboard::rtfVisibleText(in.bytes).value_or(u"").size(); });
    for (auto [shape, name] : {std::pair{HostileHtml::attributesInOneTag, "attributes-in-one-tag"},
                               std::pair{HostileHtml::tagsWithManyAttributes, "tags-with-many-attributes"},
                               std::pair{HostileHtml::nestedUnclosedElements, "nested-unclosed-elements"},
                               std::pair{HostileHtml::oneTextNode, "one-text-node"},
                               std::pair{HostileHtml::longAttributeValues, "long-attribute-values"},
                               std::pair{HostileHtml::manyComments, "many-comments"},
                               std::pair{HostileHtml::endTagsInDeepNesting, "end-tags-in-deep-nesting"},
                               std::pair{HostileHtml::bodyTagsInDeepNesting, "body-tags-in-deep-nesting"}}) {
        add(std::string("html-to-text/hostile/") + name, Source::hostileHtml, [](const Input &in) {
            return glyphmill::clipboard::htmlVisibleText(in.bytes).value_or(u"").size();
        });
        tools.back().shape = shape;
    }
    return tools;
}

bool producesOutput(benchmark::State &state, const Tool &tool, const Input &in) {
    if (tool.run(in) > 0)
        return true;
    state.SkipWithError("empty result: the input does not exercise this function");
    return false;
}

void measureOne(benchmark::State &state, const Tool &tool, std::size_t minimumBytes) {
    const Input &in = input(tool.source, minimumBytes, tool.shape);
    if (!producesOutput(state, tool, in))
        return;
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(tool.run(in));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(in.bytes.size()));
    // Decimal megabytes; bytes_per_second is shown in binary units.
    state.counters["MB"] = benchmark::Counter(static_cast<double>(in.bytes.size()) / 1e6,
                                              benchmark::Counter::kIsIterationInvariantRate);
}

// CPU time of this thread, like the rates of the other entries.
double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double secondsToRun(const Tool &tool, const Input &in) {
    const double start = threadSeconds();
    benchmark::DoNotOptimize(tool.run(in));
    return threadSeconds() - start;
}

void measureScaling(benchmark::State &state, const Tool &tool) {
    const Input &small = input(tool.source, 1'000'000, tool.shape);
    const Input &large = input(tool.source, 10'000'000, tool.shape);
    if (!producesOutput(state, tool, small))
        return;
    double smallSeconds = 0;
    double largeSeconds = 0;
    for ([[maybe_unused]] auto _ : state) {
        const double smallRun = secondsToRun(tool, small);
        const double largeRun = secondsToRun(tool, large);
        smallSeconds += smallRun;
        largeSeconds += largeRun;
        state.SetIterationTime(smallRun + largeRun);
    }
    state.counters["size_ratio"] =
        static_cast<double>(large.bytes.size()) / static_cast<double>(small.bytes.size());
    state.counters["time_ratio"] = smallSeconds > 0 ? largeSeconds / smallSeconds : 0;
    // The rate at 10 MB alone, for the table beside the ratio.
    state.counters["MB_10MB"] = largeSeconds > 0
                                    ? static_cast<double>(state.iterations()) *
                                          static_cast<double>(large.bytes.size()) / 1e6 / largeSeconds
                                    : 0;
}

void registerAll() {
    static const std::vector<Tool> tools = allTools();
    const std::pair<const char *, std::size_t> sizes[] = {{"1MB", 1'000'000}, {"10MB", 10'000'000}};
    for (const Tool &tool : tools) {
        if (tool.source == Source::hostileHtml) {
            const bool isText = tool.shape == HostileHtml::oneTextNode;
            std::string name = tool.name + (isText ? "/20MB" : "/5MB");
            benchmark::RegisterBenchmark(name.c_str(), measureOne, std::cref(tool),
                                         isText ? 20'000'000 : 5'000'000)
                ->Unit(benchmark::kMillisecond);
            continue;
        }
        for (auto [sizeName, bytes] : sizes) {
            std::string name = tool.name + "/" + sizeName;
            benchmark::RegisterBenchmark(name.c_str(), measureOne, std::cref(tool), bytes)
                ->Unit(benchmark::kMillisecond);
        }
    }
    for (const Tool &tool : tools) {
        std::string name = "scaling/" + tool.name + "/1MB-and-10MB";
        benchmark::RegisterBenchmark(name.c_str(), measureScaling, std::cref(tool))
            ->UseManualTime()
            ->MinTime(2.0) // a few rounds, each of them slow
            ->Unit(benchmark::kMillisecond);
    }
}

} // namespace

int main(int argc, char **argv) {
    // Buffers for 10 MB take 20 MB and more, which glibc would map afresh, and fault in page by
    // page, in every round, while those for 1 MB come back from the heap: kept in the heap, both
    // sizes pay the same per byte and the ratio shows the work. clipboard-throughput.sh measures
    // whole processes, faults included.
    mallopt(M_MMAP_THRESHOLD, 32 * 1024 * 1024);
    mallopt(M_TRIM_THRESHOLD, 1024 * 1024 * 1024);
    registerAll();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
