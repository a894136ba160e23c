// SPDX-License-Identifier: MIT

#ifndef TOOL_COMMON_JSONTEXT_H
#define TOOL_COMMON_JSONTEXT_H

#include "common/Failure.h"

#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>
#include <QtCore/QString>

namespace tool {

/// A value as text: a text as it is, others in compact JSON, but null says that it is not shown.
QString toText(const QJsonValue &value);

/// What JSON says of something that has failed.
QJsonObject errorToJson(ExitStatus status, const QString &message);

} // namespace tool

#endif
