// SPDX-License-Identifier: MIT

#include "commandline/CommandLine.h"
#include "documentation/Documentation.h"

#include <support/ManualPage.h>

namespace tool {

namespace {

QVector<QStringList> rowsOf(const QVector<Option> &options)
{
    QVector<QStringList> rows;
    for (const Option &option : options)
        rows.append({typed(option), option.description});
    return rows;
}

} // namespace

QString manualPage(const QVector<Command> &commands)
{
    support::ManualPage page(QStringLiteral("embosserctl"), ProgramText::summary(),
                             QStringLiteral("embosserctl COMMAND [ARGUMENT...] [OPTION...]"));
    page.addSection(QStringLiteral("DESCRIPTION"));
    page.addParagraphs(ProgramText::description());
    page.addSection(QStringLiteral("COMMANDS"));
    for (const Command &command : commands) {
        page.addSubsection(command.name);
        page.addCommandLine(synopsis(command));
        page.addParagraphs(command.description);
        page.addDefinitions(rowsOf(command.options));
    }
    page.addSection(QStringLiteral("OPTIONS"));
    page.addDefinitions(rowsOf(commonOptions()));
    page.addSection(QStringLiteral("EXIT STATUS"));
    page.addDefinitions(ProgramText::exitStatus());
    page.addSection(QStringLiteral("ENVIRONMENT"));
    page.addDefinitions(ProgramText::environment());
    page.addSection(QStringLiteral("EXAMPLES"));
    page.addDefinitions(ProgramText::examples());
    page.addSeeAlso({QStringLiteral("busctl"), QStringLiteral("embosser-simulator")});
    return page.text();
}

} // namespace tool
