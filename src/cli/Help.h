// The help pages and the version line, written to standard output on request.
#pragma once

#include "cli/Arguments.h"

#include <string>

namespace glyphmill::cli {

std::string helpText(const ShowHelp &request);
std::string versionText(); // "glyphmill VERSION (build N)" and a line break

} // namespace glyphmill::cli
