// SPDX-License-Identifier: MIT

#ifndef TOOL_CONFIGURATION_EDITABLETEXT_H
#define TOOL_CONFIGURATION_EDITABLETEXT_H

#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <optional>

namespace tool {

class Catalogue;

/// Settings as a text that a person can edit: a line "NAME = VALUE" for each that the service tells
/// a value of, with what it means and may be in a comment above it. They are described as
/// describe() does it.
QString editableText(const QVector<QJsonObject> &descriptions, const Catalogue &catalogue);

/// What a line of such a text assigns.
struct Assignment
{
    QString name;
    QString value;
};

/// Nothing for a comment or an empty line. Throws a Failure for a line that is none of them.
std::optional<Assignment> assignmentIn(const QString &line);

} // namespace tool

#endif
