// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "common/Time.h"
#include "library/Session.h"
#include "terminal/Output.h"

#include <support/TerminationSignals.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QJsonObject>

namespace tool {

using libconfigurationmanager::AsyncConfigurationManager;

namespace {

void printState(Output &output, bool isConnected)
{
    const QString time = timeNow();
    if (output.isJson()) {
        output.jsonLine(QJsonObject{{QStringLiteral("time"), time},
                                    {QStringLiteral("connected"), isConnected}});
    } else {
        output.table(
            {{time, isConnected ? QStringLiteral("connected") : QStringLiteral("disconnected")}});
    }
    if (!output.isWritten())
        QCoreApplication::quit();
}

ExitStatus runMonitor(const Request &request)
{
    const support::TerminationSignals termination;
    Session session(request.session);
    session.requireBus();
    Session::whenBusIsLost(QCoreApplication::instance(), SLOT(quit()));

    AsyncConfigurationManager &library = session.library();
    QObject::connect(&library, &AsyncConfigurationManager::connected,
                     [&] { printState(request.output, true); });
    QObject::connect(&library, &AsyncConfigurationManager::disconnected,
                     [&] { printState(request.output, false); });
    printState(request.output, library.isConnected());
    // Nobody would see anything any more; the status tells why.
    if (request.output.isWritten())
        QCoreApplication::exec();
    session.requireBus();
    return ExitStatus::Done;
}

} // namespace

Command monitorCommand()
{
    Command command;
    command.name = QStringLiteral("monitor");
    command.summary = QStringLiteral("report when the service comes and goes, until Ctrl-C");
    command.description = QStringList{
        QStringLiteral("Prints the state of the connection with the time, first as it is and then "
                       "whenever it changes, until Ctrl-C. Exits with status 3 when the system bus "
                       "itself is lost. With --json, each line is an object."),
    };
    command.run = runMonitor;
    return command;
}

} // namespace tool
