// SPDX-License-Identifier: MIT

#include "model/Settings.h"

#include <contract/Interface.h>

#include <QtCore/QStringList>

namespace simulator {

Settings::Settings(const contract::Interface &interface)
{
    // They are written to act at once, and nothing is there to be read.
    const QStringList commands{QStringLiteral("LayoutFromPath"), QStringLiteral("Logger")};
    for (const contract::Setting &setting : interface.settings()) {
        if (!setting.writer || commands.contains(setting.name))
            continue;
        m_settings.insert(setting.name, {setting.name, setting.type(), setting.writer->family,
                                         setting.writer->meaning, setting.isPerCollection(),
                                         setting.isKeyed(), setting.isSecret()});
    }
}

const Setting *Settings::writtenBy(const contract::Method &method) const
{
    return method.writes ? find(method.setting) : nullptr;
}

const Setting *Settings::readBy(const contract::Method &method) const
{
    return method.writes ? nullptr : find(method.setting);
}

const Setting *Settings::find(const QString &name) const
{
    const auto setting = m_settings.constFind(name);
    return setting == m_settings.cend() ? nullptr : &*setting;
}

} // namespace simulator
