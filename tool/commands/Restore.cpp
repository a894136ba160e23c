// SPDX-License-Identifier: MIT

#include "Commands.h"

#include "../Configuration.h"
#include "../Lookup.h"
#include "../Output.h"
#include "../ProgressBar.h"
#include "../Session.h"
#include "../Value.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <utility>

namespace {

/// A setting that the service is to hold with a value.
struct Target
{
    const Setting *setting;
    QVariant argument;
    QJsonValue value;
};

struct Result
{
    int unchanged = 0;
    QStringList applied;
    QMap<QString, QString> notApplied;
};

class Restoration
{
public:
    Restoration(Session &session, bool showsProgress)
        : m_session(session), m_showsProgress(showsProgress)
    {
    }

    /// One setting may bound another: what was refused is tried again for as long as that helps.
    void apply(const Configuration &configuration, const Catalogue &catalogue)
    {
        QVector<Target> targets = targetsOf(configuration, catalogue);
        leaveOutWhatHolds(&targets);
        int before = 0;
        do {
            before = targets.size();
            write(&targets);
        } while (!targets.isEmpty() && targets.size() < before);
    }

    const Result &result() const { return m_result; }

private:
    QVector<Target> targetsOf(const Configuration &configuration, const Catalogue &catalogue)
    {
        for (const QString &name : configuration.ignoredSecrets)
            m_result.notApplied.insert(name, QStringLiteral("a secret is not restored"));
        QVector<Target> targets;
        const QJsonObject &values = configuration.values;
        for (auto value = values.begin(); value != values.end(); ++value) {
            try {
                const Setting &setting = writableSetting(catalogue, value.key());
                readableSetting(catalogue, value.key());
                const QVariant argument =
                    argumentFromJson(value.value(), setting.setter->parameters[0].type);
                targets.append({&setting, argument, value.value()});
            } catch (const Failure &failure) {
                m_result.notApplied.insert(value.key(), failure.message());
            }
        }
        return targets;
    }

    /// Whether the service holds the value; if not, the result tells why.
    bool holds(const Target &target)
    {
        const Reply reply = m_session.call(*target.setting->getter);
        const QString &name = target.setting->name;
        if (reply.error) {
            m_result.notApplied.insert(name, *reply.error);
            return false;
        }
        const QJsonValue held = toJson(reply.value, target.setting->getter->result);
        if (held == target.value) {
            m_result.notApplied.remove(name);
            return true;
        }
        m_result.notApplied.insert(name, QStringLiteral("the service holds %1").arg(toText(held)));
        return false;
    }

    void leaveOutWhatHolds(QVector<Target> *targets)
    {
        ProgressBar progress(targets->size(), m_showsProgress);
        QVector<Target> remaining;
        for (const Target &target : std::as_const(*targets)) {
            progress.step();
            if (!holds(target))
                remaining.append(target);
        }
        m_result.unchanged = targets->size() - remaining.size();
        *targets = remaining;
    }

    /// Writes the targets and leaves those that the service does not hold afterwards.
    void write(QVector<Target> *targets)
    {
        ProgressBar progress(targets->size(), m_showsProgress);
        QMap<QString, QString> refused;
        for (const Target &target : std::as_const(*targets)) {
            progress.step();
            const Reply reply = m_session.call(*target.setting->setter, {target.argument});
            if (reply.error)
                refused.insert(target.setting->name, *reply.error);
        }
        QVector<Target> remaining;
        for (const Target &target : std::as_const(*targets)) {
            const QString &name = target.setting->name;
            if (holds(target)) {
                m_result.applied.append(name);
                continue;
            }
            remaining.append(target);
            if (refused.contains(name))
                m_result.notApplied.insert(name, refused.value(name));
        }
        *targets = remaining;
    }

    Session &m_session;
    bool m_showsProgress;
    Result m_result;
};

void print(Output &output, const Result &result)
{
    QJsonObject notApplied;
    for (auto reason = result.notApplied.begin(); reason != result.notApplied.end(); ++reason) {
        notApplied.insert(reason.key(), reason.value());
        output.error(QStringLiteral("not applied: ") + about(reason.key(), reason.value()));
    }
    if (output.isJson()) {
        output.json(
            QJsonObject{{QStringLiteral("applied"), QJsonArray::fromStringList(result.applied)},
                        {QStringLiteral("unchanged"), result.unchanged},
                        {QStringLiteral("notApplied"), notApplied}});
    } else {
        output.note(QStringLiteral("%1 applied, %2 unchanged, %3 not applied")
                        .arg(result.applied.size())
                        .arg(result.unchanged)
                        .arg(result.notApplied.size()));
    }
}

ExitStatus run(const Request &request)
{
    const Configuration configuration =
        configurationFromFile(request.arguments[0], request.catalogue);
    Session session(request.collection);
    session.requireConnection();
    Restoration restoration(session, request.output.showsProgress());
    try {
        restoration.apply(configuration, request.catalogue);
    } catch (const Failure &) {
        print(request.output, restoration.result());
        throw;
    }
    print(request.output, restoration.result());
    return restoration.result().notApplied.isEmpty() ? ExitStatus::Done : ExitStatus::Failed;
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
    command.summary = QStringLiteral("write a configuration back");
    command.description = QStringList{
        QStringLiteral("Writes back the settings in a file that dump has written ('-' is standard "
                       "input), as far as they differ, and reads them again to see whether the "
                       "service holds them. What could not be applied is told with the reason, and "
                       "the exit status is 1; the rest is applied all the same. Secret settings "
                       "stay as they are, and one that somebody has put into the file counts as "
                       "not applied."),
    };
    command.run = run;
    return command;
}
