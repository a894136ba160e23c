// SPDX-License-Identifier: MIT

#include <libtavelorn/DBusService.h>

#include "DBusService_p.h"

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingReply>

namespace libtavelorn {

DBusServiceProxy::DBusServiceProxy(const QString &service, const QString &path,
                                   const QString &interface, const QDBusConnection &connection,
                                   QObject *parent)
    : QDBusAbstractInterface(service, path, interface.toLatin1().constData(), connection, parent)
{
}

DBusServicePrivate::DBusServicePrivate(const QDBusConnection &bus, const QString &name,
                                       DBusService *service)
    : QObject(service),
      connection(bus),
      serviceName(name),
      q(service),
      watcher(name, bus, QDBusServiceWatcher::WatchForOwnerChange, this)
{
    connect(&watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            &DBusServicePrivate::ownerChanged);
    watchBus();

    // Asks the bus for the owner: after subscribing, so that no change falls between the two.
    proxy = new DBusServiceProxy(name, QStringLiteral("/"), name, bus, this);
    if (proxy->lastError().type() == QDBusError::InvalidInterface)
        askForOwner(); // not every name of a service is one of an interface
    else
        present = proxy->isValid();
}

void DBusServicePrivate::watchBus()
{
    connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                       QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                       this, SLOT(busLost()));
}

// In their order, the signals say all that is needed. But when the event loop starts, Qt delivers
// those that it has held back until then after the first new ones: then only the bus knows.
void DBusServicePrivate::ownerChanged(const QString &, const QString &oldOwner,
                                      const QString &newOwner)
{
    // The proxy has told that there is an owner, but not who.
    if (present && owner.isEmpty())
        owner = oldOwner.isEmpty() ? newOwner : oldOwner;
    const bool isNext = oldOwner == owner;
    // Also a change that is undone by now is one.
    if (isNext)
        setOwner(newOwner);
    if (!isInOrder || !isNext)
        askForOwner();
    if (!isInOrder)
        expectOrder();
}

// With the first signal, Qt's thread delivers all that it has held back. Watching the bus again
// does nothing but wait until it has done so.
void DBusServicePrivate::expectOrder()
{
    watchBus();
    QMetaObject::invokeMethod(
        this, [this] { isInOrder = true; }, Qt::QueuedConnection);
}

void DBusServicePrivate::askForOwner()
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
    question << serviceName;
    // Not call(), nor QDBusConnectionInterface: Qt's blocking calls keep the error of the
    // connection without a lock, so that ordinary errors of two threads corrupt the heap.
    QDBusPendingReply<QString> answer = connection.asyncCall(question);
    answer.waitForFinished();
    setOwner(answer.isError() ? QString() : answer.value());
}

void DBusServicePrivate::busLost()
{
    setOwner(QString());
}

void DBusServicePrivate::setOwner(const QString &newOwner)
{
    if (newOwner == owner && present == !owner.isEmpty())
        return;
    owner = newOwner;
    if (present) {
        present = false;
        Q_EMIT q->disconnected();
    }
    // A slot may have run the event loop, and so have brought and told a newer owner.
    if (!owner.isEmpty() && !present) {
        present = true;
        Q_EMIT q->connected();
    }
}

DBusService::DBusService(QDBusConnection connection, const QString &serviceName, QObject *parent)
    : QObject(parent), d(new DBusServicePrivate(connection, serviceName, this))
{
}

DBusService::~DBusService() = default;

bool DBusService::isConnected() const
{
    return d->present;
}

QDBusAbstractInterface *DBusService::interface(const QString &path, const QString &interfaceName)
{
    // Each further proxy asks the bus for the owner once more.
    if (path == d->proxy->path() && interfaceName == d->proxy->interface())
        return d->proxy;
    return new DBusServiceProxy(d->serviceName, path, interfaceName, d->connection, this);
}

} // namespace libtavelorn
