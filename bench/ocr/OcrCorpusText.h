// The words drawn into the recognition corpus: screen text of the kinds people select.
#pragma once

#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

namespace glyphmill::ocrbench {

using Pair = std::pair<QString, QString>;

extern const QStringList proseLines;
extern const QStringList headings;
// Menus of (item, shortcut); an empty item is a separator.
extern const std::vector<std::vector<Pair>> menus;
extern const QStringList codeLines;
extern const QStringList linkLines;
extern const QStringList numberLines;
extern const std::vector<Pair> amounts;
extern const std::vector<Pair> formRows;
extern const QStringList iconLabels;

} // namespace glyphmill::ocrbench
