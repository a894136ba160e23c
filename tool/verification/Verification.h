// SPDX-License-Identifier: MIT

#ifndef TOOL_VERIFICATION_VERIFICATION_H
#define TOOL_VERIFICATION_VERIFICATION_H

#include "library/Catalogue.h"
#include "library/NameSource.h"
#include "library/Session.h"
#include "verification/Introspection.h"

#include <contract/Interface.h>

#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>
#include <QtDBus/QDBusError>

#include <chrono>
#include <optional>

namespace tool {

/// Something in which a service deviates from the contract.
struct Finding
{
    QString subject; ///< the method or the setting
    QString text;
};

/// What has been judged of one family of the contract.
struct FamilyReport
{
    QString family;
    int methods = 0; ///< that have been judged, by introspection or by a call
    int calls = 0;
    QStringList notJudged; ///< methods that nothing is known of
    QVector<Finding> findings;
};

/// Judges a live service by the contract, with calls that only read.
class Verification
{
public:
    Verification(Session &session, const Catalogue &catalogue);

    /// Waits so long for the answer to introspection. Throws a Failure as Session::call() does.
    void run(std::chrono::milliseconds timeout);

    bool isIntrospected() const { return m_introspected.has_value(); }

    /// In the order of the contract.
    const QVector<FamilyReport> &families() const { return m_families; }
    int findings() const;

private:
    FamilyReport &familyOf(const contract::Method &method);
    void addFinding(const contract::Method &method, const QString &subject, const QString &text);
    /// Whether the method is there with the right types, as far as introspection tells.
    bool isAsIntrospected(const contract::Method &method);
    /// Calls a method that only reads, with all arguments that are known, until one call deviates.
    void judge(const contract::Method &method);
    /// In what a call deviates that has failed; empty if a service may refuse it.
    static QString deviationIn(const QDBusError &error, bool takesArguments);
    void keep(const contract::Method &method, const QVariantList &arguments,
              const QVariant &answer);
    /// Judges what a setting holds.
    void judgeValue(const contract::Setting &setting, const QString &name, const QVariant &value);
    QString deviationFromBounds(const QString &name, const QVariant &value) const;
    QString deviationFromList(const contract::Setting &setting, const QString &name,
                              const QVariant &value) const;

    /// The arguments that are known for a query: one list for each call.
    QVector<QVariantList> argumentsFor(const contract::Method &method) const;
    QStringList settingNames() const;
    QStringList keysOf(const QString &setting) const;
    QStringList names(const NameSource &source) const;

    Session &m_session;
    QHash<QString, const Operation *> m_operations; ///< by the name of their method
    std::optional<QHash<QString, Signature>> m_introspected;
    QVector<FamilyReport> m_families;
    /// What has been answered, by method and arguments.
    QHash<QString, QMap<QString, QVariant>> m_answers;
    QMap<QString, QVariant> m_values; ///< of the settings, a key behind a slash
    QStringList m_reported;           ///< the names in the service's report on its configuration
};

} // namespace tool

#endif
