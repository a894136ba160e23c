// SPDX-License-Identifier: MIT

#include "model/Settings.h"

#include "model/Interface.h"

#include <QtCore/QStringList>

#include <algorithm>

namespace simulator {

namespace {

QString firstArgumentOf(const Method &method, const QStringList &names)
{
    for (const Argument &argument : method.arguments) {
        if (names.contains(argument.name))
            return argument.name;
    }
    return {};
}

bool hasOtherArguments(const Method &method)
{
    const QStringList known{QStringLiteral("collectionId"), QStringLiteral("flag"),
                            valueArgument(method), keyArgument(method)};
    return std::any_of(method.arguments.begin(), method.arguments.end(),
                       [&](const Argument &argument) { return !known.contains(argument.name); });
}

bool isSetter(const Method &method)
{
    return method.name.startsWith(QLatin1String("set")) && !valueArgument(method).isEmpty() &&
           !hasOtherArguments(method);
}

bool isGetter(const Method &method)
{
    return method.name.startsWith(QLatin1String("get")) && valueArgument(method).isEmpty() &&
           !hasOtherArguments(method);
}

QString typeOf(const Method &method, const QString &name)
{
    for (const Argument &argument : method.arguments) {
        if (argument.name == name)
            return argument.type;
    }
    return {};
}

const Setting *find(const QMap<QString, Setting> &settings, const QHash<QString, QString> &names,
                    const Method &method)
{
    const auto name = names.constFind(method.name);
    return name == names.cend() ? nullptr : &*settings.constFind(*name);
}

} // namespace

QString valueArgument(const Method &method)
{
    return firstArgumentOf(method, {QStringLiteral("value"), QStringLiteral("state")});
}

QString keyArgument(const Method &method)
{
    return firstArgumentOf(method, {QStringLiteral("key"), QStringLiteral("counter")});
}

Settings::Settings(const Interface &interface)
{
    const QString collectionId = QStringLiteral("collectionId");
    for (const Method &method : interface.methods()) {
        if (!isSetter(method))
            continue;
        const QString name = method.operation.mid(3);
        m_settings.insert(name, {name, typeOf(method, valueArgument(method)), method.family,
                                 method.meaning, method.hasArgument(collectionId),
                                 !keyArgument(method).isEmpty()});
        m_writtenBy.insert(method.name, name);
    }
    for (const Method &method : interface.methods()) {
        const auto setting = m_settings.find(method.operation.mid(3));
        if (!isGetter(method) || setting == m_settings.end())
            continue;
        // What is read without a collection id has one value, even if it is written with one.
        setting->perCollection = method.hasArgument(collectionId);
        m_readBy.insert(method.name, setting->name);
    }
}

const Setting *Settings::writtenBy(const Method &method) const
{
    return find(m_settings, m_writtenBy, method);
}

const Setting *Settings::readBy(const Method &method) const
{
    return find(m_settings, m_readBy, method);
}

} // namespace simulator
