// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "common/DeferredSignals.h"
#include "common/JsonText.h"
#include "library/Choices.h"
#include "library/Lookup.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"
#include "terminal/ProgressBar.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <csignal>

namespace tool {

namespace {

/// What a setting is, holds and may hold; what the service does not tell is left out.
QJsonObject toJson(const Setting &setting, const Catalogue &catalogue, Session *session)
{
    QJsonObject object{{QStringLiteral("name"), setting.name},
                       {QStringLiteral("meaning"), setting.meaning},
                       {QStringLiteral("writable"), setting.setter != nullptr}};
    if (setting.isSecret) {
        object.insert(QStringLiteral("value"), QJsonValue());
        return object;
    }
    const Reply reply = session->call(*setting.getter);
    if (reply.error)
        object.insert(QStringLiteral("error"), errorToJson(ExitStatus::Failed, *reply.error));
    else
        object.insert(QStringLiteral("value"), toJson(reply.value, setting.getter->result));
    const Choices choices = choicesOf(setting, catalogue, session);
    if (choices.minimum && choices.maximum) {
        object.insert(QStringLiteral("minimum"), *choices.minimum);
        object.insert(QStringLiteral("maximum"), *choices.maximum);
    }
    if (!choices.values.isEmpty()) {
        QJsonObject values;
        for (auto choice = choices.values.begin(); choice != choices.values.end(); ++choice)
            values.insert(choice.key(), choice.value());
        object.insert(QStringLiteral("choices"), values);
    }
    object.insert(QStringLiteral("range"), choices.text());
    return object;
}

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
    {
        const DeferredSignals untilBarIsGone({SIGINT, SIGTERM});
        ProgressBar progress(settings.size(), request.output.showsProgress());
        for (const Setting *setting : settings) {
            progress.step();
            DeferredSignals::throwIfCome();
            const QJsonObject object = toJson(*setting, request.catalogue, &session);
            descriptions.append(object);
            rows.append(rowOf(object));
        }
    }
    if (request.output.isJson()) {
        request.output.json(descriptions);
    } else if (rows.isEmpty()) {
        request.output.note(
            QStringLiteral("no setting matches '%1'").arg(request.arguments.value(0)));
    } else {
        request.output.table(rows, {QStringLiteral("Setting"), QStringLiteral("Value"),
                                    QStringLiteral("Range or choices"), QStringLiteral("Meaning")});
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
            "Lists the settings, each with its value, its range or the keys of its value list, as "
            "far as the service tells them, and its meaning. PATTERN is matched against any part "
            "of the name or the meaning or, if it contains the wildcards * or ?, against the whole "
            "name. Case is ignored."),
    };
    command.run = runSettings;
    return command;
}

} // namespace tool
