// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_PRIVATEBUS_H
#define TESTS_SUPPORT_PRIVATEBUS_H

#include "ChildProcess.h"

#include <QtCore/QString>
#include <QtCore/QTemporaryDir>
#include <QtDBus/QDBusConnection>

/// A dbus-daemon of a test's own, which this process and its children take for the system bus.
///
/// Make it before anything asks for QDBusConnection::systemBus(), which Qt connects only once.
class PrivateBus
{
public:
    PrivateBus();

    QString address() const;

    /// A further connection to the bus, independent of QDBusConnection::systemBus().
    QDBusConnection connect(const QString &name) const;

    /// Ends the daemon, so that all connections are lost.
    void kill();

private:
    QTemporaryDir m_directory;
    ChildProcess m_daemon;
    QString m_address;
};

#endif
