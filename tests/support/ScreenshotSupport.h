// What the screenshot tests share: a dark palette to try the widgets in, and a sheet that puts
// several pictures side by side.
#pragma once

#include <QPalette>
#include <QPixmap>

#include <vector>

namespace glyphmill::testSupport {

QPalette darkPalette();
// The pictures side by side on a neutral backdrop, with a gap between them.
QPixmap sideBySide(const std::vector<QPixmap> &pictures);

} // namespace glyphmill::testSupport
