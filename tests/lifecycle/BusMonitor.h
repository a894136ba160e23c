// SPDX-License-Identifier: MIT

#ifndef TESTS_LIFECYCLE_BUSMONITOR_H
#define TESTS_LIFECYCLE_BUSMONITOR_H

#include "ChildProcess.h"
#include "PrivateBus.h"

#include <QtCore/QStringList>
#include <QtCore/QVector>

/// Sees every message on a bus, as dbus-monitor does.
class BusMonitor
{
public:
    /// When this returns, nothing is missed any more.
    explicit BusMonitor(const PrivateBus &bus);

    /// Returns the method calls that have been sent over the connection since the last time, each
    /// as its destination and its member.
    QStringList takeCalls(QDBusConnection connection);

    /// Returns how many messages the connection has sent and got since the last time, beside those
    /// to everybody.
    int countMessages(QDBusConnection connection);

private:
    QVector<QStringList> takeMessages(QDBusConnection &connection);

    /// The next message, in the columns of dbus-monitor.
    QStringList readMessage();

    ChildProcess m_program;
};

#endif
