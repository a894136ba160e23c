// SPDX-License-Identifier: MIT

#include "library/Choices.h"

#include "common/Failure.h"
#include "common/Suggestion.h"
#include "library/Lookup.h"
#include "library/NameSource.h"
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

QStringList Choices::keys() const
{
    QStringList keys = values.keys();
    std::stable_sort(keys.begin(), keys.end(),
                     [&](const QString &a, const QString &b) { return values[a] < values[b]; });
    return keys;
}

QString Choices::text() const
{
    if (!values.isEmpty())
        return keys().join(QStringLiteral(", "));
    if (minimum && maximum)
        return QStringLiteral("%1 to %2 %3").arg(*minimum).arg(*maximum).arg(unit).trimmed();
    return unit;
}

ChoicesQuestion::ChoicesQuestion(const Setting &setting, const Catalogue &catalogue,
                                 Session &session)
    : m_session(session),
      m_type(setting.valueType()),
      m_lists(operationFor(catalogue, QStringLiteral("getValueList"), 1)),
      m_metadata(session.begin(operationFor(catalogue, QStringLiteral("getTableMetadata"), 2),
                               {QStringLiteral("settings"), setting.name}))
{
    const auto begin = [&](const QString &operation) {
        return session.begin(operationFor(catalogue, operation, 1), {setting.name});
    };
    if (m_type.name == QLatin1String("int") || m_type.name == QLatin1String("double")) {
        m_minimum = begin(QStringLiteral("getMinValue"));
        m_maximum = begin(QStringLiteral("getMaxValue"));
    }
    const std::optional<int> row = m_lists.parameters[0].type.enumeration.value(setting.name);
    if (row && takesList())
        m_list = session.begin(m_lists, {*row});
}

/// The numbers of an enumeration have their names already.
bool ChoicesQuestion::takesList() const
{
    const bool isOfList =
        m_type.name == QLatin1String("int") || m_type.name == QLatin1String("QString");
    return isOfList && !m_type.enumeration.isValid();
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

    const QVariantMap metadata = m_session.finish(m_metadata).value.toMap();
    choices.unit = metadata.value(QStringLiteral("unit")).toString();
    const QVariant initial = metadata.value(QStringLiteral("default"));
    if (initial.isValid())
        choices.initial = toJson(initial, m_type);
    const QString row = metadata.value(QStringLiteral("row")).toString();
    const std::optional<int> list = m_lists.parameters[0].type.enumeration.value(row);
    if (list && takesList() && !m_list)
        m_list = m_session.begin(m_lists, {*list});

    const Reply reply = m_list ? m_session.finish(*m_list) : Reply();
    for (const QJsonValue choice : toJson(reply.value, m_lists.result).toArray()) {
        const QJsonValue key = choice[QStringLiteral("key")];
        const QJsonValue value = choice[QStringLiteral("value")];
        if (key.isString() && value.isDouble())
            choices.values.insert(key.toString(), value.toInt());
    }
    return choices;
}

QVariant valueFromText(const QString &text, const Setting &setting, const Catalogue &catalogue,
                       Session &session)
{
    try {
        return argumentFromText(text, setting.valueType());
    } catch (const Failure &) {
        const QMap<QString, int> values =
            ChoicesQuestion(setting, catalogue, session).answer().values;
        if (values.isEmpty() || setting.valueType().enumeration.isValid())
            throw;
        const auto value = values.find(text);
        if (value != values.end())
            return *value;
        throw Failure(ExitStatus::Usage,
                      QStringLiteral("'%1' is neither a 32-bit integer nor a key of the value list "
                                     "%2%3")
                          .arg(text, setting.name, didYouMean(text, values.keys())));
    }
}

QStringList textsOf(const Setting &setting, const Catalogue &catalogue, Session &session)
{
    if (setting.isSecret)
        return {};
    if (setting.valueType().name == QLatin1String("bool"))
        return {QStringLiteral("yes"), QStringLiteral("no")};
    return ChoicesQuestion(setting, catalogue, session).answer().keys();
}

QStringList textsOf(const Operation &operation, const Parameter &parameter,
                    const Catalogue &catalogue, Session &session)
{
    const Setting *const setting = catalogue.setting(operation.setting);
    if (parameter.role == contract::Role::Value && setting)
        return textsOf(*setting, catalogue, session);
    if (parameter.role == contract::Role::Setting)
        return catalogue.settingNames();
    if (parameter.role == contract::Role::Paper)
        return papers(catalogue, session);
    if (parameter.type.name == QLatin1String("bool"))
        return {QStringLiteral("yes"), QStringLiteral("no")};
    return parameter.type.enumeration.keys();
}

QStringList papers(const Catalogue &catalogue, Session &session)
{
    const QString name = NameSource::papers().settings.first();
    return textsOf(readableSetting(catalogue, name), catalogue, session);
}

QJsonObject toJson(const Choices &choices)
{
    QJsonObject object{{QStringLiteral("range"), choices.text()}};
    if (choices.minimum && choices.maximum) {
        object.insert(QStringLiteral("minimum"), *choices.minimum);
        object.insert(QStringLiteral("maximum"), *choices.maximum);
    }
    if (!choices.values.isEmpty()) {
        QJsonObject values;
        for (auto choice = choices.values.begin(); choice != choices.values.end(); ++choice)
            values.insert(choice.key(), choice.value());
        object.insert(QStringLiteral("choices"), values);
    }
    if (!choices.unit.isEmpty())
        object.insert(QStringLiteral("unit"), choices.unit);
    if (!choices.initial.isUndefined())
        object.insert(QStringLiteral("default"), choices.initial);
    return object;
}

} // namespace tool
