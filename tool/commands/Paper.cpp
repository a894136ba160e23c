// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "common/JsonText.h"
#include "library/Choices.h"
#include "library/Lookup.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"

#include <QtCore/QJsonObject>

namespace tool {

namespace {

const QString currentPaperSetting = QStringLiteral("PaperSize");

/// Whether the operation asks about a paper that is named.
bool asksAboutPaper(const Operation &operation)
{
    return operation.isQuery && operation.parameters.size() == 1 &&
           operation.parameterOf(contract::Role::Paper);
}

QString currentPaper(Session &session, const Catalogue &catalogue)
{
    const Reply reply = session.call(*readableSetting(catalogue, currentPaperSetting).getter);
    if (reply.error)
        throw Failure(ExitStatus::Failed, *reply.error);
    return reply.value.toString();
}

ExitStatus runPaper(const Request &request)
{
    Session session(request.session);
    session.requireConnection();
    const QString paper = request.arguments.isEmpty() ? currentPaper(session, request.catalogue)
                                                      : request.arguments[0];
    QJsonObject geometry;
    QVector<QStringList> rows;
    for (const Operation &operation : request.catalogue.operations()) {
        if (!asksAboutPaper(operation))
            continue;
        const Reply reply = session.call(operation, {paper});
        // A paper that the service does not know would fail every time.
        if (reply.error)
            throw Failure(ExitStatus::Failed, *reply.error);
        const QJsonValue value = toJson(reply.value, operation.result);
        geometry.insert(operation.bareName(), value);
        rows.append({operation.bareName(), toText(value)});
    }

    if (request.output.isJson()) {
        request.output.json(
            QJsonObject{{QStringLiteral("paper"), paper}, {QStringLiteral("geometry"), geometry}});
    } else {
        request.output.heading(paper);
        request.output.table(rows);
    }
    return ExitStatus::Done;
}

QStringList candidatesForPaper(const Request &request)
{
    if (request.arguments.size() > 1)
        return {};
    Session session(request.session);
    session.requireConnection();
    return papers(request.catalogue, session);
}

} // namespace

Command paperCommand()
{
    Command command;
    command.name = QStringLiteral("paper");
    command.arguments = QStringLiteral("[NAME]");
    command.maxArguments = 1;
    command.summary = QStringLiteral("show the geometry of a paper format");
    command.description = QStringList{
        QStringLiteral(
            "Shows what the service reports about a paper format: its sizes, feed step, "
            "orientations and suitable embossers. The default for NAME is the current paper (the "
            "setting PaperSize). 'embosserctl values Papers' lists the papers."),
    };
    command.run = runPaper;
    command.candidates = candidatesForPaper;
    return command;
}

} // namespace tool
