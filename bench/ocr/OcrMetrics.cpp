#include "OcrMetrics.h"

#include <algorithm>
#include <vector>

namespace glyphmill::ocrbench {

int levenshtein(const QString &a, const QString &b) {
    std::vector<int> previous(static_cast<std::size_t>(b.size()) + 1);
    std::vector<int> current(previous.size());
    for (std::size_t j = 0; j < previous.size(); ++j)
        previous[j] = static_cast<int>(j);
    for (qsizetype i = 0; i < a.size(); ++i) {
        current[0] = static_cast<int>(i) + 1;
        for (qsizetype j = 0; j < b.size(); ++j) {
            const auto k = static_cast<std::size_t>(j);
            current[k + 1] =
                std::min({previous[k + 1] + 1, current[k] + 1, previous[k] + (a[i] == b[j] ? 0 : 1)});
        }
        std::swap(previous, current);
    }
    return previous.back();
}

bool linesMatch(const QString &recognised, const QString &truth) {
    const int allowed = std::max<int>(1, static_cast<int>(truth.size()) / 5);
    if (std::abs(recognised.size() - truth.size()) > allowed)
        return false;
    return levenshtein(recognised, truth) <= allowed;
}

int linesInOrder(const QStringList &recognised, const QStringList &truth) {
    const auto columns = static_cast<std::size_t>(truth.size()) + 1;
    std::vector<int> table((static_cast<std::size_t>(recognised.size()) + 1) * columns, 0);
    for (qsizetype i = 1; i <= recognised.size(); ++i) {
        const auto row = static_cast<std::size_t>(i) * columns;
        const auto above = row - columns;
        for (qsizetype j = 1; j <= truth.size(); ++j) {
            const auto k = static_cast<std::size_t>(j);
            table[row + k] = linesMatch(recognised[i - 1], truth[j - 1])
                                 ? table[above + k - 1] + 1
                                 : std::max(table[above + k], table[row + k - 1]);
        }
    }
    return table.back();
}

} // namespace glyphmill::ocrbench
