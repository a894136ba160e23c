// SPDX-License-Identifier: MIT

#include "ServiceLog.h"

#include "LastThousand.h"

#include <QtCore/QDateTime>

namespace simulator {

void ServiceLog::add(const QString &method, const QString &outcome)
{
    if (!m_enabled)
        return;
    appendToLastThousand(m_lines,
                         QStringLiteral("%1 %2 %3")
                             .arg(QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs),
                                  method, outcome.isEmpty() ? QStringLiteral("ok") : outcome));
}

} // namespace simulator
