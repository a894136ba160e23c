// SPDX-License-Identifier: MIT

#ifndef TOOL_CONFIGURATION_RESTORATION_H
#define TOOL_CONFIGURATION_RESTORATION_H

#include "configuration/Configuration.h"
#include "configuration/Differences.h"
#include "library/Catalogue.h"
#include "library/Session.h"

#include <QtCore/QJsonValue>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include <optional>

namespace tool {

/// What has become of a setting, and why it is not applied or not verified.
struct Outcome
{
    enum State {
        Unchanged,
        Applied,
        /// Accepted by the service, but not read again.
        Unverified,
        NotApplied,
        NotTried,
    };

    State state;
    QString reason;
};

/// By the name of the setting.
using Outcomes = QMap<QString, Outcome>;

/// Brings the service to hold a configuration.
class Restoration
{
public:
    Restoration(Session &session, bool showsProgress);

    /// One setting may bound another, or change it: what the service does not hold is written, and
    /// that again, until it is what has been written before.
    void apply(const Configuration &configuration, const Catalogue &catalogue);

    /// Tells what apply() would write, by name: what the service holds, and what it would hold.
    Differences differences(const Configuration &configuration, const Catalogue &catalogue);

    /// What has been seen, also when apply() has ended by an exception.
    const Outcomes &outcomes() const { return m_outcomes; }

private:
    /// A setting that the service is to hold with a value.
    struct Target
    {
        const Setting *setting;
        QVariant argument;
        QJsonValue value;
        QJsonValue held = {};
        bool isTried = false;
        /// Why the service has not taken it the last time.
        std::optional<QString> refusal;
    };

    void setTargets(const Configuration &configuration, const Catalogue &catalogue);
    void setNotApplied(const QString &name, const QString &reason);
    Reply writeTarget(const QString &name, const Target &target);
    static Outcome outcomeOf(Target &target, const Reply &reply);
    /// Reads all targets, since one setting may have changed another.
    QStringList notHeld();
    void write(const QStringList &names);

    Session &m_session;
    bool m_showsProgress;
    /// By the name of the setting.
    QMap<QString, Target> m_targets;
    Outcomes m_outcomes;
};

} // namespace tool

#endif
