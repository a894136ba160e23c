// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "library/Lookup.h"
#include "library/Secret.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

namespace tool {

namespace {

/// The value with each number in it as the setting of the same name shows it: an enumeration's by
/// its key.
QJsonValue withKeys(const QJsonValue &value, const Catalogue &catalogue)
{
    if (value.isArray()) {
        QJsonArray array;
        for (const auto &element : value.toArray())
            array.append(withKeys(element, catalogue));
        return array;
    }
    if (!value.isObject())
        return value;
    QJsonObject object = value.toObject();
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        const Setting *setting = catalogue.setting(entry.key());
        if (entry.value().isDouble() && setting && setting->getter)
            *entry = toJson(entry.value().toVariant(), setting->getter->result);
        else
            *entry = withKeys(entry.value(), catalogue);
    }
    return object;
}

QJsonValue reportOf(Session &session, const Catalogue &catalogue, const QString &name)
{
    const Operation &operation = operationFor(catalogue, name, 0);
    const Reply reply = session.call(operation);
    if (reply.error)
        throw Failure(ExitStatus::Failed, about(name, *reply.error));
    return withKeys(withoutSecrets(toJson(reply.value, operation.result)), catalogue);
}

ExitStatus runReport(const Request &request)
{
    Session session(request.session);
    session.requireConnection();
    const QJsonValue embosser =
        reportOf(session, request.catalogue, QStringLiteral("embosserInfoCmd"));
    const QJsonValue configuration =
        reportOf(session, request.catalogue, QStringLiteral("currentConfigurationCmd"));

    Output &output = request.output;
    if (output.isJson()) {
        output.json(QJsonObject{{QStringLiteral("embosser"), embosser},
                                {QStringLiteral("configuration"), configuration}});
        return ExitStatus::Done;
    }
    output.heading(QStringLiteral("Embosser"));
    output.value(embosser);
    for (const auto &element : configuration.toArray()) {
        const QJsonObject section = element.toObject();
        output.heading(section.value(QStringLiteral("name")).toString());
        output.value(section.value(QStringLiteral("properties")));
    }
    return ExitStatus::Done;
}

} // namespace

Command reportCommand()
{
    Command command;
    command.name = QStringLiteral("report");
    command.summary = QStringLiteral("show the service's reports");
    command.description = QStringList{
        QStringLiteral("Shows the service's report on the embosser and its report on the complete "
                       "current configuration. The values of an enumeration are shown by key where "
                       "a setting has the same name. Secrets are not shown."),
    };
    command.isLong = true;
    command.run = runReport;
    return command;
}

} // namespace tool
