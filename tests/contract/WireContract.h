// SPDX-License-Identifier: MIT

#ifndef TESTS_CONTRACT_WIRECONTRACT_H
#define TESTS_CONTRACT_WIRECONTRACT_H

#include "RecordingService.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtCore/QVector>

/// Something that has the operations, and a way to call them.
class ContractSubject
{
public:
    struct Outcome
    {
        QVariant returned;
        /// The texts with which it failed.
        QStringList said;
    };

    ContractSubject() = default;
    virtual ~ContractSubject() = default;
    Q_DISABLE_COPY(ContractSubject)

    virtual bool isConnected() const = 0;
    virtual void setCollectionId(const QString &id) = 0;

    /// Calls the operation with sample arguments, and returns when it is over.
    virtual Outcome call(const QMetaMethod &slot, int round) = 0;
};

/// Calls each slot without the service, and three times with it; returns the lines that the lock
/// (-) and the wire (+) do not have in common.
QStringList differencesFromTheLock(ContractSubject &subject, const QVector<QMetaMethod> &methods,
                                   RecordingService &service);

#endif
