// SPDX-License-Identifier: MIT

#include "state/ServiceLog.h"

#include "state/RecentEntries.h"

#include <QtCore/QDateTime>

namespace simulator {

void ServiceLog::add(const QString &method, const QString &outcome)
{
    if (!m_enabled)
        return;
    appendRecent(m_lines, QStringLiteral("%1 %2 %3")
                              .arg(QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs),
                                   method, outcome.isEmpty() ? QStringLiteral("ok") : outcome));
}

} // namespace simulator
