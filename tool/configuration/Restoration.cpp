// SPDX-License-Identifier: MIT

#include "configuration/Restoration.h"

#include "common/DeferredSignals.h"
#include "common/Failure.h"
#include "common/JsonText.h"
#include "library/Lookup.h"
#include "library/Value.h"
#include "terminal/ProgressBar.h"

#include <QtCore/QList>

namespace tool {

namespace {

const int maxSuggestedFor = 20;

} // namespace

Restoration::Restoration(Session &session, bool showsProgress)
    : m_session(session), m_showsProgress(showsProgress)
{
}

void Restoration::apply(const Configuration &configuration, const Catalogue &catalogue)
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

Differences Restoration::differences(const Configuration &configuration, const Catalogue &catalogue)
{
    setTargets(configuration, catalogue);
    Differences differences;
    for (const QString &name : notHeld())
        differences.insert(name, {m_targets[name].held, m_targets[name].value});
    return differences;
}

void Restoration::setTargets(const Configuration &configuration, const Catalogue &catalogue)
{
    for (const QString &name : configuration.ignoredSecrets)
        setNotApplied(name, QStringLiteral("secrets are not restored"));
    const QJsonObject &values = configuration.values;
    int unknown = 0;
    for (auto value = values.begin(); value != values.end(); ++value) {
        // To look for what was meant takes its time, and nobody reads it so often.
        if (!catalogue.setting(value.key()) && ++unknown > maxSuggestedFor) {
            setNotApplied(value.key(),
                          QStringLiteral("there is no writable setting '%1'").arg(value.key()));
            continue;
        }
        try {
            const Setting &setting = writableSetting(catalogue, value.key());
            readableSetting(catalogue, value.key());
            const QVariant argument = argumentFromJson(value.value(), setting.valueType());
            m_targets.insert(value.key(), {&setting, argument, value.value(), {}, false, {}});
            m_outcomes.insert(value.key(), {Outcome::NotTried, QStringLiteral("not tried")});
        } catch (const Failure &failure) {
            setNotApplied(value.key(), failure.message());
        }
    }
}

void Restoration::setNotApplied(const QString &name, const QString &reason)
{
    m_outcomes.insert(name, {Outcome::NotApplied, reason});
}

Outcome Restoration::outcomeOf(Target &target, const Reply &reply)
{
    const QJsonValue held = toJson(reply.value, target.setting->getter->result);
    target.held = reply.error ? QJsonValue::Undefined : held;
    if (!reply.error && held == target.value)
        return {target.isTried ? Outcome::Applied : Outcome::Unchanged, {}};
    // It says more than what the service holds instead.
    if (target.refusal)
        return {Outcome::NotApplied, *target.refusal};
    if (reply.error)
        return {target.isTried ? Outcome::Unverified : Outcome::NotApplied, *reply.error};
    return {Outcome::NotApplied, QStringLiteral("the service holds %1").arg(toText(held))};
}

QStringList Restoration::notHeld()
{
    ProgressBar progress(m_targets.size(), m_showsProgress);
    QVector<const Setting *> settings;
    for (const Target &target : qAsConst(m_targets))
        settings.append(target.setting);
    QStringList names;
    for (const auto &[setting, call] : m_session.beginToRead(settings)) {
        progress.step();
        DeferredSignals::throwIfCome();
        const Outcome outcome = outcomeOf(m_targets[setting->name], m_session.finish(call));
        m_outcomes.insert(setting->name, outcome);
        if (outcome.state != Outcome::Unchanged && outcome.state != Outcome::Applied)
            names.append(setting->name);
    }
    return names;
}

Reply Restoration::writeTarget(const QString &name, const Target &target)
{
    try {
        return m_session.call(*target.setting->setter, {target.argument});
    } catch (const Failure &failure) {
        setNotApplied(name, failure.message());
        throw;
    }
}

void Restoration::write(const QStringList &names)
{
    ProgressBar progress(names.size(), m_showsProgress);
    for (const QString &name : names) {
        progress.step();
        DeferredSignals::throwIfCome();
        Target &target = m_targets[name];
        const Reply reply = writeTarget(name, target);
        target.isTried = true;
        target.refusal = reply.error;
        m_outcomes.insert(
            name, reply.error ? Outcome{Outcome::NotApplied, *reply.error}
                              : Outcome{Outcome::Unverified, QStringLiteral("not read back")});
    }
}

} // namespace tool
