// Finds the user's protected terms as whole words, in any letter case and in any canonically
// equivalent spelling, the way the term-splitting scan tries them: at each position the terms
// in order of length in graphemes (longest first, list order between equals), the first one
// that occurs exactly there with non-alphanumeric neighbours winning.
#pragma once

#include "FastScan.h"
#include "TextModel.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace glyphmill {

class TermMatcher {
public:
    explicit TermMatcher(const std::vector<std::u16string> &terms);

    struct Match {
        std::size_t end;
        const std::u16string *term; // as written in the list
    };
    // The accepted term at position, if any.
    std::optional<Match> matchAt(std::u16string_view text, std::size_t position) const;

    // Scans the whole text and reports each accepted term as found(start, end, term).
    template <typename Found> void forEachMatch(std::u16string_view text, Found &&found) const {
        if (nodes_.size() <= 1)
            return;
        Scan state(text.size());
        for (std::size_t p = 0; p < text.size();) {
            if (mayStartAt(text, p)) {
                if (auto match = matchAt(text, p, state)) {
                    found(p, match->end, *match->term);
                    p = match->end;
                    continue;
                }
            }
            // After an ASCII letter or digit no term can start: jump past the run of them.
            p = scan::findNonAsciiAlphanumeric(text, p) + 1;
        }
    }

private:
    // One scan of one text. Walking the trie from every start is quick while walks are short;
    // long terms that the text nearly repeats would make it quadratic (a term of 20,000
    // characters over 1 MB took a minute). Past a budget of walking, one pass of the
    // Aho–Corasick automaton finds the accepted term at every position instead.
    struct Scan {
        explicit Scan(std::size_t textSize) : walkBudget(8 * textSize + 4096) {}
        std::size_t walkBudget;
        bool everywhere = false;
        // Per text position: the accepted term's order, noTerm, or notChunkStart where the
        // pass cannot tell and the trie is walked; and the accepted term's end.
        std::vector<std::int32_t> orderAt;
        std::vector<std::uint32_t> endAt;
    };
    static constexpr std::int32_t noTerm = -1;
    static constexpr std::int32_t notChunkStart = -2;

    std::optional<Match> matchAt(std::u16string_view text, std::size_t position, Scan &scan) const;
    // The walk of matchAt; adds the units it walked to walked.
    std::optional<Match> walkFrom(std::u16string_view text, std::size_t position, std::size_t &walked) const;
    void findEverywhere(std::u16string_view text, Scan &scan) const;
    void buildLinks() const;
    int next(int node, char16_t unit) const;

    static char16_t asciiLower(char16_t unit) {
        return unit >= u'A' && unit <= u'Z' ? char16_t(unit + 0x20) : unit;
    }
    // A cheap test that rules out most positions: inside words, and where the first two
    // characters begin no term.
    bool mayStartAt(std::u16string_view text, std::size_t p) const {
        if (p > 0 && text[p - 1] < 0x80 && text::isAsciiAlphanumeric(text[p - 1]))
            return false;
        char16_t first = text[p];
        if (first >= 0x80)
            return true;
        const std::size_t size = text.size();
        // Two ASCII characters with no mark after them are their own caseless form.
        if (p + 1 < size && text[p + 1] < 0x80 && (p + 2 == size || text[p + 2] < 0x300))
            return startsTerm(asciiLower(first), asciiLower(text[p + 1]));
        return rootAscii_[asciiLower(first)] >= 0;
    }
    bool startsTerm(char16_t first, char16_t second) const {
        return (asciiPairs_[first * 2 + second / 64] >> (second % 64)) & 1;
    }

    struct Node {
        int bestOrder = -1; // lowest order index of the terms whose caseless form ends here
        std::vector<std::pair<char16_t, int>> children;
    };
    int child(int node, char16_t unit) const;
    int addChild(int node, char16_t unit);
    // Caseless units of the normalization chunk at position, and the chunk's end.
    std::size_t caselessChunk(std::u16string_view text, std::size_t position, std::u16string &units) const;

    std::vector<const std::u16string *> ordered_;
    std::vector<Node> nodes_;
    int rootAscii_[128];
    // Bit (first, second) is set when a caseless term can begin with these two ASCII units.
    std::uint64_t asciiPairs_[128 * 2] = {};
    mutable std::unordered_map<char32_t, std::u16string> caselessMemo_;
    // The automaton's links, made on first need: per node its longest proper suffix in the
    // trie, the nearest such suffix that ends a term (-1 for none), and its depth in units.
    mutable std::vector<int> suffix_;
    mutable std::vector<int> termSuffix_;
    mutable std::vector<std::uint32_t> depth_;
};

} // namespace glyphmill
