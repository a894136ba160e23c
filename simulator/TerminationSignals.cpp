// SPDX-License-Identifier: MIT

#include "TerminationSignals.h"

#include <QtCore/QSocketNotifier>

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace simulator {

TerminationSignals::TerminationSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    m_descriptor = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    connect(new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this),
            &QSocketNotifier::activated, this, &TerminationSignals::received);
}

TerminationSignals::~TerminationSignals()
{
    close(m_descriptor);
}

} // namespace simulator
