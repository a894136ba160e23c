// SPDX-License-Identifier: MIT

#ifndef TESTING_PRIVATEBUS_H
#define TESTING_PRIVATEBUS_H

#include "ChildProcess.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>
#include <QtDBus/QDBusConnection>

/// Whether a mount name space of one's own can be had, which an ordinary container does not allow.
bool canMount();

/// Whether the bus of this test is a dbus-broker: some messages of the buses differ.
bool isDBusBroker();

/// A bus of a test's own, which this process and its children take for the system bus.
///
/// The environment variable TEST_BUS chooses it: "dbus-daemon" or "dbus-broker", with the limits of
/// a system bus, or, without it, a dbus-daemon that has the limits of a session's. Where there can
/// be no dbus-broker, the whole test is skipped.
///
/// Make it before anything asks for QDBusConnection::systemBus(), which Qt connects only once.
class PrivateBus
{
public:
    PrivateBus();

    /// A bus with a configuration of the test's own, which may have a policy.
    explicit PrivateBus(const QString &configuration);

    QString address() const;

    /// A further connection to the bus, independent of QDBusConnection::systemBus().
    QDBusConnection connect(const QString &name) const;

    /// Ends the daemon, so that all connections are lost.
    void kill();

private:
    QTemporaryDir m_directory;
    const QStringList m_command;
    ChildProcess m_daemon;
    QString m_address;
};

#endif
