// SPDX-License-Identifier: MIT

#include "BusName.h"

#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusReply>

namespace simulator {

BusName::BusName(const QDBusConnection &connection, const QString &name)
    : m_connection(connection), m_name(name)
{
    m_absence.setSingleShot(true);
    connect(&m_absence, &QTimer::timeout, this, [this] {
        const QString reason = take();
        if (!reason.isEmpty())
            Q_EMIT lost(reason);
    });
}

QString BusName::take()
{
    m_absence.stop();
    const auto reply = m_connection.interface()->registerService(
        m_name, QDBusConnectionInterface::DontQueueService,
        QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid())
        return reply.error().message();
    if (reply.value() == QDBusConnectionInterface::ServiceRegistered)
        return {};
    return QStringLiteral("another process owns the name (process %1)")
        .arg(m_connection.interface()->servicePid(m_name).value());
}

void BusName::leave(int milliseconds)
{
    leave();
    m_absence.start(milliseconds);
}

void BusName::leave()
{
    m_absence.stop();
    m_connection.interface()->unregisterService(m_name);
}

} // namespace simulator
