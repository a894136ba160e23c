// SPDX-License-Identifier: MIT

#ifndef TESTING_NAMEDCALL_H
#define TESTING_NAMEDCALL_H

#include <QtCore/QMetaMethod>
#include <QtCore/QObject>
#include <QtCore/QVariant>
#include <QtCore/QVector>

/// The slots that the class declares itself: every operation and every default-argument variant.
QVector<QMetaMethod> slotsOf(const QMetaObject &metaObject);

/// Arguments for a slot, different from each other and from those of the next number.
QVariantList sampleArguments(const QMetaMethod &slot, int number = 0);

/// Calls a slot by its name and returns its result; invalid for void, an int for an enumeration.
QVariant callByName(QObject &object, const QMetaMethod &slot, const QVariantList &arguments);

#endif
