// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "common/JsonText.h"
#include "configuration/Restoration.h"
#include "library/Lookup.h"
#include "library/Session.h"
#include "terminal/DeferredSignals.h"
#include "terminal/Output.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <csignal>
#include <optional>

namespace tool {

namespace {

const QString exceptOption = QStringLiteral("except");

QStringList namesIn(const Outcomes &outcomes, Outcome::State state)
{
    QStringList names;
    for (auto outcome = outcomes.begin(); outcome != outcomes.end(); ++outcome) {
        if (outcome->state == state)
            names.append(outcome.key());
    }
    return names;
}

/// The settings of the state with their reasons, each of which is reported on standard error as
/// well.
QJsonObject reported(const Output &output, const QString &label, const Outcomes &outcomes,
                     Outcome::State state)
{
    QJsonObject reasons;
    for (const QString &name : namesIn(outcomes, state)) {
        const QString &message = outcomes[name].reason;
        output.error(QStringLiteral("%1: %2").arg(label, about(name, message)));
        reasons.insert(name, reason(name, message));
    }
    return reasons;
}

/// The settings that were not reached, which are many: one line says so.
QJsonObject reportedNotTried(const Output &output, const Outcomes &outcomes)
{
    QJsonObject reasons;
    for (const QString &name : namesIn(outcomes, Outcome::NotTried))
        reasons.insert(name, outcomes[name].reason);
    if (reasons.size() == 1)
        output.error(QStringLiteral("not applied: %1: not tried").arg(reasons.begin().key()));
    else if (!reasons.isEmpty())
        output.error(QStringLiteral("not applied: %1 settings: not tried").arg(reasons.size()));
    return reasons;
}

bool isNothingTried(const Outcomes &outcomes)
{
    return namesIn(outcomes, Outcome::NotTried).size() == outcomes.size();
}

ExitStatus printOutcomes(Output &output, const Outcomes &outcomes,
                         const std::optional<Failure> &end = {})
{
    const QStringList applied = namesIn(outcomes, Outcome::Applied);
    const int unchanged = namesIn(outcomes, Outcome::Unchanged).size();
    const QJsonObject unverified = reported(output, QStringLiteral("written, but not verified"),
                                            outcomes, Outcome::Unverified);
    QJsonObject notApplied =
        reported(output, QStringLiteral("not applied"), outcomes, Outcome::NotApplied);
    const QJsonObject notTried = reportedNotTried(output, outcomes);
    for (auto entry = notTried.begin(); entry != notTried.end(); ++entry)
        notApplied.insert(entry.key(), entry.value());
    if (output.isJson()) {
        QJsonObject document{{QStringLiteral("applied"), QJsonArray::fromStringList(applied)},
                             {QStringLiteral("unchanged"), unchanged},
                             {QStringLiteral("unverified"), unverified},
                             {QStringLiteral("notApplied"), notApplied}};
        if (end)
            document.insert(QStringLiteral("error"), errorToJson(end->status(), end->message()));
        output.json(document);
    } else {
        output.note(QStringLiteral("%1 applied, %2 unchanged, %3 not verified, %4 not applied")
                        .arg(applied.size())
                        .arg(unchanged)
                        .arg(unverified.size())
                        .arg(notApplied.size()));
    }
    return unverified.isEmpty() && notApplied.isEmpty() ? ExitStatus::Done : ExitStatus::Failed;
}

ExitStatus runRestore(const Request &request)
{
    const QStringList exceptions = request.options.value(exceptOption);
    for (const QString &name : exceptions)
        writableSetting(request.catalogue, name);
    Configuration configuration = configurationFromFile(request.arguments[0], request.catalogue);
    for (const QString &name : exceptions) {
        configuration.values.remove(name);
        configuration.ignoredSecrets.removeAll(name);
    }
    Session session(request.collection);
    session.requireConnection();
    const DeferredSignals untilResultIsTold({SIGINT, SIGTERM});
    Restoration restoration(session, request.output.showsProgress());
    try {
        restoration.apply(configuration, request.catalogue);
    } catch (const Failure &failure) {
        if (!isNothingTried(restoration.outcomes()))
            printOutcomes(request.output, restoration.outcomes(), failure);
        throw;
    }
    return printOutcomes(request.output, restoration.outcomes());
}

} // namespace

Command restoreCommand()
{
    Command command;
    command.name = QStringLiteral("restore");
    command.arguments = QStringLiteral("FILE");
    command.minArguments = 1;
    command.maxArguments = 1;
    command.completion = Completion::File;
    command.options = {{exceptOption, QStringLiteral("NAME"),
                        QStringLiteral("leave this setting unchanged"), true}};
    command.summary = QStringLiteral("write a configuration back");
    command.description = QStringList{
        QStringLiteral(
            "Writes back the settings in a file written by dump ('-' is standard input) where they "
            "differ, and reads them again to verify that the service holds them. Settings that "
            "could not be applied or verified are reported with the reason, and the exit status is "
            "1; the others are applied nevertheless. Ctrl-C takes effect when the service has "
            "answered the current call; what has been done by then is reported."),
        QStringLiteral("Secret settings are left unchanged; if the file contains one, it is "
                       "reported as not applied."),
        QStringLiteral("A file also contains settings that belong to the identity or the history "
                       "of its device, such as SerialNo, Model, MacAddress, WlanMacAddress and "
                       "Counter. For another device, exclude each of them with --except."),
    };
    command.run = runRestore;
    return command;
}

} // namespace tool
