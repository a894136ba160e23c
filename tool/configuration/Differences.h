// SPDX-License-Identifier: MIT

#ifndef TOOL_CONFIGURATION_DIFFERENCES_H
#define TOOL_CONFIGURATION_DIFFERENCES_H

#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>
#include <QtCore/QMap>
#include <QtCore/QPair>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace tool {

class Output;

/// The two values of settings in which these differ, by the name of the setting; undefined where
/// there is none.
using Differences = QMap<QString, QPair<QJsonValue, QJsonValue>>;

/// For each setting an object with the values by these keys, without those that there are not.
QJsonObject toJson(const Differences &differences, const QString &firstKey,
                   const QString &secondKey);

/// Prints them as a table, whose columns are named after where the values come from, and `missing`
/// in the place of a value that there is not.
void print(const Output &output, const Differences &differences, const QStringList &sources,
           const QString &missing);

} // namespace tool

#endif
