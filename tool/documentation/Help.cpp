// SPDX-License-Identifier: MIT

#include "commandline/CommandLine.h"
#include "documentation/Documentation.h"

#include <algorithm>

namespace tool {

namespace {

const int lineWidth = 80;

/// The text in lines that begin with the indentation, ends of paragraphs included.
QString paragraph(const QString &text, int indent)
{
    QString result;
    QString line;
    const QString margin(indent, QLatin1Char(' '));
    for (const QString &word : text.split(QLatin1Char(' '))) {
        if (!line.isEmpty() && indent + line.size() + 1 + word.size() > lineWidth) {
            result += margin + line + QLatin1Char('\n');
            line.clear();
        }
        line += (line.isEmpty() ? QString() : QStringLiteral(" ")) + word;
    }
    return result + margin + line + QLatin1Char('\n');
}

/// Rows of a term and its explanation, the explanations in a column of their own.
QString columns(const QVector<QStringList> &rows)
{
    const int indent = 2;
    int width = 0;
    for (const QStringList &row : rows)
        width = std::max(width, row[0].size());
    QString result;
    for (const QStringList &row : rows) {
        const QString explanation = paragraph(row[1], indent + width + 2);
        const QString term = QString(indent, QLatin1Char(' ')) + row[0];
        result += term + explanation.mid(term.size());
    }
    return result;
}

QString optionColumns(const QVector<Option> &options)
{
    QVector<QStringList> rows;
    for (const Option &option : options)
        rows.append({typed(option), option.description});
    return columns(rows);
}

} // namespace

QString programHelp(const QVector<Command> &commands)
{
    QVector<QStringList> rows;
    for (const Command &command : commands)
        rows.append(
            {(command.name + QLatin1Char(' ') + command.arguments).trimmed(), command.summary});
    return QStringLiteral("Usage: embosserctl COMMAND [ARGUMENT...] [OPTION...]\n\n"
                          "embosserctl %1.\n\n"
                          "Commands:\n%2\n"
                          "Options:\n%3\n"
                          "Exit status:\n%4\n"
                          "For details see 'embosserctl COMMAND --help' and 'man embosserctl'.\n")
        .arg(ProgramText::summary(), columns(rows), optionColumns(commonOptions()),
             columns(ProgramText::exitStatus()));
}

QString commandHelp(const Command &command)
{
    QString text = QStringLiteral("Usage: %1 [OPTION...]\n\n").arg(synopsis(command));
    for (const QString &description : command.description)
        text += paragraph(description, 0) + QLatin1Char('\n');
    return text + QStringLiteral("Options:\n") + optionColumns(command.options + commonOptions());
}

} // namespace tool
