// SPDX-License-Identifier: MIT

#include "ConfigurationManager_p.h"

#include "WireTypes.h"

#include <libconfigurationmanager/ConfigurationManager.h>
#include <libtavelorn/DBusService.h>

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusConnection>

namespace libconfigurationmanager {
namespace detail {

namespace {

const QString defaultCollectionId = QStringLiteral("masterCollectionKey");
const QString objectPath = QStringLiteral("/");
const QString serviceName = QStringLiteral("com.tavelornbraille.ConfigurationManager");

} // namespace

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
    registerWireTypes();
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
