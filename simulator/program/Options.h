// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_PROGRAM_OPTIONS_H
#define SIMULATOR_PROGRAM_OPTIONS_H

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <stdexcept>

namespace simulator {

/// The command line cannot be carried out; what() says why.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// What the command line asks for.
struct Options
{
    QString profileFile;
    QString stateFile;    ///< empty: in memory
    QString usbDirectory; ///< empty: no medium
    QStringList faults;   ///< as Faults::inject() takes them
};

/// What the values of options are called, by which a shell knows how to complete them.
struct ValueName
{
    static QString model() { return QStringLiteral("name"); }
    static QString file() { return QStringLiteral("file"); }
    static QString directory() { return QStringLiteral("directory"); }
};

/// Reads a command line, which begins with the program. Answers --help, --version, --list-models
/// and what the build asks for itself, and ends the process. Throws UsageError.
Options optionsFrom(const QStringList &arguments);

} // namespace simulator

#endif
