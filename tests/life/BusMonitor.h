// SPDX-License-Identifier: MIT

#ifndef TESTS_LIFE_BUSMONITOR_H
#define TESTS_LIFE_BUSMONITOR_H

#include "ChildProcess.h"
#include "PrivateBus.h"

#include <QtCore/QStringList>

/// Sees every message on a bus, as dbus-monitor does.
class BusMonitor
{
public:
    /// When this returns, nothing is missed any more.
    explicit BusMonitor(const PrivateBus &bus);

    /// Returns the method calls that have been sent over the connection since the last time, each
    /// as its destination and its member.
    QStringList takeCalls(QDBusConnection connection);

private:
    /// The next message, in the columns of dbus-monitor.
    QStringList readMessage();

    ChildProcess m_program;
};

#endif
