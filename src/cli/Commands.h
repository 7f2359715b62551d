// The two commands; each returns the exit status or throws Failure.
#pragma once

#include "cli/Arguments.h"
#include "cli/Failure.h"

namespace glyphmill::cli {

ExitStatus runTransform(const TransformRequest &request);
ExitStatus runTerms(const TermsRequest &request);

} // namespace glyphmill::cli
