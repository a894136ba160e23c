// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_VALUE_H
#define TOOL_LIBRARY_VALUE_H

#include "library/Operation.h"

#include <QtCore/QJsonValue>
#include <QtCore/QString>
#include <QtCore/QVariant>

namespace tool {

/// The argument that a text of the command line stands for; a map is given as a JSON object.
///
/// A number is given as such, by the key of its enumeration ("Landscape"), or by the key of any
/// enumeration with its name ("PrintSpeed::Draft"). Throws a Failure that says what was expected.
QVariant argumentFromText(const QString &text, const ValueType &type);

/// The argument that a JSON value stands for; throws as argumentFromText() does.
QVariant argumentFromJson(const QJsonValue &value, const ValueType &type);

/// A result in JSON: numbers of an enumeration by their key, if they have one.
QJsonValue toJson(const QVariant &value, const ValueType &type);

} // namespace tool

#endif
