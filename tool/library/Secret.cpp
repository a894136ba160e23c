// SPDX-License-Identifier: MIT

#include "library/Secret.h"

#include <contract/Interface.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

namespace tool {

bool isSecret(const QString &name)
{
    if (const contract::Setting *known = contract::Interface::configurationManager().setting(name))
        return known->isSecret();
    // The service's own names in a map, and names that somebody has added to a file.
    return name.contains(QLatin1String("passphrase"), Qt::CaseInsensitive) ||
           name.contains(QLatin1String("password"), Qt::CaseInsensitive);
}

QJsonValue withoutSecrets(const QJsonValue &value)
{
    if (value.isArray()) {
        QJsonArray array;
        for (const auto &element : value.toArray())
            array.append(withoutSecrets(element));
        return array;
    }
    if (value.isObject()) {
        const QJsonObject original = value.toObject();
        QJsonObject object;
        for (auto entry = original.begin(); entry != original.end(); ++entry) {
            object.insert(entry.key(),
                          isSecret(entry.key()) ? QJsonValue() : withoutSecrets(entry.value()));
        }
        return object;
    }
    return value;
}

} // namespace tool
