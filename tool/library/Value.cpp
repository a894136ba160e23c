// SPDX-License-Identifier: MIT

#include "library/Value.h"
#include "common/JsonText.h"

#include "common/Failure.h"
#include "common/Suggestion.h"

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusSignature>
#include <QtDBus/QDBusVariant>

#include <cmath>
#include <limits>

namespace tool {

namespace {

/// What a value of the type is called.
QString nameOf(const ValueType &type)
{
    if (type.enumeration.isValid())
        return QStringLiteral("a key of %1 or a 32-bit integer").arg(type.enumeration.name());
    if (type.name == QLatin1String("int"))
        return QStringLiteral("a 32-bit integer");
    if (type.name == QLatin1String("double"))
        return QStringLiteral("a number");
    if (type.name == QLatin1String("bool"))
        return QStringLiteral("true or false");
    if (type.name == QLatin1String("QString"))
        return QStringLiteral("a text");
    return QStringLiteral("a value of type %1").arg(type.name);
}

[[noreturn]] void throwUnexpected(const QString &text, const QString &expected)
{
    throw Failure(ExitStatus::Usage, QStringLiteral("'%1' is not %2").arg(text, expected));
}

int intFromText(const QString &text, const Enumeration &enumeration)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber)
        return number;
    const QStringList scoped = text.split(QStringLiteral("::"));
    const bool isScoped = scoped.size() == 2 && Enumeration(scoped[0]).isValid();
    const Enumeration meant = isScoped ? Enumeration(scoped[0]) : enumeration;
    const QString key = isScoped ? scoped[1] : text;
    if (const std::optional<int> value = meant.value(key))
        return *value;
    if (!meant.isValid())
        throwUnexpected(text, QStringLiteral("a 32-bit integer"));
    throwUnexpected(key, QStringLiteral("a key of %1 or a 32-bit integer%2")
                             .arg(meant.name(), didYouMean(key, meant.keys())));
}

double doubleFromText(const QString &text)
{
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    if (!isNumber)
        throwUnexpected(text, QStringLiteral("a number"));
    return number;
}

bool boolFromText(const QString &text)
{
    static const QStringList yes{QStringLiteral("true"), QStringLiteral("1"), QStringLiteral("yes"),
                                 QStringLiteral("on")};
    static const QStringList no{QStringLiteral("false"), QStringLiteral("0"), QStringLiteral("no"),
                                QStringLiteral("off")};
    if (yes.contains(text))
        return true;
    if (no.contains(text))
        return false;
    throwUnexpected(text, QStringLiteral("true or false"));
}

/// JSON can spell what D-Bus cannot send.
QString sendableText(const QString &text)
{
    if (text.contains(QChar(QChar::Null)) || !text.isValidUtf16()) {
        throw Failure(ExitStatus::Usage,
                      QStringLiteral("a text with a NUL or an unpaired surrogate cannot be sent"));
    }
    return text;
}

QVariant mapFromJson(const QJsonObject &object);

/// A value in a map. JSON does not tell integers from other numbers, but D-Bus does.
QVariant mapValue(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::String:
        return sendableText(value.toString());
    case QJsonValue::Array: {
        QVariantList list;
        for (const auto &element : value.toArray())
            list.append(mapValue(element));
        return list;
    }
    case QJsonValue::Object:
        return mapFromJson(value.toObject());
    case QJsonValue::Double: {
        const double number = value.toDouble();
        const bool isInt =
            std::trunc(number) == number && std::abs(number) <= std::numeric_limits<int>::max();
        return isInt ? QVariant(int(number)) : QVariant(number);
    }
    case QJsonValue::Bool:
        return value.toBool();
    default:
        throw Failure(ExitStatus::Usage, QStringLiteral("null cannot be sent"));
    }
}

QVariant mapFromJson(const QJsonObject &object)
{
    QVariantMap map;
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        try {
            map.insert(sendableText(entry.key()), mapValue(entry.value()));
        } catch (const Failure &failure) {
            throw Failure(failure.status(), about(entry.key(), failure.message()));
        }
    }
    return map;
}

QJsonValue plainToJson(const QVariant &value);

QJsonArray arrayToJson(const QVariantList &list)
{
    QJsonArray array;
    for (const QVariant &element : list)
        array.append(plainToJson(element));
    return array;
}

QJsonObject mapToJson(const QVariantMap &map)
{
    QJsonObject object;
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        object.insert(entry.key(), plainToJson(entry.value()));
    return object;
}

/// A value that the library has passed on unread because it is compound.
QJsonValue argumentToJson(const QDBusArgument &argument)
{
    switch (argument.currentType()) {
    case QDBusArgument::ArrayType:
    case QDBusArgument::StructureType: {
        const bool isArray = argument.currentType() == QDBusArgument::ArrayType;
        QJsonArray array;
        isArray ? argument.beginArray() : argument.beginStructure();
        while (!argument.atEnd())
            array.append(plainToJson(argument.asVariant()));
        isArray ? argument.endArray() : argument.endStructure();
        return array;
    }
    case QDBusArgument::MapType: {
        QJsonObject object;
        argument.beginMap();
        while (!argument.atEnd()) {
            argument.beginMapEntry();
            const QString key = argument.asVariant().toString();
            object.insert(key, plainToJson(argument.asVariant()));
            argument.endMapEntry();
        }
        argument.endMap();
        return object;
    }
    default:
        return plainToJson(argument.asVariant());
    }
}

QJsonArray configurationToJson(const ConfigurationList &configuration)
{
    QJsonArray array;
    for (const auto &[name, properties] : configuration) {
        array.append(QJsonObject{{QStringLiteral("name"), name},
                                 {QStringLiteral("properties"), mapToJson(properties)}});
    }
    return array;
}

QJsonArray propListToJson(const lcm::PropList &list)
{
    QJsonArray array;
    for (const QVariantMap &map : list)
        array.append(mapToJson(map));
    return array;
}

QJsonValue plainToJson(const QVariant &value)
{
    const int type = value.userType();
    if (type == qMetaTypeId<QDBusArgument>())
        return argumentToJson(value.value<QDBusArgument>());
    if (type == qMetaTypeId<QDBusVariant>())
        return plainToJson(value.value<QDBusVariant>().variant());
    if (type == qMetaTypeId<QDBusObjectPath>())
        return value.value<QDBusObjectPath>().path();
    if (type == qMetaTypeId<QDBusSignature>())
        return value.value<QDBusSignature>().signature();
    if (type == qMetaTypeId<ConfigurationList>())
        return configurationToJson(value.value<ConfigurationList>());
    if (type == qMetaTypeId<lcm::PropList>())
        return propListToJson(value.value<lcm::PropList>());
    if (type == QMetaType::QVariantMap)
        return mapToJson(value.toMap());
    if (type == QMetaType::QVariantList || type == QMetaType::QStringList)
        return arrayToJson(value.toList());
    // Narrow numbers, which QJsonValue would turn into text.
    if (type == QMetaType::UChar || type == QMetaType::Short || type == QMetaType::UShort)
        return value.toInt();
    return QJsonValue::fromVariant(value);
}

} // namespace

QVariant argumentFromText(const QString &text, const ValueType &type)
{
    if (type.name == QLatin1String("int"))
        return intFromText(text, type.enumeration);
    if (type.name == QLatin1String("double"))
        return doubleFromText(text);
    if (type.name == QLatin1String("bool"))
        return boolFromText(text);
    if (type.name == QLatin1String("QString"))
        return sendableText(text);
    if (type.name == QLatin1String("QVariantMap")) {
        const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
        // The text is not repeated: there may be a secret in it.
        if (!document.isObject())
            throw Failure(ExitStatus::Usage, QStringLiteral("not a JSON object"));
        return mapFromJson(document.object());
    }
    throw Failure(ExitStatus::Usage,
                  QStringLiteral("a value of type %1 cannot be given here").arg(type.name));
}

QVariant argumentFromJson(const QJsonValue &value, const ValueType &type)
{
    const bool isText = type.name == QLatin1String("QString");
    const bool mayBeText = isText || type.enumeration.isValid();
    if (value.isString() ? mayBeText : !isText && !value.isNull())
        return argumentFromText(toText(value), type);
    const QString text = value.isNull() ? QStringLiteral("null") : toText(value);
    throwUnexpected(text, nameOf(type));
}

QJsonValue toJson(const QVariant &value, const ValueType &type)
{
    if (!type.enumeration.isValid())
        return plainToJson(value);
    const int number = value.toInt();
    const std::optional<QString> key = type.enumeration.key(number);
    return key ? QJsonValue(*key) : QJsonValue(number);
}

} // namespace tool
