// SPDX-License-Identifier: MIT

#include "PrivateBus.h"

PrivateBus::PrivateBus()
    : m_daemon(QStringLiteral("dbus-daemon"),
               {QStringLiteral("--session"), QStringLiteral("--nofork"),
                QStringLiteral("--print-address"),
                QStringLiteral("--address=unix:dir=") + m_directory.path()}),
      m_address(m_daemon.startAndReadLine())
{
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_address.toUtf8());
}

QString PrivateBus::address() const
{
    return m_address;
}

QDBusConnection PrivateBus::connect(const QString &name) const
{
    return QDBusConnection::connectToBus(m_address, name);
}

void PrivateBus::kill()
{
    m_daemon.killAndWait();
}
