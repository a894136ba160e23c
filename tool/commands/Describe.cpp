// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "common/JsonText.h"
#include "library/Choices.h"
#include "library/Description.h"
#include "library/Lookup.h"
#include "library/Session.h"
#include "terminal/Output.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <optional>

namespace tool {

namespace {

/// The operations of the name, or those of the setting that has it.
QVector<const Operation *> operationsMeant(const Catalogue &catalogue, const QString &name)
{
    const Setting *setting = catalogue.setting(name);
    if (!setting)
        return operationsCalled(catalogue, name);
    QVector<const Operation *> operations{setting->getter, setting->setter};
    operations.removeAll(nullptr);
    return operations;
}

QString typeText(const ValueType &type)
{
    const QString enumeration = type.enumeration.name();
    if (!type.enumeration.isValid() || type.name.endsWith(enumeration))
        return type.name;
    return QStringLiteral("%1, of %2").arg(type.name, enumeration);
}

QString keysText(const Enumeration &enumeration)
{
    QStringList keys;
    for (const QString &key : enumeration.keys())
        keys.append(QStringLiteral("%1=%2").arg(key).arg(*enumeration.value(key)));
    return keys.join(QLatin1Char(' '));
}

void printOperation(Output &output, const Operation &operation)
{
    output.heading(operation.name + operation.parameterList());
    QVector<QStringList> rows{{QStringLiteral("Meaning"), operation.meaning},
                              {QStringLiteral("Group"), operation.family}};
    Enumeration enumeration = operation.result.enumeration;
    for (int i = 0; i < operation.parameters.size(); ++i) {
        const Parameter &parameter = operation.parameters[i];
        const QString optional =
            i < operation.requiredParameters ? QString() : QStringLiteral(" (optional)");
        rows.append(
            {QStringLiteral("Parameter"),
             QStringLiteral("%1: %2%3").arg(parameter.name, typeText(parameter.type), optional)});
        if (parameter.type.enumeration.isValid())
            enumeration = parameter.type.enumeration;
    }
    rows.append({QStringLiteral("Result"), typeText(operation.result)});
    if (enumeration.isValid())
        rows.append({enumeration.name(), keysText(enumeration)});
    rows.append({QStringLiteral("Remote method"), operation.remoteMethod});
    output.table(rows, {}, {1});
}

/// What the service tells of a setting, if it is there. Why it does not is only good to know.
std::optional<Choices> choicesOf(const Setting &setting, const Request &request)
{
    if (setting.isSecret)
        return {};
    try {
        Session session(request.session);
        session.requireConnection();
        return ChoicesQuestion(setting, request.catalogue, session).answer();
    } catch (const Failure &failure) {
        if (failure.status() != ExitStatus::NotConnected)
            request.output.note(failure.message());
        return {};
    }
}

void printSetting(Output &output, const Setting &setting, const Choices &choices)
{
    output.heading(setting.name);
    QVector<QStringList> rows{{QStringLiteral("Meaning"), setting.meaning}};
    const auto add = [&rows](const char *what, const QString &text) {
        if (!text.isEmpty())
            rows.append({QString::fromLatin1(what), text});
    };
    add(choices.values.isEmpty() ? "Range" : "Choices", choices.text());
    add("Unit", choices.unit);
    if (!choices.initial.isUndefined())
        add("Default", toText(choices.initial));
    output.table(rows, {}, {1});
}

ExitStatus runDescribe(const Request &request)
{
    const QString &name = request.arguments[0];
    const auto operations = operationsMeant(request.catalogue, name);
    const Setting *setting = request.catalogue.setting(name);
    const std::optional<Choices> choices =
        setting ? choicesOf(*setting, request) : std::optional<Choices>();
    if (choices && !request.output.isJson())
        printSetting(request.output, *setting, *choices);
    QJsonArray descriptions;
    for (const Operation *operation : operations) {
        QJsonObject description = describe(*operation);
        if (choices)
            description.insert(QStringLiteral("setting"), toJson(*choices));
        if (request.output.isJson())
            descriptions.append(description);
        else
            printOperation(request.output, *operation);
    }
    if (request.output.isJson())
        request.output.json(descriptions);
    return ExitStatus::Done;
}

} // namespace

Command describeCommand()
{
    Command command;
    command.name = QStringLiteral("describe");
    command.arguments = QStringLiteral("OPERATION");
    command.minArguments = 1;
    command.maxArguments = 1;
    command.completion = Completion::OperationOrSetting;
    command.summary = QStringLiteral("describe an operation");
    command.description = QStringList{
        QStringLiteral(
            "Shows the meaning, parameters, result and remote method of an operation, and the keys "
            "of the enumeration that it uses. OPERATION is a name; a name with parameter types, "
            "such as 'getWidth(QString)', to select one of several operations; or the name of a "
            "setting, for the operations that read and write it. The service is not needed; if it "
            "is there, it tells the range or the choices, the unit and the default of a setting."),
    };
    command.isLong = true;
    command.run = runDescribe;
    return command;
}

} // namespace tool
