// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "library/Choices.h"
#include "library/Lookup.h"
#include "library/Sequence.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"
#include "terminal/SecretPrompt.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

namespace tool {

namespace {

const QString flagOption = QStringLiteral("flag");

/// Throws a Failure for a text that is not the value of the setting, unless the service may know
/// it.
void checkText(const QString &text, const Setting &setting, const Catalogue &catalogue)
{
    const Operation &lists = operationFor(catalogue, QStringLiteral("getValueList"), 1);
    if (!lists.parameters[0].type.enumeration.value(setting.name))
        argumentFromText(text, setting.valueType());
}

/// "NAME=VALUE NAME=VALUE ...", in one call: all or none.
ExitStatus setTogether(const Request &request)
{
    QVector<QPair<const Setting *, QString>> given;
    for (const QString &argument : request.arguments) {
        const int equals = argument.indexOf(QLatin1Char('='));
        const Setting &setting = writableSetting(request.catalogue, argument.left(equals));
        if (equals < 0) {
            throw Failure(ExitStatus::Usage,
                          QStringLiteral("%1: no value given; write %1=VALUE").arg(setting.name));
        }
        given.append({&setting, argument.mid(equals + 1)});
        checkText(given.last().second, setting, request.catalogue);
    }
    Session session(request.session);
    session.requireConnection();
    QVariantMap sequence;
    for (const auto &[setting, text] : qAsConst(given)) {
        if (sequence.contains(setting->name))
            throw Failure(ExitStatus::Usage,
                          QStringLiteral("%1 is given twice").arg(setting->name));
        sequence.insert(setting->name, valueFromText(text, *setting, request.catalogue, session));
    }
    writeTogether(sequence, request.catalogue, &session);
    if (request.output.isJson()) {
        request.output.json(
            QJsonObject{{QStringLiteral("settings"), QJsonArray::fromStringList(sequence.keys())}});
    }
    return ExitStatus::Done;
}

ExitStatus runSet(const Request &request)
{
    const bool flag = request.hasOption(flagOption);
    if (request.arguments[0].contains(QLatin1Char('='))) {
        if (flag)
            throw Failure(ExitStatus::Usage, QStringLiteral("a sequence takes no flag"));
        return setTogether(request);
    }
    if (request.arguments.size() > 2) {
        throw Failure(
            ExitStatus::Usage,
            QStringLiteral("too many arguments; several settings are written NAME=VALUE"));
    }
    const Setting &setting = writableSetting(request.catalogue, request.arguments[0]);
    if (flag && !setting.takesFlag())
        throw Failure(ExitStatus::Usage, QStringLiteral("%1 takes no flag").arg(setting.name));
    const bool isGiven = request.arguments.size() == 2;
    if (isGiven)
        checkText(request.arguments[1], setting, request.catalogue);
    else if (!setting.isSecret)
        throw Failure(ExitStatus::Usage, QStringLiteral("%1: no value given").arg(setting.name));

    Session session(request.session);
    session.requireConnection();
    // Nobody is asked for a secret that could not be written.
    const QString text = isGiven ? request.arguments[1] : readSecret(setting.name);
    const QVariant value = valueFromText(text, setting, request.catalogue, session);
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

/// What stands for the value of the setting, from the service.
QStringList valuesOf(const QString &name, const Request &request)
{
    const Setting &setting = writableSetting(request.catalogue, name);
    Session session(request.session);
    session.requireConnection();
    return textsOf(setting, request.catalogue, session);
}

QStringList candidatesForSet(const Request &request)
{
    const QString &first = request.arguments.first();
    const QString &last = request.arguments.last();
    const QLatin1Char equals('=');
    if (!first.contains(equals))
        return request.arguments.size() == 2 ? valuesOf(first, request) : QStringList();
    if (last.contains(equals))
        return valuesOf(last.left(last.indexOf(equals)), request);
    QStringList names;
    for (const QString &name : request.catalogue.writableSettings())
        names.append(name + equals);
    return names;
}

} // namespace

Command setCommand()
{
    Command command;
    command.name = QStringLiteral("set");
    command.arguments = QStringLiteral("NAME [VALUE]");
    command.minArguments = 1;
    command.maxArguments = Command::AnyNumber;
    command.completion = Completion::WritableSetting;
    command.namesFirstOnly = true;
    command.options = {{flagOption,
                        {},
                        QStringLiteral("also keep the value for the user's saved settings, "
                                       "if the service has it so")}};
    command.summary = QStringLiteral("write a setting");
    command.description = QStringList{
        QStringLiteral("Writes a setting. NAME is the name of an operation without its 'set'. The "
                       "service decides whether it accepts the value. Where it has a value list of "
                       "that name, a key of the list is accepted as well ('set HammerImpact "
                       "Hard')."),
        QStringLiteral("NAME=VALUE, once or several times, writes the settings in one call: all of "
                       "them, or none if the service refuses one."),
        QStringLiteral("VALUE may be omitted only for a secret setting (Passphrase). It is then "
                       "prompted for without echo if standard input is a terminal, and otherwise "
                       "read from standard input, which must be a single line that is not empty. "
                       "'embosserctl set Passphrase \"\"' clears it."),
    };
    command.run = runSet;
    command.candidates = candidatesForSet;
    return command;
}

} // namespace tool
