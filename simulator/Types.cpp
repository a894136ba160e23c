// SPDX-License-Identifier: MIT

#include "Types.h"

#include <QtDBus/QDBusMetaType>

namespace simulator {

int metaTypeOf(const QString &dbusType)
{
    // Qt itself looks up only the types that it knows without registration.
    static const int mapList = qDBusRegisterMetaType<MapList>();
    static const int named = qDBusRegisterMetaType<NamedMapList::value_type>();
    static const int namedMapList = qDBusRegisterMetaType<NamedMapList>();
    Q_UNUSED(named)
    const QByteArray signature = dbusType.toLatin1();
    for (const int type : {mapList, namedMapList}) {
        if (QDBusMetaType::typeToSignature(type) == signature)
            return type;
    }
    return QDBusMetaType::signatureToType(signature);
}

} // namespace simulator
