// SPDX-License-Identifier: MIT

#include "Commands.h"

#include "../Configuration.h"
#include "../DeferredSignals.h"
#include "../Lookup.h"
#include "../Output.h"
#include "../ProgressBar.h"
#include "../Session.h"
#include "../Value.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <csignal>
#include <optional>

namespace tool {

namespace {

const QString exceptOption = QStringLiteral("except");

/// A setting that the service is to hold with a value.
struct Target
{
    const Setting *setting;
    QVariant argument;
    QJsonValue value;
    bool isTried = false;
    /// Why the service has not taken it the last time.
    std::optional<QString> refusal;
};

enum class State {
    Unchanged,
    Applied,
    /// Accepted by the service, but not read again.
    Unverified,
    NotApplied,
};

/// What has become of a setting, and why it is not applied or not verified.
struct Outcome
{
    State state;
    QString reason;
};

/// By the name of the setting.
using Outcomes = QMap<QString, Outcome>;

class Restoration
{
public:
    Restoration(Session &session, bool showsProgress)
        : m_session(session), m_showsProgress(showsProgress)
    {
    }

    /// One setting may bound another, or change it: what the service does not hold is written, and
    /// that again, until it is what has been written before.
    void apply(const Configuration &configuration, const Catalogue &catalogue)
    {
        setTargets(configuration, catalogue);
        QList<QStringList> written;
        QStringList missing = notHeld();
        while (!missing.isEmpty() && !written.contains(missing)) {
            write(missing);
            written.append(missing);
            missing = notHeld();
        }
    }

    /// What has been seen, also when apply() has ended by an exception.
    const Outcomes &outcomes() const { return m_outcomes; }

private:
    void setTargets(const Configuration &configuration, const Catalogue &catalogue)
    {
        for (const QString &name : configuration.ignoredSecrets)
            setNotApplied(name, QStringLiteral("secrets are not restored"));
        const QJsonObject &values = configuration.values;
        for (auto value = values.begin(); value != values.end(); ++value) {
            try {
                const Setting &setting = writableSetting(catalogue, value.key());
                readableSetting(catalogue, value.key());
                const QVariant argument =
                    argumentFromJson(value.value(), setting.setter->parameters[0].type);
                m_targets.insert(value.key(), {&setting, argument, value.value(), false, {}});
                setNotApplied(value.key(), QStringLiteral("not tried"));
            } catch (const Failure &failure) {
                setNotApplied(value.key(), failure.message());
            }
        }
    }

    void setNotApplied(const QString &name, const QString &reason)
    {
        m_outcomes.insert(name, {State::NotApplied, reason});
    }

    Outcome read(const Target &target)
    {
        const Reply reply = m_session.call(*target.setting->getter);
        const QJsonValue held = toJson(reply.value, target.setting->getter->result);
        if (!reply.error && held == target.value)
            return {target.isTried ? State::Applied : State::Unchanged, {}};
        // It says more than what the service holds instead.
        if (target.refusal)
            return {State::NotApplied, *target.refusal};
        if (reply.error)
            return {target.isTried ? State::Unverified : State::NotApplied, *reply.error};
        return {State::NotApplied, QStringLiteral("the service holds %1").arg(toText(held))};
    }

    /// Reads all targets, since one setting may have changed another.
    QStringList notHeld()
    {
        ProgressBar progress(m_targets.size(), m_showsProgress);
        QStringList names;
        for (auto target = m_targets.cbegin(); target != m_targets.cend(); ++target) {
            progress.step();
            DeferredSignals::throwIfCome();
            const Outcome outcome = read(*target);
            m_outcomes.insert(target.key(), outcome);
            if (outcome.state != State::Unchanged && outcome.state != State::Applied)
                names.append(target.key());
        }
        return names;
    }

    void write(const QStringList &names)
    {
        ProgressBar progress(names.size(), m_showsProgress);
        for (const QString &name : names) {
            progress.step();
            DeferredSignals::throwIfCome();
            Target &target = m_targets[name];
            const Reply reply = m_session.call(*target.setting->setter, {target.argument});
            target.isTried = true;
            target.refusal = reply.error;
            m_outcomes.insert(
                name, reply.error ? Outcome{State::NotApplied, *reply.error}
                                  : Outcome{State::Unverified, QStringLiteral("not read back")});
        }
    }

    Session &m_session;
    bool m_showsProgress;
    /// By the name of the setting.
    QMap<QString, Target> m_targets;
    Outcomes m_outcomes;
};

QStringList namesIn(const Outcomes &outcomes, State state)
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
                     State state)
{
    QJsonObject reasons;
    for (const QString &name : namesIn(outcomes, state)) {
        const QString &message = outcomes[name].reason;
        output.error(QStringLiteral("%1: %2").arg(label, about(name, message)));
        reasons.insert(name, reason(name, message));
    }
    return reasons;
}

ExitStatus print(const Output &output, const Outcomes &outcomes)
{
    const QStringList applied = namesIn(outcomes, State::Applied);
    const int unchanged = namesIn(outcomes, State::Unchanged).size();
    const QJsonObject unverified =
        reported(output, QStringLiteral("written, but not verified"), outcomes, State::Unverified);
    const QJsonObject notApplied =
        reported(output, QStringLiteral("not applied"), outcomes, State::NotApplied);
    if (output.isJson()) {
        output.json(QJsonObject{{QStringLiteral("applied"), QJsonArray::fromStringList(applied)},
                                {QStringLiteral("unchanged"), unchanged},
                                {QStringLiteral("unverified"), unverified},
                                {QStringLiteral("notApplied"), notApplied}});
    } else {
        output.note(QStringLiteral("%1 applied, %2 unchanged, %3 not verified, %4 not applied")
                        .arg(applied.size())
                        .arg(unchanged)
                        .arg(unverified.size())
                        .arg(notApplied.size()));
    }
    return unverified.isEmpty() && notApplied.isEmpty() ? ExitStatus::Done : ExitStatus::Failed;
}

ExitStatus run(const Request &request)
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
    } catch (const Failure &) {
        print(request.output, restoration.outcomes());
        throw;
    }
    return print(request.output, restoration.outcomes());
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
    command.run = run;
    return command;
}

} // namespace tool
