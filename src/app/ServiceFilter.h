// `glyphmill service KIND`: standard input to standard output, transformed by the running
// instance when there is one, and here with the same terms and switches when there is none.
#pragma once

#include "transform/TextTransformer.h"

namespace glyphmill {

// The exit status: 0 transformed, 1 blank input (written back unchanged), 65 input that is not
// UTF-8, 66 unreadable input, 74 output that cannot be written. Needs a QCoreApplication.
int runServiceFilter(TextTransformKind kind);

} // namespace glyphmill
