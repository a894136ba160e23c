// SPDX-License-Identifier: MIT

#include "WireTypes.h"

#include <libconfigurationmanager/lcm.h>

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMetaType>

namespace lcm {

QDBusArgument &operator<<(QDBusArgument &argument, const PropList &list)
{
    return argument << list.maps;
}

// Qt's own reader of a vector would clear it first.
const QDBusArgument &operator>>(const QDBusArgument &argument, PropList &list)
{
    argument.beginArray();
    while (!argument.atEnd()) {
        QVariantMap map;
        argument >> map;
        list.maps.append(map);
    }
    argument.endArray();
    return argument;
}

} // namespace lcm

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
