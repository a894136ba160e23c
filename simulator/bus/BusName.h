// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_BUS_BUSNAME_H
#define SIMULATOR_BUS_BUSNAME_H

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>

namespace simulator {

/// The well-known name under which the service is found: taken, given up for a while, taken again.
class BusName : public QObject
{
    Q_OBJECT
public:
    BusName(const QDBusConnection &connection, const QString &name);

    /// Returns why it could not be taken; nothing if it is owned now.
    QString take();

    /// Takes the name, or emits lost().
    void takeAgain();

    /// Gives the name up and takes it again after a while; at 0, when takeAgain() is called.
    void leave(int milliseconds);

Q_SIGNALS:
    /// The name could not be taken again, or the bus is gone.
    void lost(const QString &reason);

private Q_SLOTS:
    void busLost();

private:
    QDBusConnection m_connection;
    const QString m_name;
    QTimer m_absence;
};

} // namespace simulator

#endif
