// SPDX-License-Identifier: MIT

#ifndef TOOL_COMMON_TIME_H
#define TOOL_COMMON_TIME_H

#include <QtCore/QDateTime>

namespace tool {

/// The time as it stands in front of what has happened: "2026-11-21T03:12:45.123+01:00".
inline QString timeNow()
{
    const QDateTime now = QDateTime::currentDateTime();
    // Without this, the text would not tell the offset.
    return now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODateWithMs);
}

} // namespace tool

#endif
