// SPDX-License-Identifier: MIT

#include "configuration/Differences.h"

#include "common/JsonText.h"
#include "terminal/Output.h"

#include <QtCore/QVector>

namespace tool {

QJsonObject toJson(const Differences &differences, const QString &firstKey,
                   const QString &secondKey)
{
    QJsonObject object;
    for (auto entry = differences.begin(); entry != differences.end(); ++entry) {
        // An undefined value leaves its key out.
        object.insert(entry.key(),
                      QJsonObject{{firstKey, entry->first}, {secondKey, entry->second}});
    }
    return object;
}

void print(const Output &output, const Differences &differences, const QStringList &sources,
           const QString &missing)
{
    const auto text = [&](const QJsonValue &value) {
        return value.isUndefined() ? missing
               : value.isNull()    ? QStringLiteral("null")
                                   : toText(value);
    };
    QVector<QStringList> rows;
    for (auto entry = differences.begin(); entry != differences.end(); ++entry)
        rows.append({entry.key(), text(entry->first), text(entry->second)});
    if (rows.isEmpty())
        output.note(QStringLiteral("no difference"));
    else
        output.table(rows, QStringList{QStringLiteral("Setting")} + sources);
}

} // namespace tool
