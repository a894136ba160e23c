// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "common/JsonText.h"
#include "configuration/SettingDescriptions.h"
#include "library/Lookup.h"
#include "library/Session.h"
#include "terminal/Output.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

namespace tool {

namespace {

QStringList rowOf(const QJsonObject &object)
{
    const QJsonValue value = object.value(QStringLiteral("value"));
    return {object.value(QStringLiteral("name")).toString(),
            value.isUndefined() ? QStringLiteral("(refused)") : toText(value),
            object.value(QStringLiteral("range")).toString(),
            object.value(QStringLiteral("meaning")).toString()};
}

ExitStatus runSettings(const Request &request)
{
    const QVector<const Setting *> settings =
        settingsLike(request.catalogue, request.arguments.value(0));
    Session session(request.session);
    session.requireConnection();
    QJsonArray descriptions;
    QVector<QStringList> rows;
    for (const QJsonObject &object :
         describe(settings, request.catalogue, request.output, session)) {
        descriptions.append(object);
        rows.append(rowOf(object));
    }
    if (request.output.isJson()) {
        request.output.json(descriptions);
    } else if (rows.isEmpty()) {
        request.output.note(
            QStringLiteral("no setting matches '%1'").arg(request.arguments.value(0)));
    } else {
        request.output.table(rows,
                             {QStringLiteral("Setting"), QStringLiteral("Value"),
                              QStringLiteral("Range or choices"), QStringLiteral("Meaning")},
                             {2, 3});
    }
    return ExitStatus::Done;
}

} // namespace

Command settingsCommand()
{
    Command command;
    command.name = QStringLiteral("settings");
    command.arguments = QStringLiteral("[PATTERN]");
    command.maxArguments = 1;
    command.completion = Completion::ReadableSetting;
    command.summary = QStringLiteral("list the settings with their values");
    command.description = QStringList{
        QStringLiteral(
            "Lists the settings, each with its value, its range and unit or the keys of its value "
            "list, as far as the service tells them, and its meaning. PATTERN is matched against "
            "any part "
            "of the name or the meaning or, if it contains the wildcards * or ?, against the whole "
            "name. Case is ignored."),
    };
    command.isLong = true;
    command.run = runSettings;
    return command;
}

} // namespace tool
