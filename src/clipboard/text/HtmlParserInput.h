// What the HTML reader hands to libxml2: the document less what only costs the parser time.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace glyphmill::clipboard {

// libxml2 2.9 checks every attribute of a start tag against all earlier ones of that tag, so a tag
// with n attributes costs n² (40,000 take seconds), and it looks through all open elements for an
// end tag it ends up ignoring and for every <body> (quadratic in a deep document full of them).
// This gives the document with every attribute taken out of its start tag except the first of each
// name in `keep` (and, on <meta>, of charset, http-equiv and content, which the parser reads
// itself), and with such end tags and <body> tags replaced by ones the parser drops at once. It is
// UTF-8, to be parsed with the encoding named "UTF-8": libxml2 builds the same elements, text and
// kept attributes from it as from `html` (scripts and styles may differ in their text, which is
// never shown), in time linear in the size but for a rare case (a <body> in many nested framesets,
// repeated).
//
// None when the document is best parsed as it is: libxml2 would take fewer than
// `stepsWorthRewriting` steps over its attributes and open elements (pairs of attributes of a tag,
// open elements looked through), which holds for common pages (0 rewrites whatever can be); there
// is nothing to take out; or the pass meets a turn it does not follow with certainty, such as a
// byte that is not UTF-8 in a name or attribute value where libxml2 switches to Latin-1, or an
// encoding that cannot be converted to the end. html is then parsed unchanged, as before.
constexpr std::size_t defaultStepsWorthRewriting = 2'000'000; // a few milliseconds of libxml2's time
std::optional<std::string> htmlForParser(std::string_view html, std::span<const std::string_view> keep,
                                         std::size_t stepsWorthRewriting = defaultStepsWorthRewriting);

} // namespace glyphmill::clipboard
