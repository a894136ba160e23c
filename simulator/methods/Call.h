// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_METHODS_CALL_H
#define SIMULATOR_METHODS_CALL_H

#include <contract/Interface.h>

#include <QtCore/QVariant>

namespace simulator {

/// A call of a method with arguments of the right types.
class Call
{
public:
    Call(const contract::Method &method, const QVariantList &arguments)
        : m_method(method), m_arguments(arguments)
    {
    }

    const contract::Method &method() const { return m_method; }

    /// The arguments as they are given, counted from 0.
    QVariant argument(int position) const { return m_arguments.at(position); }
    QString text(int position) const { return argument(position).toString(); }
    int number(int position) const { return argument(position).toInt(); }

    /// Invalid when the method has no such argument.
    QVariant argument(contract::Role role) const
    {
        return m_arguments.value(m_method.indexOf(role));
    }

    /// The arguments without the collection id, which is the library's and not of its caller.
    QVariantList ownArguments() const
    {
        QVariantList arguments = m_arguments;
        if (m_method.has(contract::Role::CollectionId))
            arguments.removeAt(m_method.indexOf(contract::Role::CollectionId));
        return arguments;
    }

    bool flag() const { return argument(contract::Role::Flag).toBool(); }
    QString collectionId() const { return argument(contract::Role::CollectionId).toString(); }

private:
    const contract::Method &m_method;
    const QVariantList &m_arguments;
};

} // namespace simulator

#endif
