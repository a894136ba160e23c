// SPDX-License-Identifier: MIT

#include "WireTypes.h"

#include <libconfigurationmanager/lcm.h>

#include <QtDBus/QDBusMetaType>

namespace libconfigurationmanager {
namespace detail {

void registerWireTypes()
{
    qDBusRegisterMetaType<lcm::PropList>();
    qDBusRegisterMetaType<ConfigurationList>();
    qDBusRegisterMetaType<QPair<QString, QVariantMap>>();
}

int propListType()
{
    return qMetaTypeId<lcm::PropList>();
}

int configurationListType()
{
    return qMetaTypeId<ConfigurationList>();
}

int sectionType()
{
    return qMetaTypeId<QPair<QString, QVariantMap>>();
}

} // namespace detail
} // namespace libconfigurationmanager
