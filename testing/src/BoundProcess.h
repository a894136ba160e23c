// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_TESTING_BOUNDPROCESS_H
#define LIBCONFIGURATIONMANAGER_TESTING_BOUNDPROCESS_H

#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace libconfigurationmanager {

/// A process that never outlives the one that starts it.
class BoundProcess : public QProcess
{
    Q_OBJECT
public:
    /// The command is the program and its arguments.
    explicit BoundProcess(const QStringList &command);
    ~BoundProcess() override;

    /// Starts the process and returns the first line that it prints, which says that it is ready;
    /// null if there is none in time.
    QString startAndReadLine();

    /// Ends the process at once, as a crash would.
    void killAndWait();

    /// Asks the process to end and waits until it has.
    void terminateAndWait();

protected:
    void setupChildProcess() override;
};

/// The command of a bus that prints its address. It has the configuration of a file, or of a
/// session.
QStringList dbusDaemonCommand(const QString &socket, const QString &configuration = {});

} // namespace libconfigurationmanager

#endif
