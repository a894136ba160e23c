// SPDX-License-Identifier: MIT

#include "methods/ParameterQueries.h"

#include "methods/Call.h"
#include "model/DBusTypes.h"
#include "model/Profile.h"
#include "model/Settings.h"
#include "state/Configuration.h"
#include "state/Refusal.h"

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QMetaEnum>

#include <algorithm>
#include <cmath>
#include <limits>

namespace simulator {

namespace {

MapList valueList(const Configuration &configuration, int row)
{
    const auto rows = QMetaEnum::fromType<lcm::EnumDetail::RowValueList>();
    const char *name = rows.valueToKey(row);
    if (!name)
        throw unknownName(QStringLiteral("there is no value list %1; they are numbered %2 to %3")
                              .arg(row)
                              .arg(rows.value(0))
                              .arg(rows.value(rows.keyCount() - 1)));
    MapList list;
    for (const Choice &choice : configuration.choices(QString::fromLatin1(name)))
        list.append({{QStringLiteral("key"), choice.key}, {QStringLiteral("value"), choice.value}});
    return list;
}

Bounds boundsOf(const Configuration &configuration, const QString &name)
{
    const Parameter &parameter = configuration.parameter(name);
    if (parameter.min)
        return configuration.bounds(name);
    const QVector<Choice> choices = configuration.choices(parameter.row);
    if (choices.isEmpty() || configuration.setting(name).type != QLatin1String("i"))
        throw invalidValue(QStringLiteral("%1 has no bounds").arg(name));
    const auto [min, max] =
        std::minmax_element(choices.begin(), choices.end(),
                            [](const Choice &a, const Choice &b) { return a.value < b.value; });
    return {double(min->value), double(max->value)};
}

QString proposition(const Configuration &configuration, const QString &name)
{
    const QString phrase = configuration.setting(name).meaning;
    const QString captured = configuration.parameter(name).proposition;
    if (!captured.isNull())
        return captured;
    return phrase.left(1).toUpper() + phrase.mid(1);
}

QString shownValue(const Configuration &configuration, const QString &name)
{
    const Parameter &parameter = configuration.parameter(name);
    const QVariant value = configuration.value(name);
    if (configuration.setting(name).secret)
        return value.toString().isEmpty() ? QStringLiteral("not set") : QStringLiteral("set");
    if (configuration.setting(name).type != QLatin1String("s")) {
        for (const Choice &choice : configuration.profile().rows().value(parameter.row)) {
            if (value.toDouble() == choice.value)
                return choice.key;
        }
    }
    return (value.toString() + QLatin1Char(' ') + parameter.unit).trimmed();
}

QString sentence(const Configuration &configuration, const QString &name)
{
    const Parameter &parameter = configuration.parameter(name);
    // It was said of the value that there was.
    if (!parameter.sentence.isNull() && configuration.value(name) == parameter.held)
        return parameter.sentence;
    return QStringLiteral("%1: %2").arg(proposition(configuration, name),
                                        shownValue(configuration, name));
}

QVariantMap descriptionOf(const Configuration &configuration, const QString &name)
{
    const Setting &setting = configuration.setting(name);
    const Parameter &parameter = configuration.parameter(name);
    QVariantMap map{{QStringLiteral("type"), setting.type},
                    {QStringLiteral("family"), setting.family},
                    {QStringLiteral("meaning"), setting.meaning},
                    {QStringLiteral("perCollection"), setting.perCollection},
                    {QStringLiteral("secret"), configuration.setting(name).secret}};
    if (parameter.initial.isValid())
        map.insert(QStringLiteral("default"), parameter.initial);
    if (parameter.min) {
        const Bounds bounds = configuration.bounds(name);
        map.insert(QStringLiteral("min"), bounds.min);
        map.insert(QStringLiteral("max"), bounds.max);
        if (bounds.min != *parameter.min)
            map.insert(QStringLiteral("modelMin"), *parameter.min);
        if (bounds.max != *parameter.max)
            map.insert(QStringLiteral("modelMax"), *parameter.max);
    }
    if (!parameter.follows.isEmpty())
        map.insert(QStringLiteral("follows"), parameter.follows);
    if (!parameter.available.isEmpty())
        map.insert(QStringLiteral("available"), parameter.available);
    if (configuration.profile().isUserSetting(name))
        map.insert(QStringLiteral("user"), true);
    if (setting.type == QLatin1String("d"))
        map.insert(QStringLiteral("precision"), parameter.precision);
    if (parameter.maxLength)
        map.insert(QStringLiteral("maxLength"), *parameter.maxLength);
    if (!parameter.unit.isEmpty())
        map.insert(QStringLiteral("unit"), parameter.unit);
    if (!parameter.row.isEmpty())
        map.insert(QStringLiteral("row"), parameter.row);
    if (!parameter.below.isEmpty())
        map.insert(QStringLiteral("below"), parameter.below);
    return map;
}

QVariantMap descriptionOf(const Cell &cell)
{
    return {{QStringLiteral("cellToCell"), cell.cellToCell},
            {QStringLiteral("horizontal"), cell.horizontalDotToDot},
            {QStringLiteral("vertical"), cell.verticalDotToDot},
            {QStringLiteral("lineToLine"), cell.lineToLine},
            {QStringLiteral("interline"), cell.interline}};
}

QVariantMap tableMetadata(const Configuration &configuration, const QString &table,
                          const QString &name)
{
    const Profile &profile = configuration.profile();
    const auto require = [&](bool isThere, const char *kind) {
        if (!isThere)
            throw unknownName(
                QStringLiteral("there is no %1 \"%2\"").arg(QLatin1String(kind), name));
    };
    if (table == QLatin1String("settings"))
        return descriptionOf(configuration, name);
    if (table == QLatin1String("papers")) {
        require(profile.papers().contains(name), "paper");
        return profile.papers().value(name);
    }
    if (table == QLatin1String("cells")) {
        require(profile.cells().contains(name), "braille distance");
        return descriptionOf(profile.cells().value(name));
    }
    if (table == QLatin1String("lineSpacings")) {
        require(profile.lineSpacings().contains(name), "line spacing");
        return {{QStringLiteral("factor"), profile.lineSpacings().value(name)}};
    }
    if (table == QLatin1String("page")) {
        require(name == QLatin1String("unprintable"), "property of the page");
        return {{QStringLiteral("width"), profile.unprintableWidth()},
                {QStringLiteral("length"), profile.unprintableLength()}};
    }
    throw unknownName(QStringLiteral("there is no table \"%1\"; there are: cells, lineSpacings, "
                                     "page, papers, settings")
                          .arg(table));
}

QVariantMap valuesOf(const Configuration &configuration, const QStringList &names,
                     const QString &collection)
{
    QVariantMap map;
    for (const QString &name : names)
        map.insert(name, configuration.value(name, collection));
    return map;
}

QVariantMap volumeLimits(const Configuration &configuration)
{
    const QString name = QStringLiteral("VolumeFineAdjustment");
    const Bounds range = boundsOf(configuration, name);
    return {{QStringLiteral("min"), int(range.min)},
            {QStringLiteral("max"), int(range.max)},
            {QStringLiteral("default"), configuration.parameter(name).initial}};
}

int integerValue(const Configuration &configuration, const Call &call)
{
    const QString name = call.text(0);
    configuration.requireInteger(name);
    return configuration.value(name, call.collectionId()).toInt();
}

double number(const Configuration &configuration, const Call &call)
{
    const QVariant value = configuration.value(call.text(0), call.collectionId());
    if (value.userType() == QMetaType::QString)
        throw invalidValue(QStringLiteral("%1 is not a number").arg(call.text(0)));
    return value.toDouble();
}

QString choiceKey(const Configuration &configuration, const QString &name, int position)
{
    const QVector<Choice> choices = configuration.choices(configuration.parameter(name).row);
    if (position < 0 || position >= choices.size())
        throw invalidArguments(
            QStringLiteral("%1 has %2 choices, numbered from 0; there is no choice %3")
                .arg(name)
                .arg(choices.size())
                .arg(position));
    return choices.at(position).key;
}

} // namespace

MethodTable parameterQueries(const Configuration &c)
{
    return {
        {QStringLiteral("getValueList"),
         [&c](const Call &call) { return QVariant::fromValue(valueList(c, call.number(0))); }},
        {QStringLiteral("getTableMetadata"),
         [&c](const Call &call) { return tableMetadata(c, call.text(0), call.text(1)); }},
        {QStringLiteral("getTempProperties"),
         [&c](const Call &call) {
             return valuesOf(c, c.profile().temporaryProperties(), call.collectionId());
         }},
        {QStringLiteral("getLayoutParameters"),
         [&c](const Call &call) {
             return valuesOf(c, c.profile().layoutParameters(), call.collectionId());
         }},
        {QStringLiteral("getVolumeFineAdjustmentLimits"),
         [&c](const Call &) { return volumeLimits(c); }},
        {QStringLiteral("getProposition"),
         [&c](const Call &call) { return proposition(c, call.text(0)); }},
        {QStringLiteral("getValueSentence"),
         [&c](const Call &call) { return sentence(c, call.text(0)); }},
        // Whole numbers that enclose the bounds, which the models have as such.
        {QStringLiteral("getMinValue"),
         [&c](const Call &call) { return int(std::floor(boundsOf(c, call.text(0)).min)); }},
        {QStringLiteral("getMaxValue"),
         [&c](const Call &call) {
             const double whole = std::ceil(boundsOf(c, call.text(0)).max);
             return int(std::min(whole, double(std::numeric_limits<int>::max())));
         }},
        {QStringLiteral("getPrecision"),
         [&c](const Call &call) { return c.parameter(call.text(0)).precision; }},
        {QStringLiteral("getIntValue"), [&c](const Call &call) { return integerValue(c, call); }},
        {QStringLiteral("getIntDeltaValue"),
         [&c](const Call &call) {
             return integerValue(c, call) -
                    c.initialValue(call.text(0), call.collectionId()).toInt();
         }},
        {QStringLiteral("getParamIntValue"),
         [&c](const Call &call) { return int32Of(number(c, call)); }},
        {QStringLiteral("getParamFloatValue"), [&c](const Call &call) { return number(c, call); }},
        {QStringLiteral("returnDocSettingKey"),
         [&c](const Call &call) { return choiceKey(c, call.text(0), call.number(1)); }},
    };
}

} // namespace simulator
