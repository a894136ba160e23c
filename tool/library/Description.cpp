// SPDX-License-Identifier: MIT

#include "library/Description.h"

#include <QtCore/QJsonArray>

namespace tool {

namespace {

void insertType(QJsonObject *object, const ValueType &type)
{
    object->insert(QStringLiteral("type"), type.name);
    if (type.enumeration.isValid())
        object->insert(QStringLiteral("enumeration"), type.enumeration.name());
}

} // namespace

QJsonObject describe(const Operation &operation)
{
    QJsonArray parameters;
    for (int i = 0; i < operation.parameters.size(); ++i) {
        const Parameter &parameter = operation.parameters[i];
        QJsonObject object{{QStringLiteral("name"), parameter.name},
                           {QStringLiteral("optional"), i >= operation.requiredParameters}};
        insertType(&object, parameter.type);
        parameters.append(object);
    }
    QJsonObject result;
    insertType(&result, operation.result);
    return {{QStringLiteral("name"), operation.name},
            {QStringLiteral("signature"), operation.signature()},
            {QStringLiteral("group"), operation.family},
            {QStringLiteral("meaning"), operation.meaning},
            {QStringLiteral("remoteMethod"), operation.remoteMethod},
            {QStringLiteral("parameters"), parameters},
            {QStringLiteral("result"), result}};
}

} // namespace tool
