// The commands; each returns the exit status or throws Failure.
#pragma once

#include "cli/Arguments.h"
#include "cli/Failure.h"

namespace glyphmill::cli {

ExitStatus runTransform(const TransformRequest &request);
ExitStatus runTerms(const TermsRequest &request);
ExitStatus runLines(const LinesRequest &request);
ExitStatus runTextCommand(const TextCommandRequest &request);
// Replaces this process by the desktop application with the same arguments; returns only by
// throwing Failure when the application is missing or cannot start.
[[noreturn]] void launchApplication(char **argv);

} // namespace glyphmill::cli
