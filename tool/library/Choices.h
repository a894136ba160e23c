// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_CHOICES_H
#define TOOL_LIBRARY_CHOICES_H

#include "library/Catalogue.h"
#include "library/Session.h"

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

    /// "Soft, Hard", "0 to 10" or nothing.
    QString text() const;
};

/// Asks for the choices of a setting: for the value list of its name, if there is one, and for the
/// bounds.
class ChoicesQuestion
{
public:
    /// Begins the calls.
    ChoicesQuestion(const Setting &setting, const Catalogue &catalogue, Session &session);

    /// Waits for their answers.
    Choices answer();

private:
    Session &m_session;
    const ValueType &m_type;
    const Operation &m_lists;
    std::optional<Session::Call> m_minimum;
    std::optional<Session::Call> m_maximum;
    std::optional<Session::Call> m_list;
};

} // namespace tool

#endif
