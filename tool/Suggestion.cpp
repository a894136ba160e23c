// SPDX-License-Identifier: MIT

#include "Suggestion.h"

#include <QtCore/QVector>

#include <algorithm>
#include <numeric>
#include <utility>

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

} // namespace

QString didYouMean(const QString &given, const QStringList &known)
{
    const int maxDistance = std::max(1, given.size() / 3);
    const int maxSuggestions = 3;

    QVector<std::pair<int, QString>> similar;
    for (const QString &name : known) {
        const int distance = editDistance(given.toLower(), name.toLower());
        if (distance <= maxDistance)
            similar.append({distance, name});
    }
    std::stable_sort(similar.begin(), similar.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });

    QStringList quoted;
    for (const auto &[distance, name] : std::as_const(similar)) {
        const bool asGood = distance <= similar.first().first + 1;
        if (asGood && quoted.size() < maxSuggestions)
            quoted.append(QStringLiteral("'%1'").arg(name));
    }
    if (quoted.isEmpty())
        return QString();
    return QStringLiteral("; did you mean %1?").arg(quoted.join(QStringLiteral(" or ")));
}
