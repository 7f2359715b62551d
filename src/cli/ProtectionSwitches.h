// The names by which the command line turns the protection switches on and off.
#pragma once

#include "transform/TextTransformer.h"

#include <array>
#include <string_view>

namespace glyphmill::cli {

struct ProtectionSwitch {
    std::string_view name; // the field's own name, as saved in settings
    bool TextProtectionOptions::*field;
    std::string_view summary;
};

inline constexpr std::array<ProtectionSwitch, 7> protectionSwitches = {{
    {"preserveProtectedTerms", &TextProtectionOptions::preserveProtectedTerms,
     "keep protected terms as written (Smart Case; other kinds always do)"},
    {"preserveURLs", &TextProtectionOptions::preserveURLs, "keep web links"},
    {"preserveEmails", &TextProtectionOptions::preserveEmails, "keep e-mail addresses"},
    {"preserveFilePaths", &TextProtectionOptions::preserveFilePaths, "keep file paths"},
    {"preserveHashtagsAndMentions", &TextProtectionOptions::preserveHashtagsAndMentions,
     "keep #hashtags and @mentions"},
    {"preserveCodeLikeTokens", &TextProtectionOptions::preserveCodeLikeTokens,
     "keep `code` between backticks"},
    {"correctAllUppercaseProse", &TextProtectionOptions::correctAllUppercaseProse,
     "let Smart Case correct text typed in capitals"},
}};

inline TextProtectionOptions allProtectionSwitchesOn() {
    TextProtectionOptions options;
    for (const auto &entry : protectionSwitches)
        options.*entry.field = true;
    return options;
}

} // namespace glyphmill::cli
