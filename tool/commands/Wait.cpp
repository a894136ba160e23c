// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "commandline/Seconds.h"
#include "library/Session.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

namespace tool {

using libconfigurationmanager::AsyncConfigurationManager;

namespace {

const QString startOption = QStringLiteral("start");
const QString forOption = QStringLiteral("for");

ExitStatus runWait(const Request &request)
{
    std::optional<std::chrono::milliseconds> limit;
    if (const auto seconds = request.option(forOption))
        limit = secondsFrom(*seconds);
    Session session(request.session);
    session.requireBus();
    if (request.hasOption(startOption) && !session.library().isConnected())
        session.startService();
    if (session.library().isConnected())
        return ExitStatus::Done;

    QEventLoop loop;
    QObject::connect(&session.library(), &AsyncConfigurationManager::connected, &loop,
                     &QEventLoop::quit);
    Session::whenBusIsLost(&loop, SLOT(quit()));
    if (limit)
        QTimer::singleShot(*limit, &loop, &QEventLoop::quit);
    loop.exec();
    session.requireConnection();
    return ExitStatus::Done;
}

} // namespace

Command waitCommand()
{
    Command command;
    command.name = QStringLiteral("wait");
    command.options = {
        {startOption, {}, QStringLiteral("ask the bus to start the service")},
        {forOption, QStringLiteral("SECONDS"),
         QStringLiteral("wait no longer, and exit with status 3 if the service has not come")},
    };
    command.summary = QStringLiteral("wait until the service is there");
    command.description = QStringList{
        QStringLiteral(
            "Waits until the service is on the bus, and returns at once if it is. Without "
            "--for it waits without end, until Ctrl-C."),
    };
    command.run = runWait;
    return command;
}

} // namespace tool
