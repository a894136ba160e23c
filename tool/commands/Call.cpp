// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "library/Choices.h"
#include "library/Lookup.h"
#include "library/Secret.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"

#include <QtCore/QJsonObject>

#include <algorithm>

namespace tool {

namespace {

QVariantList argumentsFor(const Operation &operation, const QStringList &texts)
{
    QVariantList arguments;
    for (int i = 0; i < texts.size(); ++i) {
        const Parameter &parameter = operation.parameters[i];
        try {
            arguments.append(argumentFromText(texts[i], parameter.type));
        } catch (const Failure &failure) {
            throw Failure(failure.status(), about(parameter.name, failure.message()));
        }
    }
    return arguments;
}

void printResult(Output &output, const Operation &operation, const QJsonValue &result)
{
    if (output.isJson()) {
        output.json(QJsonObject{{QStringLiteral("operation"), operation.signature()},
                                {QStringLiteral("result"), result}});
    } else if (operation.hasResult()) {
        output.value(result);
    }
}

/// Whether the operation, or what it is asked about, is a secret.
bool tellsSecret(const Operation &operation, const QStringList &texts)
{
    return operation.hasResult() &&
           (operation.isSecret || std::any_of(texts.begin(), texts.end(), isSecret));
}

ExitStatus runCall(const Request &request)
{
    const QStringList texts = request.arguments.mid(1);
    const Operation &operation =
        operationFor(request.catalogue, request.arguments[0], texts.size());
    const QVariantList arguments = argumentsFor(operation, texts);

    Session session(request.session);
    session.requireConnection();
    const Reply reply = session.call(operation, arguments);
    if (reply.error) {
        throw Failure(ExitStatus::Failed, about(operation.name, *reply.error));
    }
    if (tellsSecret(operation, texts)) {
        request.output.note(QStringLiteral("secrets are shown only by the command get"));
        printResult(request.output, operation, QJsonValue());
        return ExitStatus::Done;
    }
    printResult(request.output, operation, withoutSecrets(toJson(reply.value, operation.result)));
    const bool isOutcome = operation.result.name == QLatin1String("bool") && !operation.isQuery;
    if (isOutcome && !reply.value.toBool()) {
        throw Failure(ExitStatus::Failed,
                      about(operation.name, QStringLiteral("the service refused")));
    }
    return ExitStatus::Done;
}

QStringList candidatesForCall(const Request &request)
{
    const int position = request.arguments.size() - 2;
    Session session(request.session);
    session.requireConnection();
    QStringList texts;
    for (const Operation *operation :
         operationsCalled(request.catalogue, request.arguments.first())) {
        if (position >= 0 && position < operation->parameters.size())
            texts +=
                textsOf(*operation, operation->parameters[position], request.catalogue, session);
    }
    texts.removeDuplicates();
    return texts;
}

} // namespace

Command callCommand()
{
    Command command;
    command.name = QStringLiteral("call");
    command.arguments = QStringLiteral("OPERATION [ARGUMENT...]");
    command.minArguments = 1;
    command.maxArguments = Command::AnyNumber;
    command.completion = Completion::Operation;
    command.namesFirstOnly = true;
    command.summary = QStringLiteral("call an operation");
    command.description = QStringList{
        QStringLiteral("Calls an operation and prints its result, if it has one. Operations of the "
                       "same name are distinguished by the number of arguments; arguments that "
                       "have a default may be omitted."),
        QStringLiteral("If an operation returns false, the service has refused it, and the exit "
                       "status is 1. This does not apply to queries (get, is, has)."),
    };
    command.run = runCall;
    command.candidates = candidatesForCall;
    return command;
}

} // namespace tool
