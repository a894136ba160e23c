// SPDX-License-Identifier: MIT

#include "library/Operation.h"

#include <QtCore/QMetaType>

#include <algorithm>

namespace tool {

int ValueType::metaType() const
{
    return enumeration.isValid() ? QMetaType::Int : QMetaType::type(name.toLatin1().constData());
}

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

QVariantList Operation::sent(QVariantList arguments, const QString &collectionId) const
{
    for (int i = arguments.size(); i < parameters.size(); ++i)
        arguments.append(parameters[i].defaultValue);
    if (collectionIdAt >= 0)
        arguments.insert(collectionIdAt, collectionId);
    return arguments;
}

QString Operation::bareName() const
{
    const bool hasPrefix =
        name.startsWith(QLatin1String("get")) || name.startsWith(QLatin1String("set"));
    return hasPrefix ? name.mid(3) : name;
}

const Parameter *Operation::parameterOf(contract::Role role) const
{
    const auto *const parameter =
        std::find_if(parameters.begin(), parameters.end(),
                     [&](const Parameter &each) { return each.role == role; });
    return parameter == parameters.end() ? nullptr : &*parameter;
}

} // namespace tool
