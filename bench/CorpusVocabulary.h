// The words and protected spans the benchmark corpus is built from. Changing any of them
// changes the corpus, and figures measured before the change are no longer comparable.
#pragma once

#include <string_view>

namespace glyphmill::bench::vocabulary {

// Common words only; none is a built-in term in any letter case ("us" is left out).
// clang-format off
inline constexpr std::string_view commonWords[] = {
    "the", "of", "and", "to", "in", "is", "that", "for", "it", "as", "was", "with", "be", "by", "on",
    "not", "he", "this", "are", "or", "his", "from", "at", "which", "but", "have", "an", "had", "they",
    "you", "were", "their", "one", "all", "we", "can", "her", "has", "there", "been", "if", "more",
    "when", "will", "would", "who", "so", "no", "out", "up", "into", "about", "than", "them", "some",
    "could", "time", "these", "two", "may", "first", "then", "do", "any", "like", "my", "now", "over",
    "such", "our", "man", "me", "even", "most", "made", "after", "also", "did", "many", "before",
    "must", "through", "back", "years", "where", "much", "your", "way", "well", "down", "should",
    "because", "each", "just", "those", "people", "how", "too", "little", "state", "good", "very",
    "make", "world", "still", "own", "see", "men", "work", "long", "get", "here", "between", "both",
    "life", "being", "under", "never", "day", "same", "another", "know", "while", "last", "might",
    "great", "old", "year", "off", "come", "since", "against", "go", "came", "right", "used", "take",
    "three", "small", "house", "without", "again", "place", "around", "however", "home", "found",
    "general", "water", "number", "team", "report", "meeting", "project", "budget", "customer",
    "release", "schedule", "design", "review", "market", "quarter", "office", "question", "answer",
    "morning", "evening", "window", "letter", "message", "product", "feature", "support", "version",
    "update", "account", "invoice", "travel", "garden", "kitchen", "river", "mountain", "city",
    "street", "weather", "coffee", "music", "picture", "history", "family", "friend", "school",
    "quickly", "quietly", "together", "perhaps", "already", "almost", "always", "often", "simple",
    "careful", "important", "early", "late", "final", "open", "clear", "bring", "write", "read",
    "send", "share", "check", "finish", "start", "believe", "remember", "consider", "explain",
    "improve", "follow", "change", "decide", "per", "via", "nor", "yet", "a", "i", "don't", "it's",
    "well-known", "state-of-the-art", "e-mail", "follow-up", "3rd", "2024", "15", "42%",
};

// Accents, sharp s, dotted capital I, Greek, and emoji built from ZWJ sequences, skin tones,
// variation selectors and regional indicators.
inline constexpr std::string_view internationalWords[] = {
    "café", "naïve", "résumé", "façade", "Straße", "Größe", "über", "déjà vu", "Ångström",
    "smörgåsbord", "λόγος", "Αθήνα", "καλημέρα", "ΕΛΛΑΔΑ", "ωραία", "Ελλάς", "fiancée", "coöperate",
    "São Paulo", "İstanbul", "👍🏽", "👩🏽‍💻", "👨‍👩‍👧‍👦", "🧑🏿‍🚀", "🏳️‍🌈", "❤️‍🔥", "👋🏻", "🇩🇪", "😀", "☕",
};
// clang-format on

inline constexpr std::string_view linksWithScheme[] = {
    "https://example.com/Path?Q=1",
    "http://Docs.Example.net/API/v2/Index.html",
    "https://GitHub.com/Org/Repo/Issues/42",
    "HTTPS://Example.org/Download#Section-Two",
};
inline constexpr std::string_view linksWithoutScheme[] = {
    "www.Example.org/A",
    "WWW.Shop.Example.co.uk/Cart?Item=7",
    "www.wikipedia.org/wiki/Case_Folding",
};
inline constexpr std::string_view emailAddresses[] = {
    "First.Last@Example.COM",
    "Support+Billing@Shop.Example.org",
    "j.doe@Mail.Example.DE",
};
inline constexpr std::string_view systemPaths[] = {
    "/Users/Name/Docs/File.txt",
    "/home/Alex/Src/Main.CPP",
    "/tmp/Build-Output.LOG",
};
inline constexpr std::string_view homePaths[] = {
    "~/Projects/Readme.md",
    "~/Library/Caches/Index.DB",
    "~/Downloads",
};
inline constexpr std::string_view windowsPaths[] = {
    "C:\\Temp\\Report.PDF",
    "D:\\Work\\Q3\\Summary.XLSX",
};
inline constexpr std::string_view hashtags[] = {"#SwiftUI", "#MondayMotivation", "#ÉtéÀParis",
                                                "#Release2024"};
inline constexpr std::string_view mentions[] = {"@JaneDoe", "@Dev_Team", "@ÅsaLund"};
inline constexpr std::string_view codeSpans[] = {
    "`let X = Foo()`",
    "`if (Count > 0) return;`",
    "`npm install --Save-Dev`",
    "`SELECT Name FROM Users`",
};

// Brand names are a head and a tail ("zen" + "trek"), in one of several letter cases.
// clang-format off
inline constexpr std::string_view brandHeads[] = {
    "zen", "nova", "quanta", "bright", "helio", "omni", "lumi", "vecto", "cirra", "terra", "pixel",
    "aero", "flux", "kite", "nimbus", "orbi", "sola", "tide", "vira", "wave", "astra", "brisk",
    "cobalt", "delta", "ember", "fjord", "glint", "hyper", "ionic", "jade",
};
inline constexpr std::string_view brandTails[] = {
    "trek", "lab", "link", "desk", "forge", "hub", "sync", "works", "scope", "nest", "grid", "loop",
    "mint", "path", "stack", "vault", "cast", "pad", "dock", "wise", "beam", "core", "flow", "gate",
    "hive", "lens", "mark", "pulse", "quill", "ray",
};
// clang-format on
inline constexpr std::string_view brandExtraWords[] = {" Cloud", " Pro", " Labs", " Studio", " for Teams"};

} // namespace glyphmill::bench::vocabulary
