// SPDX-License-Identifier: MIT

#include <libconfigurationmanager/lcm.h>

#include <QtDBus/QDBusArgument>

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
