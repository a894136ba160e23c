// SPDX-License-Identifier: MIT

#include <libtavelorn/DBusService.h>

#include "DBusService_p.h"

#include <QtDBus/QDBusAbstractInterface>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingReply>

namespace libtavelorn {

namespace {

// QDBusInterface would introspect the service on construction.
class Proxy : public QDBusAbstractInterface
{
public:
    Proxy(const QString &service, const QString &path, const QByteArray &interface,
          const QDBusConnection &connection, QObject *parent)
        : QDBusAbstractInterface(service, path, interface.constData(), connection, parent)
    {
    }
};

} // namespace

DBusServicePrivate::DBusServicePrivate(const QDBusConnection &bus, const QString &name,
                                       DBusService *service)
    : QObject(service),
      connection(bus),
      serviceName(name),
      q(service),
      watcher(name, bus, QDBusServiceWatcher::WatchForOwnerChange, this)
{
    connect(&watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &oldOwner, const QString &newOwner) {
                // Also a change that is undone by now is one.
                if (oldOwner == owner)
                    setOwner(newOwner);
                askForOwner();
            });
    connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                       QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                       this, SLOT(busLost()));

    // Asked after subscribing, so that no change falls between the two.
    askForOwner();
}

// Asked after each signal too: when the event loop starts, Qt delivers the signals that it has held
// back until then after the first new ones, so that the owner named in the last one may be
// outdated.
void DBusServicePrivate::askForOwner()
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
    question << serviceName;
    // Not call(), nor QDBusConnectionInterface: Qt's blocking calls keep the error of the connection
    // without a lock, so that ordinary errors of two threads corrupt the heap.
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
    if (newOwner == owner)
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
    return new Proxy(d->serviceName, path, interfaceName.toLatin1(), d->connection, this);
}

} // namespace libtavelorn
