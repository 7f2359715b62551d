#include "cli/Help.h"

#include "cli/ProtectionSwitches.h"

#include <string_view>

#if !defined(GLYPHMILL_VERSION) || !defined(GLYPHMILL_BUILD_NUMBER)
#error "the build passes GLYPHMILL_VERSION and GLYPHMILL_BUILD_NUMBER"
#endif

namespace glyphmill::cli {
namespace {

constexpr std::string_view overviewHelp =
    R"(Usage: glyphmill COMMAND [ARGUMENTS]

Changes the letter case of text while keeping links, e-mail addresses, file
paths, hashtags and mentions, code between backticks and your protected terms
exactly as they are written.

Commands:
  transform KIND [FILE]   transform text and write it to standard output
  terms ACTION            list or edit your protected terms

Options:
  -h, --help              show this help (also after any command)
  --version               show the version

Exit status: 0 done, 64 wrong usage, 65 text that is not valid UTF-8,
66 input that cannot be read, 73 preferences that cannot be saved,
74 output that cannot be written.
)";

constexpr std::string_view transformHelpStart =
    R"(Usage: glyphmill transform KIND [FILE] [OPTIONS]

Transforms FILE, standard input (no FILE, or "-"), or the --text argument, and
writes the result to standard output byte for byte, adding nothing. The text
must be UTF-8.

Kinds (the name, or the title in quotes):
  smart-case        "Smart Case"        repair the capitals of sentences
  title-case        "Title Case"        capitalise every line as a headline
  uppercase         "UPPERCASE"
  lowercase         "lowercase"
  capitalize-words  "Capitalize Words"  a capital at the start of every word

Options:
  --text TEXT          transform TEXT instead of reading input
  --term TEXT          protect TEXT; repeat for more. These replace your list
  --no-terms           protect no terms
  --default-terms      protect the built-in terms instead of your list
  --option NAME=BOOL   turn a protection switch on (true) or off (false)
  --defaults           ignore your preferences: the built-in terms and every
                       switch on; --term, --no-terms, --default-terms and
                       --option still apply on top
  -h, --help           show this help
  --version            show the version
  --                   end of options: what follows is KIND or FILE

Switches for --option (all on unless turned off):
)";

constexpr std::string_view termsHelp =
    R"(Usage: glyphmill terms ACTION

Your protected terms keep their exact letter case in every transform.

Actions:
  list               print the terms, one a line, in list order
  add TEXT           add TEXT at the end of the list
  remove TEXT        remove every term equal to TEXT, ignoring letter case
  restore-defaults   replace the list by the built-in terms

Options:
  -h, --help         show this help (also after an action)
  --version          show the version
  --                 end of options: what follows is the ACTION or TEXT
)";

constexpr std::string_view termsListHelp = R"(Usage: glyphmill terms list

Prints your protected terms in list order, one a line.
)";

constexpr std::string_view termsAddHelp = R"(Usage: glyphmill terms add [--] TEXT

Adds TEXT at the end of your protected terms. White space around it is
trimmed; a blank TEXT, or one already in the list in any letter case, leaves
the list as it is.
)";

constexpr std::string_view termsRemoveHelp = R"(Usage: glyphmill terms remove [--] TEXT

Removes every protected term equal to TEXT, ignoring letter case.
)";

constexpr std::string_view termsRestoreDefaultsHelp = R"(Usage: glyphmill terms restore-defaults

Replaces your protected terms by the built-in list, dropping every term you
added.
)";

std::string transformHelp() {
    std::string text(transformHelpStart);
    for (const auto &entry : protectionSwitches) {
        text += "  ";
        text += entry.name;
        text.append(entry.name.size() < 29 ? 29 - entry.name.size() : 1, ' ');
        text += entry.summary;
        text += '\n';
    }
    return text;
}

} // namespace

std::string helpText(HelpTopic topic) {
    switch (topic) {
    case HelpTopic::overview:
        return std::string(overviewHelp);
    case HelpTopic::transform:
        return transformHelp();
    case HelpTopic::terms:
        return std::string(termsHelp);
    case HelpTopic::termsList:
        return std::string(termsListHelp);
    case HelpTopic::termsAdd:
        return std::string(termsAddHelp);
    case HelpTopic::termsRemove:
        return std::string(termsRemoveHelp);
    case HelpTopic::termsRestoreDefaults:
        return std::string(termsRestoreDefaultsHelp);
    }
    return std::string(overviewHelp);
}

std::string versionText() {
    return "glyphmill " GLYPHMILL_VERSION " (build " GLYPHMILL_BUILD_NUMBER ")\n";
}

} // namespace glyphmill::cli
