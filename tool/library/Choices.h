// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_CHOICES_H
#define TOOL_LIBRARY_CHOICES_H

#include "library/Catalogue.h"
#include "library/Session.h"

#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>
#include <QtCore/QMap>
#include <QtCore/QString>

#include <optional>

namespace tool {

/// What the service offers for a setting, as far as it tells.
struct Choices
{
    /// The numbers by the service's own keys.
    QMap<QString, int> values;
    std::optional<int> minimum;
    std::optional<int> maximum;
    QString unit;
    /// What it is until somebody sets it; undefined if the service does not tell.
    QJsonValue initial = QJsonValue::Undefined;

    /// The keys, in the order of their numbers.
    QStringList keys() const;

    /// "Soft, Hard", "0 to 10 mm", "mm" or nothing.
    QString text() const;
};

/// As settings and describe print them with --json.
QJsonObject toJson(const Choices &choices);

/// Asks for the choices of a setting: for the bounds, for what the service's metadata tell, and for
/// the value list that these name, or that has the setting's name.
class ChoicesQuestion
{
public:
    /// Begins the calls.
    ChoicesQuestion(const Setting &setting, const Catalogue &catalogue, Session &session);

    /// Waits for their answers.
    Choices answer();

private:
    bool takesList() const;

    Session &m_session;
    const ValueType &m_type;
    const Operation &m_lists;
    std::optional<Session::Call> m_minimum;
    std::optional<Session::Call> m_maximum;
    std::optional<Session::Call> m_list;
    Session::Call m_metadata;
};

/// The value of the setting that a text stands for, which may also be a key of the service's value
/// list. Throws a Failure that says what was expected.
QVariant valueFromText(const QString &text, const Setting &setting, const Catalogue &catalogue,
                       Session &session);

/// The texts that stand for the values of a setting, if these are few and no secret.
QStringList textsOf(const Setting &setting, const Catalogue &catalogue, Session &session);

/// The texts that stand for the argument, as far as its type, its role or the service tells.
QStringList textsOf(const Operation &operation, const Parameter &parameter,
                    const Catalogue &catalogue, Session &session);

/// The names of papers.
QStringList papers(const Catalogue &catalogue, Session &session);

} // namespace tool

#endif
