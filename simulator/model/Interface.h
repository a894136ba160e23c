// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_MODEL_INTERFACE_H
#define SIMULATOR_MODEL_INTERFACE_H

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace simulator {

struct Argument
{
    QString name;
    QString type; ///< D-Bus signature
};

struct Method
{
    QString name;
    QString operation; ///< name of the library's operation, which differs for some methods
    QString family;
    QString meaning; ///< a sentence
    QVector<Argument> arguments;
    QString resultType; ///< D-Bus signature; empty when there is no result

    QString signature() const;

    /// The arguments as a reader takes them in, e.g. "(i value, s collectionId)".
    QString describeArguments() const;

    bool hasArgument(const QString &argument) const;
};

/// A D-Bus interface as its introspection XML describes it.
class Interface
{
public:
    /// Stops the process if the XML is not well-formed: it is part of the program.
    explicit Interface(const QByteArray &xml);

    QString name() const { return m_name; }

    /// The interface element of the XML.
    QString xml() const { return m_xml; }

    const QVector<Method> &methods() const { return m_methods; }

    /// Null when there is none of that name.
    const Method *method(const QString &name) const;

private:
    QString m_name;
    QString m_xml;
    QVector<Method> m_methods;
    QHash<QString, int> m_indexByName;
};

} // namespace simulator

#endif
