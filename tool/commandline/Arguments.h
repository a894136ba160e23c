// SPDX-License-Identifier: MIT

#ifndef TOOL_COMMANDLINE_ARGUMENTS_H
#define TOOL_COMMANDLINE_ARGUMENTS_H

#include "commandline/Command.h"

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace tool {

/// Arguments, told apart.
struct Arguments
{
    QStringList positional;
    /// The options given, in their order.
    QStringList optionNames;
    /// Their values, by the long name; an empty list for a switch without a form.
    QHash<QString, QStringList> options;
};

/// Tells options from other arguments as getopt_long() does: they may stand anywhere, "--" ends
/// them, a value follows "=" or is the next argument whatever it begins with, and short ones may be
/// joined. Two things differ: no option is abbreviated, and what begins as a negative number is
/// not an option.
///
/// Throws a Failure for an option that is not known, that lacks its value or that takes none.
Arguments parseArguments(const QStringList &given, const QVector<Option> &known);

} // namespace tool

#endif
