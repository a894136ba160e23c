// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "library/Session.h"
#include "terminal/Output.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtCore/QJsonObject>
#include <QtCore/QSocketNotifier>
#include <QtDBus/QDBusConnection>

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace tool {

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

/// Ends the event loop, in place of the process, on Ctrl-C and on the wish to terminate.
///
/// Make it before the first thread, which inherits that the signals are blocked.
class QuitOnSignal
{
public:
    QuitOnSignal() : m_file(blockedSignals()), m_notifier(m_file, QSocketNotifier::Read)
    {
        QObject::connect(&m_notifier, &QSocketNotifier::activated, &QCoreApplication::quit);
    }

    ~QuitOnSignal() { close(m_file); }
    Q_DISABLE_COPY(QuitOnSignal)

private:
    static int blockedSignals()
    {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGINT);
        sigaddset(&signals, SIGTERM);
        sigprocmask(SIG_BLOCK, &signals, nullptr);
        const int file = signalfd(-1, &signals, SFD_CLOEXEC);
        if (file == -1) {
            throw Failure(ExitStatus::Failed,
                          QStringLiteral("signals cannot be received: %1").arg(qt_error_string()));
        }
        return file;
    }

    int m_file;
    QSocketNotifier m_notifier;
};

void printState(Output &output, bool isConnected)
{
    const QDateTime now = QDateTime::currentDateTime();
    // Without this, the text would not tell the offset.
    const QString time = now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODateWithMs);
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
    const QuitOnSignal quitOnSignal;
    Session session(request.collection);
    session.requireBus();
    // Without the bus, nothing would ever come any more.
    QDBusConnection::systemBus().connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                                         QStringLiteral("org.freedesktop.DBus.Local"),
                                         QStringLiteral("Disconnected"),
                                         QCoreApplication::instance(), SLOT(quit()));

    ConfigurationManager &library = session.library();
    QObject::connect(&library, &ConfigurationManager::connected,
                     [&] { printState(request.output, true); });
    QObject::connect(&library, &ConfigurationManager::disconnected,
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
