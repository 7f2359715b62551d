// Finding a fixed run of UTF-16 units in a text in time linear in the text and the needle,
// however both repeat themselves. The search is glibc's memmem (the Two-Way algorithm) on the
// units' bytes. The searchers of the standard library are no help here: libstdc++'s
// Boyer-Moore builds its tables in time quadratic in the needle (seconds for 100,000 units),
// and Boyer-Moore-Horspool takes the product of both lengths on a needle such as "b" + "a" × k
// over "a" × n.
#pragma once

#include "transform/FastScan.h"

#include <algorithm>
#include <cstddef>
#include <string.h> // memmem
#include <string_view>

namespace glyphmill::lineTools {

class LiteralSearch {
public:
    static constexpr std::size_t npos = std::u16string_view::npos;

    // The needle must outlive the search.
    explicit LiteralSearch(std::u16string_view needle) : needle_(needle) {}

    // The first occurrence at or after from (a unit index) that accept(index) takes; npos when
    // there is none. An empty needle is never found.
    //
    // After an occurrence is refused the search cannot simply start again one unit on: the
    // next occurrence may overlap it, and finding each of a long run of overlapping
    // occurrences anew costs the needle's length every time. When two occurrences overlap,
    // the text repeats itself with the distance between them as its period for as long as
    // the run goes on, and within that stretch the needle occurs exactly at the steps of that
    // period (one out of step would give an occurrence between the two). Those are put to
    // accept one by one, and the search starts again where an occurrence would cross the end
    // of the stretch.
    template <typename Accept>
    std::size_t find(std::u16string_view haystack, std::size_t from, Accept &&accept) const {
        if (needle_.empty() || from > haystack.size())
            return npos;
        // One unit never overlaps itself: each occurrence is looked at once.
        if (needle_.size() == 1) {
            for (std::size_t at = scan::findAnyOf(haystack, from, needle_[0]); at < haystack.size();
                 at = scan::findAnyOf(haystack, at + 1, needle_[0])) {
                if (accept(at))
                    return at;
            }
            return npos;
        }
        // Byte offsets from here on; an occurrence at an odd one straddles two units and is
        // refused like any other.
        const auto *bytes = reinterpret_cast<const unsigned char *>(haystack.data());
        const std::size_t size = haystack.size() * sizeof(char16_t);
        const std::size_t length = needle_.size() * sizeof(char16_t);
        auto next = [&](std::size_t start) -> std::size_t {
            if (start > size)
                return npos;
            const void *found = memmem(bytes + start, size - start, needle_.data(), length);
            return found ? std::size_t(static_cast<const unsigned char *>(found) - bytes) : npos;
        };
        auto accepted = [&](std::size_t at) {
            return at % sizeof(char16_t) == 0 && accept(at / sizeof(char16_t));
        };

        std::size_t at = next(from * sizeof(char16_t));
        while (at != npos) {
            if (accepted(at))
                return at / sizeof(char16_t);
            const std::size_t following = next(at + 1);
            if (following == npos)
                return npos;
            const std::size_t period = following - at;
            if (period >= length) {
                at = following;
                continue;
            }
            const std::size_t checkedEnd = following + length;
            const std::size_t stretchEnd = std::size_t(
                std::mismatch(bytes + checkedEnd, bytes + size, bytes + checkedEnd - period).first - bytes);
            for (std::size_t candidate = following; candidate + length <= stretchEnd; candidate += period) {
                if (accepted(candidate))
                    return candidate / sizeof(char16_t);
            }
            at = next(stretchEnd - length + 1);
        }
        return npos;
    }

    std::size_t find(std::u16string_view haystack, std::size_t from = 0) const {
        return find(haystack, from, [](std::size_t) { return true; });
    }

private:
    std::u16string_view needle_;
};

} // namespace glyphmill::lineTools
