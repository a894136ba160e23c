// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "library/Choices.h"
#include "library/Lookup.h"
#include "library/Sequence.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <vector>

namespace tool {

namespace {

ExitStatus runReset(const Request &request)
{
    QVector<const Setting *> settings;
    for (const QString &name : request.arguments)
        settings.append(&writableSetting(request.catalogue, name));

    Session session(request.session);
    session.requireConnection();
    std::vector<ChoicesQuestion> questions;
    for (const Setting *setting : qAsConst(settings))
        questions.emplace_back(*setting, request.catalogue, session);
    QVariantMap values;
    for (int i = 0; i < settings.size(); ++i) {
        const QJsonValue initial = questions[size_t(i)].answer().initial;
        if (initial.isUndefined()) {
            throw Failure(
                ExitStatus::Failed,
                about(settings[i]->name, QStringLiteral("the service tells no default of it")));
        }
        values.insert(settings[i]->name, argumentFromJson(initial, settings[i]->valueType()));
    }
    writeTogether(values, request.catalogue, &session);
    if (request.output.isJson()) {
        request.output.json(
            QJsonObject{{QStringLiteral("settings"), QJsonArray::fromStringList(values.keys())}});
    }
    return ExitStatus::Done;
}

} // namespace

Command resetCommand()
{
    Command command;
    command.name = QStringLiteral("reset");
    command.arguments = QStringLiteral("NAME...");
    command.minArguments = 1;
    command.maxArguments = Command::AnyNumber;
    command.completion = Completion::WritableSetting;
    command.summary = QStringLiteral("write the default of settings");
    command.description = QStringList{
        QStringLiteral("Writes what the service gives as the default of each setting, in one call: "
                       "all of them, or none if the service tells no default of one, as where a "
                       "setting follows from another, or refuses one."),
    };
    command.run = runReset;
    return command;
}

} // namespace tool
