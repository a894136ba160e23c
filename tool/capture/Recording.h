// SPDX-License-Identifier: MIT

#ifndef TOOL_CAPTURE_RECORDING_H
#define TOOL_CAPTURE_RECORDING_H

#include "library/Operation.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonValue>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <functional>

namespace tool {

/// A value as the simulator's profiles have it: an enumeration's as "Enumeration.Key".
QJsonValue profileValue(const QVariant &value, const ValueType &type);

/// The calls whose answers the other parts of a profile cannot tell.
class Recording
{
public:
    /// Why the service has not answered a call.
    struct Unanswered
    {
        QString operation;
        QStringList arguments;
        QString reason;
    };

    /// `isLeftOut` says of a name in a map whether its value is to be left out.
    explicit Recording(std::function<bool(const QString &)> isLeftOut);

    void addAnswer(const Operation &operation, const QVariantList &arguments,
                   const QVariant &answer);
    void addError(const Operation &operation, const QVariantList &arguments, const QString &reason);

    const QJsonArray &toJson() const { return m_calls; }
    const QVector<Unanswered> &unanswered() const { return m_unanswered; }

private:
    void add(const Operation &operation, const QVariantList &arguments, const QString &member,
             const QJsonValue &value);

    const std::function<bool(const QString &)> m_isLeftOut;
    QJsonArray m_calls;
    QVector<Unanswered> m_unanswered;
};

} // namespace tool

#endif
