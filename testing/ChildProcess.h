// SPDX-License-Identifier: MIT

#ifndef TESTING_CHILDPROCESS_H
#define TESTING_CHILDPROCESS_H

#include "src/BoundProcess.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

/// A process that a test starts, and that never outlives the test.
///
/// Take it for every program: Qt starts a plain QProcess by a system call that the emulator of
/// another machine may lack, and then takes every process of the user for that program.
class ChildProcess : public libconfigurationmanager::BoundProcess
{
    Q_OBJECT
public:
    ChildProcess(const QString &program, const QStringList &arguments);

    /// Starts the process and returns the first line that it prints, which says that it is ready.
    ///
    /// Stops the test process if there is none: nothing could be tested.
    QString startAndReadLine();
};

#endif
