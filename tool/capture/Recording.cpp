// SPDX-License-Identifier: MIT

#include "capture/Recording.h"

#include "library/Value.h"

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QHash>
#include <QtCore/QJsonObject>
#include <QtDBus/QDBusArgument>

#include <cmath>
#include <optional>

namespace tool {

namespace {

using IsLeftOut = std::function<bool(const QString &)>;

/// The D-Bus types of what maps hold, but for maps.
QString plainTypeOf(int metaType)
{
    static const QHash<int, QString> types{
        {QMetaType::Bool, QStringLiteral("b")},        {QMetaType::UChar, QStringLiteral("y")},
        {QMetaType::Short, QStringLiteral("n")},       {QMetaType::UShort, QStringLiteral("q")},
        {QMetaType::Int, QStringLiteral("i")},         {QMetaType::UInt, QStringLiteral("u")},
        {QMetaType::LongLong, QStringLiteral("x")},    {QMetaType::ULongLong, QStringLiteral("t")},
        {QMetaType::Double, QStringLiteral("d")},      {QMetaType::QString, QStringLiteral("s")},
        {QMetaType::QStringList, QStringLiteral("as")}};
    return types.value(metaType);
}

bool isFinite(const QVariant &value)
{
    return value.userType() != QMetaType::Double || std::isfinite(value.toDouble());
}

std::optional<QJsonObject> typedMap(const QVariantMap &map, const IsLeftOut &isLeftOut);

/// A value with its D-Bus type, such as {"i": 5}, since JSON does not tell numbers apart. None if
/// it is of a type that profiles do not know.
std::optional<QJsonObject> typed(QVariant value, const IsLeftOut &isLeftOut)
{
    const QString mapType = QStringLiteral("a{sv}");
    if (value.userType() == qMetaTypeId<QDBusArgument>()) {
        const auto argument = value.value<QDBusArgument>();
        if (argument.currentSignature() != mapType)
            return {};
        value = qdbus_cast<QVariantMap>(argument);
    }
    if (value.userType() == QMetaType::QVariantMap) {
        const auto map = typedMap(value.toMap(), isLeftOut);
        return map ? std::optional(QJsonObject{{mapType, *map}}) : std::nullopt;
    }
    const QString type = plainTypeOf(value.userType());
    if (type.isEmpty() || !isFinite(value))
        return {};
    // Which is not a number to QJsonValue.
    if (value.userType() == QMetaType::UChar || value.userType() == QMetaType::Short ||
        value.userType() == QMetaType::UShort)
        value.convert(QMetaType::Int);
    return QJsonObject{{type, QJsonValue::fromVariant(value)}};
}

std::optional<QJsonObject> typedMap(const QVariantMap &map, const IsLeftOut &isLeftOut)
{
    QJsonObject object;
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        if (isLeftOut(entry.key()))
            continue;
        const auto value = typed(*entry, isLeftOut);
        if (!value)
            return {};
        object.insert(entry.key(), *value);
    }
    return object;
}

/// None if profiles cannot have it.
std::optional<QJsonValue> answerToJson(const QVariant &answer, const ValueType &type,
                                       const IsLeftOut &isLeftOut)
{
    if (answer.userType() == qMetaTypeId<lcm::PropList>()) {
        QJsonArray list;
        for (const QVariantMap &element : answer.value<lcm::PropList>()) {
            const auto map = typedMap(element, isLeftOut);
            if (!map)
                return {};
            list.append(*map);
        }
        return list;
    }
    if (answer.userType() == QMetaType::QVariantMap) {
        const auto map = typedMap(answer.toMap(), isLeftOut);
        return map ? std::optional<QJsonValue>(*map) : std::nullopt;
    }
    if (!isFinite(answer))
        return {};
    return profileValue(answer, type);
}

} // namespace

QJsonValue profileValue(const QVariant &value, const ValueType &type)
{
    const QJsonValue json = toJson(value, type);
    return type.enumeration.isValid() && json.isString()
               ? QJsonValue(type.enumeration.name() + QLatin1Char('.') + json.toString())
               : json;
}

Recording::Recording(std::function<bool(const QString &)> isLeftOut)
    : m_isLeftOut(std::move(isLeftOut))
{
}

void Recording::addAnswer(const Operation &operation, const QVariantList &arguments,
                          const QVariant &answer)
{
    const auto json = answerToJson(answer, operation.result, m_isLeftOut);
    if (json)
        add(operation, arguments, QStringLiteral("answer"), *json);
    else
        addError(operation, arguments,
                 QStringLiteral("the answer is of a kind that a profile cannot have"));
}

void Recording::addError(const Operation &operation, const QVariantList &arguments,
                         const QString &reason)
{
    add(operation, arguments, QStringLiteral("error"), reason);
    QStringList texts;
    for (const QVariant &argument : arguments)
        texts += argument.toString();
    m_unanswered.append({operation.name, texts, reason});
}

void Recording::add(const Operation &operation, const QVariantList &arguments,
                    const QString &member, const QJsonValue &value)
{
    m_calls.append(
        QJsonObject{{QStringLiteral("method"), operation.remoteMethod},
                    {QStringLiteral("arguments"), QJsonArray::fromVariantList(arguments)},
                    {member, value}});
}

} // namespace tool
