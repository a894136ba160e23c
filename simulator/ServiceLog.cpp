// SPDX-License-Identifier: MIT

#include "ServiceLog.h"

#include <QtCore/QDateTime>

namespace simulator {

void ServiceLog::add(const QString &method, const QString &outcome)
{
    const int capacity = 1000;

    if (!m_enabled)
        return;
    if (m_lines.size() == capacity)
        m_lines.removeFirst();
    m_lines += QStringLiteral("%1 %2 %3")
                   .arg(QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs), method,
                        outcome.isEmpty() ? QStringLiteral("ok") : outcome);
}

} // namespace simulator
