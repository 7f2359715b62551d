// Small icons the palette paints itself in the colours of the current palette, so they follow a
// light or dark theme without any icon theme installed.
#pragma once

#include "transform/TextTransformer.h"

#include <QIcon>
#include <QPalette>

namespace glyphmill::paletteGlyphs {

// A letter-case sample for each transform: "Aa", "Tt", "AB", "ab", "Ab".
QIcon modeIcon(TextTransformKind kind, const QPalette &palette);
// A filled circle with a cross, in the secondary text colour.
QIcon closeIcon(const QPalette &palette);

} // namespace glyphmill::paletteGlyphs
