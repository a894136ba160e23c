// SPDX-License-Identifier: MIT

#include "Types.h"

#include <QtDBus/QDBusMetaType>

namespace simulator {

void registerListTypes()
{
    qDBusRegisterMetaType<MapList>();
    qDBusRegisterMetaType<NamedMapList::value_type>();
    qDBusRegisterMetaType<NamedMapList>();
    // By the name that slots have it under.
    qRegisterMetaType<MapList>("simulator::MapList");
}

int metaTypeOf(const QString &dbusType)
{
    return QDBusMetaType::signatureToType(dbusType.toLatin1());
}

} // namespace simulator
