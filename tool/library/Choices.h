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

/// Asks for the value list of the setting's name, if there is one, or else for the bounds.
Choices choicesOf(const Setting &setting, const Catalogue &catalogue, Session *session);

} // namespace tool

#endif
