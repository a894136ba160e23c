// SPDX-License-Identifier: MIT

#include "Configuration.h"

#include "Settings.h"
#include "Store.h"
#include "Types.h"

namespace simulator {

namespace {

QString scopeOf(const Setting &setting, const QString &collection)
{
    return setting.perCollection ? QStringLiteral("collection:") + collection
                                 : QStringLiteral("device");
}

QString storedName(const Setting &setting, const QString &key)
{
    return setting.keyed ? setting.name + QLatin1Char('/') + key : setting.name;
}

} // namespace

Configuration::Configuration(const Settings &settings, Store &store)
    : m_settings(settings), m_store(store)
{
}

QVariant Configuration::value(const Setting &setting, const QString &key,
                              const QString &collection) const
{
    QVariant value = m_store.value(scopeOf(setting, collection), storedName(setting, key));
    value.convert(metaTypeOf(setting.type));
    return value;
}

void Configuration::setValue(const Setting &setting, const QString &key, const QString &collection,
                             const QVariant &value)
{
    m_store.setValue(scopeOf(setting, collection), storedName(setting, key), value);
}

} // namespace simulator
