// SPDX-License-Identifier: MIT

#include "commandline/Arguments.h"

#include "common/Failure.h"
#include "common/Suggestion.h"

#include <QtCore/QRegularExpression>

#include <algorithm>

namespace tool {

namespace {

bool isOption(const QString &argument)
{
    static const QRegularExpression option(QStringLiteral("^-[^0-9.]"));
    return option.match(argument).hasMatch();
}

[[noreturn]] void throwUnknown(const QString &option, const QVector<Option> &known)
{
    QStringList names;
    for (const Option &each : known)
        names.append(QStringLiteral("--") + each.name);
    QString hint = option.startsWith(QLatin1String("--")) ? didYouMean(option, names) : QString();
    if (hint.isEmpty())
        hint = QStringLiteral("; a value that begins with a dash stands after '--'");
    throw Failure(ExitStatus::Usage, QStringLiteral("there is no option '%1'%2").arg(option, hint));
}

class Parser
{
public:
    Parser(const QStringList &given, const QVector<Option> &known) : m_rest(given), m_known(known)
    {
    }

    Arguments parsed()
    {
        while (!m_rest.isEmpty()) {
            const QString argument = m_rest.takeFirst();
            if (argument == QLatin1String("--"))
                break;
            if (argument.startsWith(QLatin1String("--")))
                parseLong(argument);
            else if (isOption(argument))
                parseShort(argument);
            else
                m_arguments.positional.append(argument);
        }
        m_arguments.positional += m_rest;
        return m_arguments;
    }

private:
    /// "--name", "--name=value"
    void parseLong(const QString &argument)
    {
        const int equals = argument.indexOf(QLatin1Char('='));
        const QString shown = argument.left(equals);
        const Option &option =
            find(shown, [&](const Option &each) { return each.name == shown.mid(2); });
        if (!option.valueName.isEmpty()) {
            add(option, equals < 0 ? next(option, shown) : argument.mid(equals + 1));
            return;
        }
        QStringList &values = add(option);
        if (equals < 0)
            return;
        const QString value = argument.mid(equals + 1);
        if (option.form.isEmpty())
            throw Failure(ExitStatus::Usage, QStringLiteral("%1 takes no value").arg(shown));
        if (value != option.form) {
            throw Failure(
                ExitStatus::Usage,
                QStringLiteral("%1 takes no value other than '%2'").arg(shown, option.form));
        }
        values.append(value);
    }

    /// "-n", "-nvalue", several switches in one
    void parseShort(const QString &argument)
    {
        for (int i = 1; i < argument.size(); ++i) {
            const QString shown = QStringLiteral("-") + argument[i];
            const Option &option =
                find(shown, [&](const Option &each) { return each.shortName == argument[i]; });
            if (!option.valueName.isEmpty()) {
                const QString value = argument.mid(i + 1);
                add(option, value.isEmpty() ? next(option, shown) : value);
                return;
            }
            add(option);
        }
    }

    template<typename Predicate>
    const Option &find(const QString &shown, const Predicate &isMeant) const
    {
        const auto option = std::find_if(m_known.begin(), m_known.end(), isMeant);
        if (option == m_known.end())
            throwUnknown(shown, m_known);
        return *option;
    }

    QString next(const Option &option, const QString &shown)
    {
        if (!m_rest.isEmpty())
            return m_rest.takeFirst();
        throw Failure(ExitStatus::Usage,
                      QStringLiteral("%1 needs a value: %1 %2").arg(shown, option.valueName));
    }

    QStringList &add(const Option &option)
    {
        if (!m_arguments.optionNames.contains(option.name))
            m_arguments.optionNames.append(option.name);
        return m_arguments.options[option.name];
    }

    void add(const Option &option, const QString &value) { add(option).append(value); }

    QStringList m_rest;
    const QVector<Option> &m_known;
    Arguments m_arguments;
};

} // namespace

Arguments parseArguments(const QStringList &given, const QVector<Option> &known)
{
    return Parser(given, known).parsed();
}

} // namespace tool
