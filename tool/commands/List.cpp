// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "library/Catalogue.h"
#include "library/Description.h"
#include "library/Lookup.h"
#include "terminal/Output.h"

#include <QtCore/QJsonArray>

namespace tool {

namespace {

/// Whether the operation is one of those that the user looks for.
bool matches(const Operation &operation, const QString &pattern)
{
    if (isWildcard(pattern))
        return matchesWildcard(operation.name, pattern);
    return operation.name.contains(pattern, Qt::CaseInsensitive) ||
           operation.meaning.contains(pattern, Qt::CaseInsensitive) ||
           operation.family.contains(pattern, Qt::CaseInsensitive);
}

/// The families in the order in which they first occur.
QStringList familiesOf(const QVector<const Operation *> &operations)
{
    QStringList families;
    for (const Operation *operation : operations)
        families.append(operation->family);
    families.removeDuplicates();
    return families;
}

void printGrouped(Output &output, const QVector<const Operation *> &operations)
{
    for (const QString &family : familiesOf(operations)) {
        QVector<QStringList> rows;
        for (const Operation *operation : operations) {
            if (operation->family == family) {
                rows.append({operation->name + operation->parameterList(), operation->result.name,
                             operation->meaning});
            }
        }
        output.heading(family);
        output.table(rows, {}, {0, 2});
    }
}

ExitStatus runList(const Request &request)
{
    const QString pattern = request.arguments.value(0);
    QVector<const Operation *> found;
    for (const Operation &operation : request.catalogue.operations()) {
        if (matches(operation, pattern))
            found.append(&operation);
    }

    if (request.output.isJson()) {
        QJsonArray descriptions;
        for (const Operation *operation : qAsConst(found))
            descriptions.append(describe(*operation));
        request.output.json(descriptions);
        return ExitStatus::Done;
    }
    if (found.isEmpty())
        request.output.note(QStringLiteral("no operation matches '%1'").arg(pattern));
    printGrouped(request.output, found);
    return ExitStatus::Done;
}

} // namespace

Command listCommand()
{
    Command command;
    command.name = QStringLiteral("list");
    command.arguments = QStringLiteral("[PATTERN]");
    command.maxArguments = 1;
    command.completion = Completion::Operation;
    command.summary = QStringLiteral("list the operations, with their types and meaning");
    command.description = QStringList{
        QStringLiteral(
            "Lists the operations of the library in groups, each with its parameters, the type of "
            "its result and one line of meaning. PATTERN is matched against any part of the name, "
            "the meaning and the group or, if it contains the wildcards * or ?, against the whole "
            "name. Case is ignored. The service is not needed."),
    };
    command.isLong = true;
    command.run = runList;
    return command;
}

} // namespace tool
