// SPDX-License-Identifier: MIT

#include "library/Operation.h"

namespace tool {

namespace {

const QString getterPrefix = QStringLiteral("get");
const QString setterPrefix = QStringLiteral("set");

} // namespace

QString Operation::signature() const
{
    QStringList types;
    for (const Parameter &parameter : parameters)
        types.append(parameter.type.name);
    return QStringLiteral("%1(%2)").arg(name, types.join(QStringLiteral(", ")));
}

QString Operation::parameterList() const
{
    QString list;
    for (int i = 0; i < parameters.size(); ++i) {
        const QString separator = i == 0 ? QString() : QStringLiteral(", ");
        const QString parameter =
            QStringLiteral("%1 %2").arg(parameters[i].type.name, parameters[i].name);
        list += i < requiredParameters ? separator + parameter
                                       : QStringLiteral("[%1%2]").arg(separator, parameter);
    }
    return QStringLiteral("(%1)").arg(list);
}

bool Operation::accepts(int arguments) const
{
    return arguments >= requiredParameters && arguments <= parameters.size();
}

const QMetaMethod &Operation::form(int arguments) const
{
    return forms[parameters.size() - arguments];
}

bool Operation::isGetter() const
{
    return name.startsWith(getterPrefix);
}

bool Operation::isSetter() const
{
    return name.startsWith(setterPrefix);
}

QString Operation::settingName() const
{
    return isGetter()   ? name.mid(getterPrefix.size())
           : isSetter() ? name.mid(setterPrefix.size())
                        : QString();
}

bool Operation::isQuery() const
{
    return isGetter() || name.startsWith(QLatin1String("is")) ||
           name.startsWith(QLatin1String("has"));
}

} // namespace tool
