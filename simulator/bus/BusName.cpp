// SPDX-License-Identifier: MIT

#include "bus/BusName.h"

#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusReply>

namespace simulator {

BusName::BusName(const QDBusConnection &connection, const QString &name)
    : m_connection(connection), m_name(name)
{
    m_connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                         QStringLiteral("org.freedesktop.DBus.Local"),
                         QStringLiteral("Disconnected"), this, SLOT(busLost()));
    m_absence.setSingleShot(true);
    connect(&m_absence, &QTimer::timeout, this, &BusName::takeAgain);
}

QString BusName::take()
{
    const auto reply = m_connection.interface()->registerService(
        m_name, QDBusConnectionInterface::DontQueueService,
        QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid())
        return QStringLiteral("%1: %2").arg(m_name, reply.error().message());
    if (reply.value() == QDBusConnectionInterface::ServiceRegistered)
        return {};
    return QStringLiteral("%1: another process owns the name (process %2)")
        .arg(m_name)
        .arg(m_connection.interface()->servicePid(m_name).value());
}

void BusName::takeAgain()
{
    const QString reason = take();
    if (!reason.isEmpty())
        Q_EMIT lost(reason);
}

void BusName::leave(int milliseconds)
{
    m_connection.interface()->unregisterService(m_name);
    if (milliseconds > 0)
        m_absence.start(milliseconds);
    else
        m_absence.stop();
}

void BusName::busLost()
{
    Q_EMIT lost(QStringLiteral("the bus is gone"));
}

} // namespace simulator
