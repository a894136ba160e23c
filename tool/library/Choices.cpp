// SPDX-License-Identifier: MIT

#include "library/Choices.h"

#include "library/Lookup.h"
#include "library/Value.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <algorithm>

namespace tool {

namespace {

std::optional<int> bound(const QString &operation, const QString &name, const Catalogue &catalogue,
                         Session *session)
{
    const Reply reply = session->call(operationFor(catalogue, operation, 1), {name});
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

Choices choicesOf(const Setting &setting, const Catalogue &catalogue, Session *session)
{
    Choices choices;
    const ValueType &type = setting.valueType();
    if (type.name == QLatin1String("double") || type.name == QLatin1String("int")) {
        choices.minimum = bound(QStringLiteral("getMinValue"), setting.name, catalogue, session);
        if (choices.minimum)
            choices.maximum =
                bound(QStringLiteral("getMaxValue"), setting.name, catalogue, session);
    }
    if (type.enumeration.isValid()) {
        for (const QString &key : type.enumeration.keys())
            choices.values.insert(key, *type.enumeration.value(key));
        return choices;
    }
    const Operation &lists = operationFor(catalogue, QStringLiteral("getValueList"), 1);
    const std::optional<int> row = lists.parameters[0].type.enumeration.value(setting.name);
    if (!row || type.name != QLatin1String("int"))
        return choices;
    const Reply reply = session->call(lists, {*row});
    if (reply.error)
        return choices;
    for (const QJsonValue choice : toJson(reply.value, lists.result).toArray()) {
        const QJsonValue key = choice[QStringLiteral("key")];
        const QJsonValue value = choice[QStringLiteral("value")];
        if (key.isString() && value.isDouble())
            choices.values.insert(key.toString(), value.toInt());
    }
    return choices;
}

} // namespace tool
