// SPDX-License-Identifier: MIT

#include "library/Choices.h"

#include "library/Lookup.h"
#include "library/Value.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <algorithm>

namespace tool {

namespace {

std::optional<int> boundOf(const Reply &reply)
{
    return reply.error ? std::nullopt : std::optional(reply.value.toInt());
}

} // namespace

QString Choices::text() const
{
    if (!values.isEmpty()) {
        QStringList keys = values.keys();
        std::stable_sort(keys.begin(), keys.end(),
                         [&](const QString &a, const QString &b) { return values[a] < values[b]; });
        return keys.join(QStringLiteral(", "));
    }
    if (minimum && maximum)
        return QStringLiteral("%1 to %2").arg(*minimum).arg(*maximum);
    return {};
}

ChoicesQuestion::ChoicesQuestion(const Setting &setting, const Catalogue &catalogue,
                                 Session &session)
    : m_session(session),
      m_type(setting.valueType()),
      m_lists(operationFor(catalogue, QStringLiteral("getValueList"), 1))
{
    const auto begin = [&](const QString &operation) {
        return session.begin(operationFor(catalogue, operation, 1), {setting.name});
    };
    const bool isInt = m_type.name == QLatin1String("int");
    if (isInt || m_type.name == QLatin1String("double")) {
        m_minimum = begin(QStringLiteral("getMinValue"));
        m_maximum = begin(QStringLiteral("getMaxValue"));
    }
    const std::optional<int> row = m_lists.parameters[0].type.enumeration.value(setting.name);
    if (row && isInt && !m_type.enumeration.isValid())
        m_list = session.begin(m_lists, {*row});
}

Choices ChoicesQuestion::answer()
{
    Choices choices;
    if (m_minimum) {
        choices.minimum = boundOf(m_session.finish(*m_minimum));
        choices.maximum = boundOf(m_session.finish(*m_maximum));
    }
    for (const QString &key : m_type.enumeration.keys())
        choices.values.insert(key, *m_type.enumeration.value(key));
    const Reply reply = m_list ? m_session.finish(*m_list) : Reply();
    for (const QJsonValue choice : toJson(reply.value, m_lists.result).toArray()) {
        const QJsonValue key = choice[QStringLiteral("key")];
        const QJsonValue value = choice[QStringLiteral("value")];
        if (key.isString() && value.isDouble())
            choices.values.insert(key.toString(), value.toInt());
    }
    return choices;
}

} // namespace tool
