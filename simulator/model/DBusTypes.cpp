// SPDX-License-Identifier: MIT

#include "model/DBusTypes.h"

#include <QtDBus/QDBusMetaType>

#include <cmath>
#include <limits>

namespace simulator {

void registerMapListTypes()
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

int int32Of(double number)
{
    const double lowest = std::numeric_limits<qint32>::min();
    const double highest = std::numeric_limits<quint32>::max();
    return int(quint32(qint64(std::round(qBound(lowest, number, highest)))));
}

} // namespace simulator
