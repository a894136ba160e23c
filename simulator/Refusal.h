// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_REFUSAL_H
#define SIMULATOR_REFUSAL_H

#include <QtCore/QString>

namespace simulator {

/// What a call is answered with when it cannot be carried out: a D-Bus error.
struct Refusal
{
    QString name;
    QString message;
};

/// A call with arguments that the method does not take.
inline Refusal invalidArguments(const QString &message)
{
    return {QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"), message};
}

} // namespace simulator

#endif
