// SPDX-License-Identifier: MIT

#include "commandline/CommandLine.h"
#include "documentation/Documentation.h"

#include <QtCore/QCoreApplication>

namespace tool {

namespace {

/// The text as roff takes it for text, whatever it begins with.
QString roff(QString text)
{
    text.replace(QLatin1Char('\\'), QStringLiteral("\\e"));
    text.replace(QLatin1Char('-'), QStringLiteral("\\-"));
    text.replace(QLatin1Char('\''), QStringLiteral("\\(aq"));
    return text.startsWith(QLatin1Char('.')) ? QStringLiteral("\\&") + text : text;
}

QString section(const QString &title)
{
    return QStringLiteral(".SH %1\n").arg(title);
}

QString bold(const QString &text)
{
    return QStringLiteral("\\fB%1\\fR").arg(roff(text));
}

QString definition(const QString &term, const QString &explanation)
{
    return QStringLiteral(".TP\n%1\n%2\n").arg(bold(term), roff(explanation));
}

QString definitionList(const QVector<QStringList> &rows)
{
    QString text;
    for (const QStringList &row : rows)
        text += definition(row[0], row[1]);
    return text;
}

QString optionList(const QVector<Option> &options)
{
    QString text;
    for (const Option &option : options)
        text += definition(typed(option), option.description);
    return text;
}

QString paragraphs(const QStringList &texts)
{
    QString text;
    for (const QString &paragraph : texts)
        text += QStringLiteral(".PP\n%1\n").arg(roff(paragraph));
    return text;
}

QString command(const Command &command)
{
    QString text = QStringLiteral(".SS %1\n%2\n").arg(command.name, bold(synopsis(command)));
    text += paragraphs(command.description);
    return text + optionList(command.options);
}

} // namespace

QString manualPage(const QVector<Command> &commands)
{
    QString text = QStringLiteral(".TH EMBOSSERCTL 1 \"\" \"embosserctl %1\"\n")
                       .arg(QCoreApplication::applicationVersion());
    text += section(QStringLiteral("NAME")) +
            QStringLiteral("embosserctl \\- %1\n").arg(roff(ProgramText::summary()));
    text += section(QStringLiteral("SYNOPSIS")) +
            bold(QStringLiteral("embosserctl COMMAND [ARGUMENT...] [OPTION...]")) +
            QLatin1Char('\n');
    text += section(QStringLiteral("DESCRIPTION")) + paragraphs(ProgramText::description());
    text += section(QStringLiteral("COMMANDS"));
    for (const Command &described : commands)
        text += command(described);
    text += section(QStringLiteral("OPTIONS")) + optionList(commonOptions());
    text += section(QStringLiteral("EXIT STATUS")) + definitionList(ProgramText::exitStatus());
    text += section(QStringLiteral("ENVIRONMENT")) + definitionList(ProgramText::environment());
    text += section(QStringLiteral("EXAMPLES")) + definitionList(ProgramText::examples());
    return text;
}

} // namespace tool
