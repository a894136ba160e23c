// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "common/DeferredSignals.h"
#include "common/JsonText.h"
#include "configuration/Restoration.h"
#include "library/Lookup.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <csignal>
#include <optional>

namespace tool {

namespace {

const QString exceptOption = QStringLiteral("except");
const QString dryRunOption = QStringLiteral("dry-run");
const QString forceOption = QStringLiteral("force");
const QString identityOption = QStringLiteral("with-identity");

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

ExitStatus printOutcomes(Output &output, const Outcomes &outcomes, const QStringList &leftOut,
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
                             {QStringLiteral("notApplied"), notApplied},
                             {QStringLiteral("leftOut"), QJsonArray::fromStringList(leftOut)}};
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

/// Leaves out what makes one device of another.
QStringList withoutIdentity(Configuration *configuration, const Catalogue &catalogue)
{
    QStringList leftOut;
    for (const Setting &setting : catalogue.settings()) {
        if (setting.isIdentity && configuration->values.contains(setting.name))
            leftOut.append(setting.name);
    }
    for (const QString &name : qAsConst(leftOut))
        configuration->values.remove(name);
    return leftOut;
}

/// What suits one type may harm another. A file of an older program does not tell its type.
void requireSameType(const Configuration &configuration, const Request &request, Session *session)
{
    if (configuration.type.isEmpty() || request.hasOption(forceOption))
        return;
    const Operation &getter = *typeSetting(request.catalogue).getter;
    const Reply reply = session->call(getter);
    if (reply.error)
        throw Failure(ExitStatus::Failed, about(getter.name, *reply.error));
    const QString type = toText(toJson(reply.value, getter.result));
    if (type != configuration.type) {
        throw Failure(ExitStatus::Usage,
                      QStringLiteral("the configuration is of the type %1, this embosser is of the "
                                     "type %2; --force restores it nevertheless")
                          .arg(configuration.type, type));
    }
}

ExitStatus printDifferences(Restoration *restoration, const Configuration &configuration,
                            const Request &request)
{
    const Differences differences = restoration->differences(configuration, request.catalogue);
    Outcomes others = restoration->outcomes();
    for (const QString &name : differences.keys())
        others.remove(name);
    const QJsonObject notApplied =
        reported(request.output, QStringLiteral("not applied"), others, Outcome::NotApplied);
    if (request.output.isJson()) {
        request.output.json(
            QJsonObject{{QStringLiteral("wouldApply"),
                         toJson(differences, QStringLiteral("held"), QStringLiteral("file"))},
                        {QStringLiteral("unchanged"), namesIn(others, Outcome::Unchanged).size()},
                        {QStringLiteral("notApplied"), notApplied}});
    } else {
        print(request.output, differences, {QStringLiteral("now"), QStringLiteral("in the file")},
              QStringLiteral("(unknown)"));
    }
    return notApplied.isEmpty() ? ExitStatus::Done : ExitStatus::Failed;
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
    const QStringList leftOut = request.hasOption(identityOption)
                                    ? QStringList()
                                    : withoutIdentity(&configuration, request.catalogue);
    Session session(request.session);
    session.requireConnection();
    requireSameType(configuration, request, &session);
    if (!leftOut.isEmpty()) {
        request.output.note(QStringLiteral("left out: identity and history (%1 settings); "
                                           "--with-identity restores them as well")
                                .arg(leftOut.size()));
    }
    const DeferredSignals untilResultIsTold({SIGINT, SIGTERM});
    Restoration restoration(session, request.output.showsProgress());
    if (request.hasOption(dryRunOption))
        return printDifferences(&restoration, configuration, request);
    try {
        restoration.apply(configuration, request.catalogue);
    } catch (const Failure &failure) {
        if (!isNothingTried(restoration.outcomes()))
            printOutcomes(request.output, restoration.outcomes(), leftOut, failure);
        throw;
    }
    return printOutcomes(request.output, restoration.outcomes(), leftOut);
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
    command.options = {
        {exceptOption,
         QStringLiteral("NAME"),
         QStringLiteral("leave this setting unchanged"),
         true,
         {},
         Completion::WritableSetting},
        {dryRunOption, {}, QStringLiteral("only show what would be written")},
        {forceOption, {}, QStringLiteral("also for an embosser of another type")},
        {identityOption, {}, QStringLiteral("also restore what tells one device from another")}};
    command.summary = QStringLiteral("write a configuration back");
    command.description = QStringList{
        QStringLiteral(
            "Writes back the settings in a file written by dump ('-' is standard input) where they "
            "differ, and reads them again to verify that the service holds them. Settings that "
            "could not be applied or verified are reported with the reason, and the exit status is "
            "1; the others are applied nevertheless. Ctrl-C ends it at once; what has "
            "been done by then is reported."),
        QStringLiteral("Secret settings are left unchanged; if the file contains one, it is "
                       "reported as not applied."),
        QStringLiteral("Settings that belong to the identity or the history of a device, such as "
                       "SerialNo, Model, MacAddress and Counter, are left out: with them, another "
                       "device would become a copy. --with-identity restores them as well. A "
                       "configuration of another type of embosser is refused."),
    };
    command.run = runRestore;
    return command;
}

} // namespace tool
