// SPDX-License-Identifier: MIT

#include "common/JsonText.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

namespace tool {

QString toText(const QJsonValue &value)
{
    if (value.isString())
        return value.toString();
    if (value.isNull())
        return QStringLiteral("(not shown)");
    // A document is an array or an object.
    QJsonArray array;
    array.append(value);
    const QByteArray json = QJsonDocument(array).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(json.mid(1, json.size() - 2));
}

QJsonObject errorToJson(ExitStatus status, const QString &message)
{
    return {{QStringLiteral("kind"), kindOf(status)}, {QStringLiteral("message"), message}};
}

} // namespace tool
