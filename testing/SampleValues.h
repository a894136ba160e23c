// SPDX-License-Identifier: MIT

#ifndef TESTING_SAMPLEVALUES_H
#define TESTING_SAMPLEVALUES_H

#include <QtCore/QByteArray>
#include <QtCore/QVariant>

#include <type_traits>

// Values of the types of the operations, which are named as the meta-object names them.

/// A value that differs from the default, and from number to number (a bool: odd from even).
QVariant sampleValue(const QByteArray &typeName, int number);

/// What an operation returns that fails; invalid for void. An enumeration is an int.
QVariant defaultValue(const QByteArray &typeName);

/// The value in a form that compares by content: the compound types as lists of maps.
QVariant plain(const QVariant &value);

template<typename T>
QVariant plain(const T &value)
{
    if constexpr (std::is_enum_v<T>)
        return int(value);
    else
        return plain(QVariant::fromValue(value));
}

#endif
