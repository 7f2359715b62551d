// Deterministic text for the throughput measurements: English prose with line breaks, lists,
// non-ASCII words and emoji, and a protected span (link, address, path, tag, code or term)
// every 150 to 250 bytes. The same seed gives the same bytes on every machine and library.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace glyphmill::bench {

enum class Lettering {
    mixed,
    // The same prose in capitals; links, addresses, paths, tags and code stay as they are,
    // because a shouted message still carries links in their own case.
    allCaps,
};

struct CorpusSize {
    std::string_view name;
    std::size_t utf8Bytes;
};

inline constexpr std::array<CorpusSize, 3> corpusSizes = {{
    {"100KB", 100'000},
    {"1MB", 1'000'000},
    {"10MB", 10'000'000},
}};

// UTF-8 text of at least minimumBytes bytes (it ends with the block that reaches the size).
// The allCaps text is a little longer than the mixed one where capitals take more bytes.
std::string makeCorpus(std::size_t minimumBytes, Lettering lettering);

inline constexpr std::size_t largeTermListSize = 1000;

// The built-in terms followed by generated brand names in mixed case, some of several words,
// largeTermListSize entries in all, no two equal ignoring case. Every tenth generated name
// occurs in the corpus.
std::vector<std::u16string> makeLargeTermList();

} // namespace glyphmill::bench
