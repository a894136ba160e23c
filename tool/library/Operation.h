// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_OPERATION_H
#define TOOL_LIBRARY_OPERATION_H

#include "library/Enumeration.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace tool {

/// The type of a parameter or result, with the enumeration that gives its numbers their meaning.
struct ValueType
{
    QString name;
    Enumeration enumeration;
};

struct Parameter
{
    QString name;
    ValueType type;
};

/// An operation of the library, as its meta-object and its introspection XML tell.
struct Operation
{
    QString name;
    QVector<Parameter> parameters;
    /// How many parameters have no default.
    int requiredParameters = 0;
    ValueType result;
    /// The method with all parameters, followed by those that leave out the last ones.
    QVector<QMetaMethod> forms;

    /// From the introspection XML; empty when the library is newer than this program.
    QString meaning;
    QString family;
    QString remoteMethod;

    /// "name(type, type)", by which overloads are told apart.
    QString signature() const;

    /// The parameters as written in a manual: "(int value[, bool flag])".
    QString parameterList() const;

    /// What getX() and setX() are about, or nothing for an operation of another kind.
    QString settingName() const;
    bool isGetter() const;
    bool isSetter() const;

    bool hasResult() const { return result.name != QLatin1String("void"); }
    bool accepts(int arguments) const;
    const QMetaMethod &form(int arguments) const;

    /// Whether the operation only asks, so that a result of false is an answer, no refusal.
    bool isQuery() const;
};

} // namespace tool

#endif
