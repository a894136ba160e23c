// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "library/Lookup.h"
#include "library/Secret.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"

#include <QtCore/QJsonArray>

namespace tool {

namespace {

const QString valueListOperation = QStringLiteral("getValueList");

ExitStatus runValues(const Request &request)
{
    const Operation &operation = operationFor(request.catalogue, valueListOperation, 1);
    const QVariant row = argumentFromText(request.arguments[0], operation.parameters[0].type);

    Session session(request.session);
    session.requireConnection();
    const Reply reply = session.call(operation, {row});
    if (reply.error)
        throw Failure(ExitStatus::Failed, *reply.error);
    const QJsonValue list = withoutSecrets(toJson(reply.value, operation.result));
    if (request.output.isJson())
        request.output.json(list);
    else if (list.toArray().isEmpty())
        request.output.note(QStringLiteral("the list is empty"));
    else
        request.output.value(list);
    return ExitStatus::Done;
}

} // namespace

Command valuesCommand()
{
    Command command;
    command.name = QStringLiteral("values");
    command.arguments = QStringLiteral("ROW");
    command.minArguments = 1;
    command.maxArguments = 1;
    command.completion = Completion::ValueList;
    command.summary = QStringLiteral("show the entries of a value list");
    command.description = QStringList{
        QStringLiteral("Shows the values that the service offers for a setting, as a table. ROW is "
                       "a key of RowValueList, such as Papers or BaudRate, or a number."),
    };
    command.isLong = true;
    command.run = runValues;
    return command;
}

} // namespace tool
