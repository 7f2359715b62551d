// The single entry of every case transform: pure, re-entrant, never fails.
// Text is UTF-16; positions are code units.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glyphmill {

enum class TextTransformKind { smartCase, titleCase, uppercase, lowercase, capitalizeWords };

inline constexpr std::array<TextTransformKind, 5> allTextTransformKinds = {
    TextTransformKind::smartCase, TextTransformKind::titleCase, TextTransformKind::uppercase,
    TextTransformKind::lowercase, TextTransformKind::capitalizeWords};

// The display title, which is also the kind's raw value.
std::u16string_view displayTitle(TextTransformKind kind);
// Only an exact, case-sensitive display title names a kind.
std::optional<TextTransformKind> textTransformKindFromTitle(std::u16string_view title);

struct TextProtectionOptions {
    bool preserveProtectedTerms = true;
    bool preserveURLs = true;
    bool preserveEmails = true;
    bool preserveFilePaths = true;
    bool preserveHashtagsAndMentions = true;
    bool preserveCodeLikeTokens = true;
    bool correctAllUppercaseProse = true;

    friend bool operator==(const TextProtectionOptions &, const TextProtectionOptions &) = default;
};

// Built per request as TextTransformer{terms, options}.
struct TextTransformer {
    struct Segment {
        enum class Kind { plain, protectedTerm };
        Kind kind;
        // For a protected term: the term as written in the list, not as found.
        std::u16string text;

        friend bool operator==(const Segment &, const Segment &) = default;
    };

    std::u16string apply(TextTransformKind kind, std::u16string_view text) const;

    std::vector<std::u16string> protectedTerms;
    TextProtectionOptions protectionOptions;
};

} // namespace glyphmill
