// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "configuration/Configuration.h"
#include "configuration/Differences.h"
#include "terminal/Output.h"

#include <QtCore/QJsonObject>

#include <algorithm>

namespace tool {

namespace {

const QString exitCodeOption = QStringLiteral("exit-code");
const QString live = QStringLiteral("live");
const QString collectionPrefix = QStringLiteral("collection:");

Configuration configurationOf(const QString &source, const Request &request)
{
    if (source == live)
        return readConfiguration(request.catalogue, request.output, request.session);
    if (source.startsWith(collectionPrefix)) {
        return readConfiguration(request.catalogue, request.output,
                                 {source.mid(collectionPrefix.size()), request.session.timeout});
    }
    return configurationFromFile(source, request.catalogue);
}

/// The names that occur in either, in order.
QStringList settingsOf(const Configuration &first, const Configuration &second)
{
    QStringList names = first.values.keys() + second.values.keys();
    names.sort();
    names.removeDuplicates();
    return names;
}

ExitStatus runDiff(const Request &request)
{
    const QStringList sources{request.arguments[0], request.arguments.value(1, live)};
    if (std::all_of(sources.begin(), sources.end(), isStandardInput)) {
        throw Failure(ExitStatus::Usage,
                      QStringLiteral("standard input cannot be compared with itself"));
    }
    const Configuration first = configurationOf(sources[0], request);
    const Configuration second = configurationOf(sources[1], request);

    Differences differences;
    for (const QString &name : settingsOf(first, second)) {
        const QPair<QJsonValue, QJsonValue> values(first.values.value(name),
                                                   second.values.value(name));
        if (values.first != values.second)
            differences.insert(name, values);
    }

    if (request.output.isJson()) {
        QJsonObject document{
            {QStringLiteral("first"), sources[0]},
            {QStringLiteral("second"), sources[1]},
            {QStringLiteral("differences"),
             toJson(differences, QStringLiteral("first"), QStringLiteral("second"))}};
        if (!first.errors.isEmpty() || !second.errors.isEmpty()) {
            document.insert(QStringLiteral("errors"),
                            QJsonObject{{QStringLiteral("first"), first.errors},
                                        {QStringLiteral("second"), second.errors}});
        }
        request.output.json(document);
    } else {
        print(request.output, differences, sources, QStringLiteral("(missing)"));
    }
    const ExitStatus status = first.status == ExitStatus::Done ? second.status : first.status;
    const bool isDifference = request.hasOption(exitCodeOption) && !differences.isEmpty();
    return isDifference ? ExitStatus::Failed : status;
}

} // namespace

Command diffCommand()
{
    Command command;
    command.name = QStringLiteral("diff");
    command.arguments = QStringLiteral("FIRST [SECOND]");
    command.minArguments = 1;
    command.maxArguments = 2;
    command.completion = Completion::FileOrLive;
    command.options = {
        {exitCodeOption, {}, QStringLiteral("exit with status 1 if there are differences")}};
    command.summary = QStringLiteral("compare two configurations");
    command.description = QStringList{
        QStringLiteral("Shows the settings whose values differ. FIRST and SECOND are each a file "
                       "written by dump ('-' is standard input, for one of them), 'collection:ID' "
                       "for a collection of the service, or 'live' for the collection in use, "
                       "which is the default for SECOND. A file named live is given as './live'."),
        QStringLiteral("Secret settings are not compared. The exit status does not depend on "
                       "whether there are differences, unless --exit-code is given."),
    };
    command.run = runDiff;
    return command;
}

} // namespace tool
