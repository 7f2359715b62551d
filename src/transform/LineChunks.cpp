#include "LineChunks.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace glyphmill {
namespace {

constexpr std::size_t defaultThreshold = 256 * 1024;
constexpr std::size_t maximumChunks = 8;
std::atomic<std::size_t> thresholdOverride{0};

std::size_t workerCount() {
    static const std::size_t count =
        std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, maximumChunks);
    return count;
}

// Texts shorter than this run on the calling thread alone.
std::size_t parallelThreshold() {
    std::size_t overridden = thresholdOverride.load(std::memory_order_relaxed);
    return overridden ? overridden : defaultThreshold;
}

} // namespace

void setParallelThresholdForTesting(std::size_t threshold) {
    thresholdOverride.store(threshold, std::memory_order_relaxed);
}

std::vector<std::u16string_view> lineChunks(std::u16string_view text) {
    std::size_t threshold = parallelThreshold();
    std::size_t testing = thresholdOverride.load(std::memory_order_relaxed);
    std::size_t pieces = testing ? maximumChunks : workerCount();
    if (text.size() < threshold || pieces < 2)
        return {text};
    std::vector<std::u16string_view> chunks;
    std::size_t start = 0;
    for (std::size_t k = 1; k < pieces && start < text.size(); ++k) {
        std::size_t target = std::max(start, text.size() * k / pieces);
        std::size_t cut = text.find(u'\n', target);
        while (cut != std::u16string_view::npos && cut > 0 && text[cut - 1] == u'\r')
            cut = text.find(u'\n', cut + 1);
        if (cut == std::u16string_view::npos)
            break;
        chunks.push_back(text.substr(start, cut + 1 - start));
        start = cut + 1;
    }
    if (start < text.size() || chunks.empty())
        chunks.push_back(text.substr(start));
    return chunks;
}

bool termsStayWithinLines(const std::vector<std::u16string> &terms) {
    return std::none_of(terms.begin(), terms.end(),
                        [](const std::u16string &term) { return term.find(u'\n') != std::u16string::npos; });
}

void runInParallel(std::size_t count, const std::function<void(std::size_t)> &work) {
    if (count == 0)
        return;
    std::vector<std::thread> threads;
    threads.reserve(count - 1);
    for (std::size_t i = 1; i < count; ++i)
        threads.emplace_back(work, i);
    work(0);
    for (auto &thread : threads)
        thread.join();
}

} // namespace glyphmill
