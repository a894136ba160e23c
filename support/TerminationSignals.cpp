// SPDX-License-Identifier: MIT

#include "TerminationSignals.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>

#include <array>
#include <csignal>
#include <sys/eventfd.h>
#include <unistd.h>

namespace support {

namespace {

const std::array<int, 2> terminationSignals{SIGTERM, SIGINT};
int eventFile = -1;

void tellEventLoop(int)
{
    eventfd_write(eventFile, 1);
}

} // namespace

TerminationSignals::TerminationSignals()
{
    eventFile = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (eventFile == -1)
        qFatal("Signals cannot be received: %s", qPrintable(qt_error_string()));
    m_notifier = std::make_unique<QSocketNotifier>(eventFile, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, &QCoreApplication::quit);
    struct sigaction action = {};
    action.sa_handler = tellEventLoop;
    action.sa_flags = SA_RESTART | SA_RESETHAND;
    for (const int number : terminationSignals)
        sigaction(number, &action, nullptr);
}

TerminationSignals::~TerminationSignals()
{
    for (const int number : terminationSignals)
        std::signal(number, SIG_DFL);
    m_notifier.reset();
    close(eventFile);
}

} // namespace support
