// SPDX-License-Identifier: MIT

#include "SampleValues.h"

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QHash>
#include <QtDBus/QDBusArgument>

QVariant sampleValue(const QByteArray &typeName, int number)
{
    const QString text = QStringLiteral("sample %1").arg(number);
    const QVariantMap map{{QStringLiteral("number"), number}, {QStringLiteral("text"), text}};
    if (typeName == "void")
        return {};
    if (typeName == "bool")
        return number % 2 == 0;
    if (typeName == "double")
        return number + 0.25;
    if (typeName == "QString")
        return text;
    if (typeName == "QVariantMap")
        return map;
    if (typeName == "ConfigurationList")
        return QVariant::fromValue(ConfigurationList{{text, map}, {QString(), QVariantMap()}});
    if (typeName == "lcm::PropList")
        return QVariant::fromValue(lcm::PropList{{map, QVariantMap()}});
    return 1000 + number;
}

QVariant defaultValue(const QByteArray &typeName)
{
    static const QHash<QByteArray, QVariant> defaults{
        {"void", QVariant()},
        {"int", 0},
        {"bool", false},
        {"double", 0.0},
        {"QString", QString()},
        {"QVariantMap", QVariantMap()},
        {"ConfigurationList", QVariant::fromValue(ConfigurationList())},
        {"lcm::PropList", QVariant::fromValue(lcm::PropList())},
        {"lcm::EmbosserType", 0},
        {"lcm::FeedType", 0},
        {"lcm::HeadType", 0},
        {"lcm::ModelMask", 0},
        {"lcm::Orientation", 0},
    };
    if (!defaults.contains(typeName))
        qFatal("No operation has had the type %s so far", typeName.constData());
    return defaults[typeName];
}

QVariant plain(const QVariant &value)
{
    QVariantList list;
    if (value.userType() == qMetaTypeId<ConfigurationList>()) {
        for (const auto &[name, map] : value.value<ConfigurationList>())
            list << QVariant(QVariantList{name, map});
        return list;
    }
    if (value.userType() == qMetaTypeId<lcm::PropList>()) {
        for (const QVariantMap &map : value.value<lcm::PropList>())
            list << map;
        return list;
    }
    return value;
}
