// How far recognised text is from the truth.
#pragma once

#include <QString>
#include <QStringList>

namespace glyphmill::ocrbench {

// Edits (insertions, deletions, substitutions of UTF-16 units) that turn one text into the other.
int levenshtein(const QString &a, const QString &b);

// A recognised line stands for a true line when at most a fifth of the true line's characters
// (at least one) must be edited to get there.
bool linesMatch(const QString &recognised, const QString &truth);

// The number of true lines found in the recognised lines in the same relative order: the longest
// common subsequence of the two lists under linesMatch.
int linesInOrder(const QStringList &recognised, const QStringList &truth);

} // namespace glyphmill::ocrbench
