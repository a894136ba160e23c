// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_TYPES_H
#define SIMULATOR_TYPES_H

#include <QtCore/QList>
#include <QtCore/QPair>
#include <QtCore/QString>
#include <QtCore/QVariant>

namespace simulator {

using MapList = QList<QVariantMap>;                      ///< aa{sv}
using NamedMapList = QList<QPair<QString, QVariantMap>>; ///< a(sa{sv})

/// The meta-type id of the C++ type that stands for a D-Bus type of the interface.
int metaTypeOf(const QString &dbusType);

} // namespace simulator

#endif
