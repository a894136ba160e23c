// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "common/JsonText.h"
#include "library/Lookup.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"

#include <QtCore/QJsonObject>

namespace tool {

namespace {

ExitStatus runGet(const Request &request)
{
    QVector<const Setting *> settings;
    for (const QString &name : request.arguments)
        settings += settingsMeant(request.catalogue, name);
    const bool isOneNamed = request.arguments.size() == 1 && !isWildcard(request.arguments[0]);

    Session session(request.session);
    session.requireConnection();
    ExitStatus status = ExitStatus::Done;
    QJsonObject values;
    QJsonObject errors;
    QVector<QStringList> rows;
    for (const auto &[setting, call] : session.beginToRead(settings)) {
        const Reply reply = session.finish(call);
        if (reply.error) {
            request.output.error(about(setting->name, *reply.error));
            status = ExitStatus::Failed;
            errors.insert(setting->name, errorToJson(status, reason(setting->name, *reply.error)));
            continue;
        }
        const QJsonValue value = toJson(reply.value, setting->getter->result);
        values.insert(setting->name, value);
        rows.append({setting->name, toText(value)});
    }

    if (!errors.isEmpty())
        values.insert(QStringLiteral("errors"), errors);
    if (request.output.isJson())
        request.output.json(values);
    else if (!isOneNamed)
        request.output.table(rows);
    else if (!rows.isEmpty())
        request.output.line(rows[0][1]);
    return status;
}

} // namespace

Command getCommand()
{
    Command command;
    command.name = QStringLiteral("get");
    command.arguments = QStringLiteral("NAME...");
    command.minArguments = 1;
    command.maxArguments = Command::AnyNumber;
    command.completion = Completion::ReadableSetting;
    command.summary = QStringLiteral("show the values of settings");
    command.description = QStringList{
        QStringLiteral(
            "Shows the value of each setting. NAME is the name of an operation without its 'get': "
            "PrintSpeed stands for getPrintSpeed(). The value of a single setting is shown by "
            "itself, those of several settings next to their names. A NAME with the wildcards * or "
            "? "
            "stands for all settings that it matches, but for secret ones."),
    };
    command.run = runGet;
    return command;
}

} // namespace tool
