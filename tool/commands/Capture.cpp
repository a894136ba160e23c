// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "capture/Capture.h"
#include "common/DeferredSignals.h"
#include "common/Suggestion.h"
#include "terminal/Output.h"
#include "terminal/ProgressBar.h"

#include <contract/Interface.h>

#include <QtCore/QCoreApplication>

#include <csignal>

namespace tool {

namespace {

const QString identityOption = QStringLiteral("with-identity");
const QString secretsOption = QStringLiteral("with-secrets");
const QString keyOption = QStringLiteral("key");

/// The keys in NAME/KEY, by the names of their settings.
QMap<QString, QStringList> keysIn(const QStringList &texts)
{
    QStringList keyed;
    for (const contract::Setting &setting :
         contract::Interface::configurationManager().settings()) {
        if (setting.isKeyed())
            keyed += setting.name;
    }
    QMap<QString, QStringList> keys;
    for (const QString &text : texts) {
        const QString name = text.section(QLatin1Char('/'), 0, 0);
        const QString key = text.section(QLatin1Char('/'), 1);
        if (!keyed.contains(name) || key.isEmpty()) {
            throw Failure(
                ExitStatus::Usage,
                QStringLiteral("'%1' is not a key of one of the settings %2, such as %3/KEY%4")
                    .arg(text, keyed.join(QStringLiteral(", ")), keyed.first(),
                         didYouMean(name, keyed)));
        }
        keys[name] += key;
    }
    return keys;
}

/// A line for each operation that has not been answered, however often it was called.
void report(const QVector<Recording::Unanswered> &unanswered, const Output &output)
{
    QMap<QString, QVector<Recording::Unanswered>> byOperation;
    for (const Recording::Unanswered &each : unanswered)
        byOperation[each.operation].append(each);
    for (const auto &calls : qAsConst(byOperation)) {
        const Recording::Unanswered &first = calls.first();
        QString what = first.operation;
        if (!first.arguments.isEmpty())
            what += QStringLiteral("(%1)").arg(first.arguments.join(QStringLiteral(", ")));
        if (calls.size() > 1)
            what += QStringLiteral(" and %1 more").arg(calls.size() - 1);
        output.error(QStringLiteral("not answered: %1: %2").arg(what, first.reason));
    }
}

ExitStatus runCapture(const Request &request)
{
    CaptureOptions options;
    options.withIdentity = request.hasOption(identityOption);
    options.withSecrets = request.hasOption(secretsOption);
    options.keys = keysIn(request.options.value(keyOption));
    Session session(request.session);
    session.requireConnection();
    Capture capture(session, request.catalogue, options);
    {
        const DeferredSignals untilBarIsGone({SIGINT, SIGTERM});
        ProgressBar progress(Capture::steps(), request.output.showsProgress());
        capture.read([&] { progress.step(); });
    }
    QJsonObject origin{{QStringLiteral("tool"), QCoreApplication::applicationVersion()},
                       {QStringLiteral("leftOut"), QJsonArray::fromStringList(capture.leftOut())}};
    if (request.session.collection)
        origin.insert(QStringLiteral("collection"), *request.session.collection);
    QJsonObject profile = capture.profile();
    profile.insert(QStringLiteral("capture"), origin);
    request.output.json(profile);
    report(capture.unanswered(), request.output);
    return capture.unanswered().isEmpty() ? ExitStatus::Done : ExitStatus::Failed;
}

} // namespace

Command captureCommand()
{
    Command command;
    command.name = QStringLiteral("capture");
    command.options = {
        {identityOption, {}, QStringLiteral("also capture what tells one device from another")},
        {secretsOption, {}, QStringLiteral("also capture secret settings")},
        {keyOption, QStringLiteral("NAME/KEY"),
         QStringLiteral("also capture this key of a keyed setting"), true}};
    command.summary = QStringLiteral("print a profile with which the simulator is this embosser");
    command.description = QStringList{
        QStringLiteral(
            "Reads everything that the service tells: settings with their bounds, precision, "
            "metadata and texts, value lists, papers, braille distances, stored documents and the "
            "queries about the model. Prints it as a profile of embosser-simulator, which then "
            "answers the same: 'embosserctl capture > device.json' here, and 'embosser-simulator "
            "--profile device.json' elsewhere."),
        QStringLiteral("Secret settings (Passphrase) and those that belong to the identity or the "
                       "history of the device (SerialNo, MacAddress, Counter) are left out; their "
                       "names are listed. The simulator has them empty or 0. What kind of embosser "
                       "it is, is always captured."),
        QStringLiteral("Of a setting with keys, such as ReleaseTime, those are captured that the "
                       "service's report on its configuration names (ReleaseTime/Open), the one "
                       "that is meant when none is given (Counter/1), and those "
                       "given with --key."),
        QStringLiteral(
            "What the service does not answer is reported, and the exit status is 1; the "
            "simulator does not answer it either. --collection captures the values of "
            "another collection."),
    };
    command.run = runCapture;
    return command;
}

} // namespace tool
