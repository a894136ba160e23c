// SPDX-License-Identifier: MIT

#include <libconfigurationmanager/ConfigurationManager.h>

#include "ConfigurationManager_p.h"

namespace libconfigurationmanager {
namespace detail {

ConfigurationManager::ConfigurationManager(QObject *parent)
    : QObject(parent), d(new ConfigurationManagerPrivate(this, nullptr))
{
}

// The private object stays alive until the process ends: other threads may be in its operations.
ConfigurationManager::~ConfigurationManager() = default;

bool ConfigurationManager::isConnected() const
{
    return d->isConnected();
}

void ConfigurationManager::setCheckConnection(bool check)
{
    d->setCheckConnection(check);
}

void ConfigurationManager::setCatalogsCollectionId(const QString &id)
{
    d->setCatalogsCollectionId(id);
}

} // namespace detail
} // namespace libconfigurationmanager
