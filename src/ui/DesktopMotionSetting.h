// Whether the desktop asks applications to keep animations to a minimum. GNOME and KDE keep this
// in their own settings; a desktop that has no such setting allows motion.
#pragma once

#include <QStringView>

namespace glyphmill {

// Reads GNOME's enable-animations key (through gsettings) and KDE's animation speed factor.
// Either one switched off means reduced motion.
bool desktopPrefersReducedMotion();

// The parts that read the answers, for tests: the output of
// `gsettings get org.gnome.desktop.interface enable-animations`, and the text of kdeglobals.
bool gnomeSettingDisablesAnimations(QStringView gsettingsOutput);
bool kdeGlobalsDisableAnimations(QStringView kdeglobalsText);

} // namespace glyphmill
