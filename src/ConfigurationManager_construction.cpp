// SPDX-License-Identifier: MIT

#include "ConfigurationManager_p.h"

#include "CallInFlight.h"
#include "ServiceAddress.h"
#include "WireTypes.h"

#include <libconfigurationmanager/ConfigurationManager.h>
#include <libtavelorn/DBusService.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>
#include <QtDBus/QDBusConnection>

namespace libconfigurationmanager {
namespace detail {

ConfigurationManagerPrivate::ConfigurationManagerPrivate(ConfigurationManager *facade,
                                                         QObject *parent)
    : QObject(parent),
      q(facade),
      mutex(QMutex::Recursive),
      service(new libtavelorn::DBusService(QDBusConnection::systemBus(), serviceName, this)),
      collectionId(defaultCollectionId)
{
    // Q_ASSERT would be gone from release builds.
    if (!QCoreApplication::instance())
        qt_assert("QCoreApplication::instance()", sourceFile, __LINE__);

    connect(service, &libtavelorn::DBusService::connected, q, &ConfigurationManager::connected);
    connect(service, &libtavelorn::DBusService::disconnected, q,
            &ConfigurationManager::disconnected);
    interface = service->interface(objectPath, serviceName);
    CallInFlight::awaitAllAtExit();
    registerWireTypes();

    // It outlives the thread too, whose event loop would no longer take what the bus tells.
    QThread *const mainThread = QCoreApplication::instance()->thread();
    if (thread() != mainThread) {
        connect(
            thread(), &QThread::finished, this, [this, mainThread] { moveToThread(mainThread); },
            Qt::DirectConnection);
    }
}

void ConfigurationManagerPrivate::setCheckConnection(bool check)
{
    checkConnection = check;
}

void ConfigurationManagerPrivate::setCatalogsCollectionId(const QString &id)
{
    collectionId = id;
}

} // namespace detail
} // namespace libconfigurationmanager
