// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_METHODS_CALL_H
#define SIMULATOR_METHODS_CALL_H

#include "model/Interface.h"

#include <QtCore/QVariant>

namespace simulator {

/// A call of a method with arguments of the right types.
class Call
{
public:
    Call(const Method &method, const QVariantList &arguments)
        : m_method(method), m_arguments(arguments)
    {
    }

    const Method &method() const { return m_method; }

    /// Invalid when the method has no argument of that name.
    QVariant argument(const QString &name) const;
    QVariant argument(const char *name) const { return argument(QString::fromLatin1(name)); }

    QString text(const char *name) const { return argument(name).toString(); }
    int number(const char *name) const { return argument(name).toInt(); }
    QString collectionId() const { return text("collectionId"); }

private:
    const Method &m_method;
    const QVariantList &m_arguments;
};

} // namespace simulator

#endif
