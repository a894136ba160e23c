// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_OPERATION_H
#define TOOL_LIBRARY_OPERATION_H

#include "library/Enumeration.h"

#include <contract/Interface.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtCore/QVector>

namespace tool {

/// The type of a parameter or result, with the enumeration that gives its numbers their meaning.
struct ValueType
{
    QString name;
    Enumeration enumeration;

    /// The type as which a value goes over the bus.
    int metaType() const;
};

struct Parameter
{
    QString name;
    ValueType type;
    contract::Role role = contract::Role::Other;
    /// Invalid when the parameter has to be given.
    QVariant defaultValue = {};
};

/// An operation of the library, as its meta-object and the contract tell.
struct Operation
{
    QString name;
    QVector<Parameter> parameters;
    /// How many parameters have no default.
    int requiredParameters = 0;
    ValueType result;
    /// That with all parameters, followed by those that leave out the last ones.
    QVector<QByteArray> signatures;

    /// From the contract; empty when the library is newer than this program.
    QString meaning;
    QString family;
    QString remoteMethod;
    /// Where the collection id stands among what is sent; -1 when it is not.
    int collectionIdAt = -1;
    /// What the operation reads or writes, if it is about a setting.
    QString setting;
    bool writes = false;
    bool isSecret = false;
    /// Whether the operation only asks, so that a result of false is an answer, no refusal.
    bool isQuery = false;

    /// "name(type, type)", by which overloads are told apart.
    QString signature() const;

    /// The parameters as written in a manual: "(int value[, bool flag])".
    QString parameterList() const;

    /// The name without "get" or "set".
    QString bareName() const;

    /// The parameter of that role, or null.
    const Parameter *parameterOf(contract::Role role) const;

    bool hasResult() const { return result.name != QLatin1String("void"); }
    bool accepts(int arguments) const;

    /// What is sent: the arguments, of which the last ones may be left out, and the collection id.
    QVariantList sent(QVariantList arguments, const QString &collectionId) const;
};

} // namespace tool

#endif
