// SPDX-License-Identifier: MIT

#include "bus/CallRecord.h"

#include "state/RecentEntries.h"

#include <contract/Interface.h>

namespace simulator {

namespace {

QString withheld()
{
    return QStringLiteral("(withheld)");
}

} // namespace

CallRecord::CallRecord(const contract::Interface &interface) : m_interface(interface) {}

bool CallRecord::isSecret(const QString &setting) const
{
    const contract::Setting *known = m_interface.setting(setting);
    return known && known->isSecret();
}

void CallRecord::add(const QString &name, const QVariantList &arguments, const QString &outcome)
{
    QVariantList shown = arguments;
    const contract::Method *method = m_interface.method(name);
    for (int i = 0; i < shown.size(); ++i) {
        const bool isValue =
            method && method->isSecret && i == method->indexOf(contract::Role::Value);
        if (isValue)
            shown[i] = withheld();
        // A sequence of settings.
        if (shown.at(i).userType() != QMetaType::QVariantMap)
            continue;
        QVariantMap map = shown.at(i).toMap();
        for (auto member = map.begin(); member != map.end(); ++member) {
            if (isSecret(member.key()))
                *member = withheld();
        }
        shown[i] = map;
    }
    appendRecent(m_calls, {name, shown, outcome.isEmpty() ? QStringLiteral("ok") : outcome});
}

QVector<RecordedCall> CallRecord::calls(const QString &method) const
{
    QVector<RecordedCall> calls;
    for (const RecordedCall &call : m_calls) {
        if (method.isEmpty() || call.method == method)
            calls.append(call);
    }
    return calls;
}

} // namespace simulator
