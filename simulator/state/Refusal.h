// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_STATE_REFUSAL_H
#define SIMULATOR_STATE_REFUSAL_H

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

/// A name of a setting, a paper or the like that the service does not know.
inline Refusal unknownName(const QString &message)
{
    return {QStringLiteral("com.tavelornbraille.ConfigurationManager.Error.UnknownName"), message};
}

/// A value that the setting cannot have.
inline Refusal invalidValue(const QString &message)
{
    return {QStringLiteral("com.tavelornbraille.ConfigurationManager.Error.InvalidValue"), message};
}

/// A command that could not be carried out.
inline Refusal failed(const QString &message)
{
    return {QStringLiteral("org.freedesktop.DBus.Error.Failed"), message};
}

} // namespace simulator

#endif
