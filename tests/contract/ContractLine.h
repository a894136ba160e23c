// SPDX-License-Identifier: MIT

#ifndef TESTS_CONTRACT_CONTRACTLINE_H
#define TESTS_CONTRACT_CONTRACTLINE_H

#include "RecordingProtocol.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtCore/QVector>

/// What one call of a slot was given and led to.
struct ObservedCall
{
    QVariantList given;
    QString collectionId;
    QVector<RecordedCall> arrived;
    QVariant reply;
    QVariant returned;
    QStringList logged;
};

/// What was seen of a slot: a call without the service, and calls with it, each time with other
/// arguments and another collection id.
struct ObservedSlot
{
    QMetaMethod slot;
    QStringList notConnected;
    QVector<ObservedCall> calls;
};

/// What was seen, in the lines of the lock.
///
/// A default-argument variant gives its full form the default, and a line of its own only when it
/// differs in anything else.
QStringList contractLines(const QVector<ObservedSlot> &observed);

#endif
