// SPDX-License-Identifier: MIT

#include "commandline/Command.h"

namespace tool {

QString synopsis(const Command &command)
{
    QString text = QStringLiteral("embosserctl ") + command.name;
    if (!command.arguments.isEmpty())
        text += QLatin1Char(' ') + command.arguments;
    for (const Option &option : command.options)
        text += QStringLiteral(" [%1]%2").arg(
            typed(option), option.isRepeatable ? QStringLiteral("...") : QString());
    return text;
}

QString typed(const Option &option)
{
    QString name = QStringLiteral("--") + option.name;
    if (!option.shortName.isNull())
        name.prepend(QStringLiteral("-%1, ").arg(option.shortName));
    if (!option.form.isEmpty())
        name += QStringLiteral("[=%1]").arg(option.form);
    return option.valueName.isEmpty() ? name : QStringLiteral("%1 %2").arg(name, option.valueName);
}

} // namespace tool
