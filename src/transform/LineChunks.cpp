#include "LineChunks.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <new>
#include <system_error>
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
    // An exception must not leave a thread (that ends the program): each item's is kept and the
    // first rethrown here once every thread has finished.
    std::vector<std::exception_ptr> failures(count);
    auto guarded = [&work, &failures](std::size_t i) noexcept {
        try {
            work(i);
        } catch (...) {
            failures[i] = std::current_exception();
        }
    };
    std::vector<std::thread> threads;
    threads.reserve(count - 1);
    std::size_t started = 1;
    try {
        for (; started < count; ++started)
            threads.emplace_back(guarded, started);
    } catch (const std::system_error &) {
        // No thread could be started (no memory for its stack, or no threads left): the items
        // without one run on this thread.
    } catch (const std::bad_alloc &) {
    }
    guarded(0);
    for (std::size_t i = started; i < count; ++i)
        guarded(i);
    for (auto &thread : threads)
        thread.join();
    for (const auto &failure : failures)
        if (failure)
            std::rethrow_exception(failure);
}

} // namespace glyphmill
