// Screen-like images with known text for measuring text recognition: panels drawn with Qt in
// several UI fonts, sizes, colour schemes and pixel densities, each with the lines a person reads
// in it. Built the same way on every run.
#pragma once

#include "platform/ScreenImage.h"

#include <QImage>
#include <QString>
#include <QStringList>

#include <vector>

namespace glyphmill::ocrbench {

struct OcrSample {
    QString name;
    // prose, heading, menu, code, links, numbers, form, icons
    QString category;
    QImage image; // device pixels, with its device pixel ratio set
    // Reading order; a label and its value, or a menu item and its shortcut, on one line with one
    // space between them.
    QStringList truth;
};

std::vector<OcrSample> buildOcrCorpus();

// A region of the given size in points at 1 device pixel per point, filled with lines of 13 px
// prose; for timing.
QImage renderTextRegion(int widthPoints, int heightPoints);

ScreenImage toScreenImage(const QImage &image);

} // namespace glyphmill::ocrbench
