// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_BUS_CALLRECORD_H
#define SIMULATOR_BUS_CALLRECORD_H

#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/QVector>

namespace contract {
class Interface;
} // namespace contract

namespace simulator {

struct RecordedCall
{
    QString method;
    QVariantList arguments; ///< of what is secret, only that it was there
    QString outcome;        ///< as in ServiceLog
};

/// The last 1000 calls that the service has got, for a test to look at.
class CallRecord
{
public:
    explicit CallRecord(const contract::Interface &interface);

    void add(const QString &name, const QVariantList &arguments, const QString &outcome);
    void clear() { m_calls.clear(); }

    /// The oldest first; of one method, or of all if the name is empty.
    QVector<RecordedCall> calls(const QString &method = {}) const;

private:
    bool isSecret(const QString &setting) const;

    const contract::Interface &m_interface;
    QVector<RecordedCall> m_calls;
};

} // namespace simulator

#endif
