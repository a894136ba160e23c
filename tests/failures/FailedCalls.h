// SPDX-License-Identifier: MIT

#ifndef TESTS_FAILURES_FAILEDCALLS_H
#define TESTS_FAILURES_FAILEDCALLS_H

#include "LogCapture.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QMetaMethod>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/QVector>

using Facade = libconfigurationmanager::detail::ConfigurationManager;

/// The one line that a call is to log; with an empty category, it is to log none.
struct ExpectedLine
{
    QString category;
    QRegularExpression text;
};

/// The line of an operation that finds the service absent.
ExpectedLine notConnectedLine();

/// The line of an operation whose call failed with an error of this message.
ExpectedLine errorLine(const QString &message);

/// Calls a slot by name and tells what was not as a failure is to be, empty when all was: the
/// default is returned, and one critical line logged, in the context of the private method.
QString deviation(Facade &facade, const QMetaMethod &slot, const QVariantList &arguments,
                  const ExpectedLine &expected);

/// The same for many slots, each with sample arguments.
QString deviations(Facade &facade, const QVector<QMetaMethod> &methods,
                   const ExpectedLine &expected);

/// The slot of this normalised signature.
QMetaMethod slotOf(const char *signature);

/// All operations and their variants.
QVector<QMetaMethod> allSlots();

#endif
