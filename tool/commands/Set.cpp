// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "library/Lookup.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"
#include "terminal/SecretPrompt.h"

#include <QtCore/QJsonObject>

namespace tool {

namespace {

const QString flagOption = QStringLiteral("flag");

ExitStatus runSet(const Request &request)
{
    const Setting &setting = writableSetting(request.catalogue, request.arguments[0]);
    const bool flag = request.hasOption(flagOption);
    if (flag && !setting.takesFlag())
        throw Failure(ExitStatus::Usage, QStringLiteral("%1 takes no flag").arg(setting.name));
    const ValueType &type = setting.valueType();
    QVariant value;
    if (request.arguments.size() == 2) {
        value = argumentFromText(request.arguments[1], type);
    } else if (!setting.isSecret) {
        throw Failure(ExitStatus::Usage, QStringLiteral("%1: no value given").arg(setting.name));
    }

    Session session(request.collection);
    session.requireConnection();
    // Nobody is asked for a secret that could not be written.
    if (!value.isValid())
        value = argumentFromText(readSecret(setting.name), type);
    const Reply reply =
        session.call(*setting.setter, flag ? QVariantList{value, true} : QVariantList{value});
    if (reply.error) {
        throw Failure(ExitStatus::Failed, about(setting.name, *reply.error));
    }
    if (request.output.isJson()) {
        request.output.json(
            QJsonObject{{QStringLiteral("setting"), setting.name}, {QStringLiteral("flag"), flag}});
    }
    return ExitStatus::Done;
}

} // namespace

Command setCommand()
{
    Command command;
    command.name = QStringLiteral("set");
    command.arguments = QStringLiteral("NAME [VALUE]");
    command.minArguments = 1;
    command.maxArguments = 2;
    command.completion = Completion::WritableSetting;
    command.namesFirstOnly = true;
    command.options = {{flagOption, {}, QStringLiteral("set the service's own flag to true")}};
    command.summary = QStringLiteral("write a setting");
    command.description = QStringList{
        QStringLiteral("Writes a setting. NAME is the name of an operation without its 'set'. The "
                       "service decides whether it accepts the value."),
        QStringLiteral("VALUE may be omitted only for a secret setting (Passphrase). It is then "
                       "prompted for without echo if standard input is a terminal, and otherwise "
                       "read from standard input, which must be a single line that is not empty. "
                       "'embosserctl set Passphrase \"\"' clears it."),
    };
    command.run = runSet;
    return command;
}

} // namespace tool
