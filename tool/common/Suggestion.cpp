// SPDX-License-Identifier: MIT

#include "common/Suggestion.h"

#include <QtCore/QMap>
#include <QtCore/QVector>

#include <algorithm>
#include <numeric>
#include <utility>

namespace tool {

namespace {

/// The number of characters to insert, remove, replace or swap with their neighbour.
int editDistance(const QString &from, const QString &to)
{
    QVector<int> beforePrevious;
    QVector<int> previous(to.size() + 1);
    QVector<int> current(to.size() + 1);
    std::iota(previous.begin(), previous.end(), 0);
    for (int i = 0; i < from.size(); ++i) {
        current[0] = i + 1;
        for (int j = 0; j < to.size(); ++j) {
            const int replaced = previous[j] + (from[i] == to[j] ? 0 : 1);
            current[j + 1] = std::min({replaced, previous[j + 1] + 1, current[j] + 1});
            if (i > 0 && j > 0 && from[i] == to[j - 1] && from[i - 1] == to[j])
                current[j + 1] = std::min(current[j + 1], beforePrevious[j - 1] + 1);
        }
        beforePrevious = std::exchange(previous, current);
    }
    return previous.last();
}

const int maxSuggestions = 3;

/// The names at the smallest distance, if it is one of a slip of the pen.
QStringList misspelt(const QString &given, const QStringList &known)
{
    QMap<int, QStringList> byDistance;
    for (const QString &name : known)
        byDistance[editDistance(given.toLower(), name.toLower())].append(name);
    if (byDistance.isEmpty() || byDistance.firstKey() > std::max(1, given.size() / 3))
        return {};
    return byDistance.first();
}

} // namespace

QString didYouMean(const QString &given, const QStringList &known)
{
    QStringList similar = misspelt(given, known);
    if (similar.isEmpty() && !given.isEmpty())
        similar = known.filter(given, Qt::CaseInsensitive);
    if (similar.isEmpty())
        return {};
    const QStringList best = similar.mid(0, maxSuggestions);
    return QStringLiteral("; did you mean '%1'?").arg(best.join(QStringLiteral("' or '")));
}

} // namespace tool
