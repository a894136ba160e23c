// SPDX-License-Identifier: MIT

#ifndef LIBTAVELORN_DBUSSERVICE_H
#define LIBTAVELORN_DBUSSERVICE_H

#include <libtavelorn/export.h>

#include <QtCore/QObject>
#include <QtCore/QScopedPointer>
#include <QtCore/QString>
#include <QtDBus/QDBusConnection>

class QDBusAbstractInterface;

namespace libtavelorn {

class DBusServicePrivate;

/// Watches one service on a bus.
///
/// The bus reports a change of the service's owner by signals, which are delivered by the event
/// loop of the thread in which this object lives: without a running event loop isConnected() does
/// not change. After each of them the bus is asked once for the owner.
class LIBTAVELORN_EXPORT DBusService : public QObject
{
    Q_OBJECT
public:
    /// Watches serviceName on connection; blocks for one question to the bus.
    DBusService(QDBusConnection connection, const QString &serviceName, QObject *parent);
    ~DBusService() override;

    /// Returns whether the service is on the bus. Any thread may ask; causes no bus traffic.
    bool isConnected() const;

    /// Returns a new proxy for an object of the service, which this object owns.
    ///
    /// The proxy does not introspect the service.
    QDBusAbstractInterface *interface(const QString &path, const QString &interfaceName);

Q_SIGNALS:
    /// The service has come onto the bus.
    void connected();

    /// The service has left the bus, or the bus itself is lost.
    ///
    /// When one service replaces another, disconnected() is emitted first, then connected().
    void disconnected();

private:
    const QScopedPointer<DBusServicePrivate> d;
};

} // namespace libtavelorn

#endif
