// Parsing of the line tools and of the commands that turn one input into one output.
#pragma once

#include "cli/Arguments.h"

#include <span>

namespace glyphmill::cli {

// The arguments after "lines". Throws Failure (usage) like parseArguments.
Invocation parseLines(std::span<const char *const> arguments);
// The arguments after html-to-text, rtf-to-text or stats.
Invocation parseTextCommand(TextCommand command, std::span<const char *const> arguments);

} // namespace glyphmill::cli
