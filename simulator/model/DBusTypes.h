// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_MODEL_DBUSTYPES_H
#define SIMULATOR_MODEL_DBUSTYPES_H

#include <QtCore/QList>
#include <QtCore/QPair>
#include <QtCore/QString>
#include <QtCore/QVariant>

namespace simulator {

using MapList = QList<QVariantMap>;                      ///< aa{sv}
using NamedMapList = QList<QPair<QString, QVariantMap>>; ///< a(sa{sv})

/// Makes the lists of maps known to Qt D-Bus.
void registerMapListTypes();

/// The meta-type id of the C++ type that stands for a setting's D-Bus type.
int metaTypeOf(const QString &dbusType);

/// The nearest whole number. From 2^31 on it is the negative one of the same 32 bits: a checksum
/// takes all of them.
int int32Of(double number);

} // namespace simulator

#endif
