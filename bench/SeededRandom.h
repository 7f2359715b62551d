// The random numbers of the benchmark inputs: SplitMix64, our own, because the std::
// distributions differ between libraries and every machine must measure the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace glyphmill::bench {

class SeededRandom {
public:
    explicit SeededRandom(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next() {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }
    // The modulo bias is irrelevant for test text.
    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(next() % bound); }
    std::size_t between(std::size_t low, std::size_t high) { return low + below(high - low + 1); }
    bool percent(std::size_t chance) { return below(100) < chance; }
    template <typename List> const auto &pick(const List &list) { return list[below(std::size(list))]; }

private:
    std::uint64_t state_;
};

} // namespace glyphmill::bench
