// SPDX-License-Identifier: MIT

#include "common/DeferredSignals.h"

#include "common/Failure.h"

#include <cstdio>

namespace tool {

namespace {

volatile std::sig_atomic_t caughtSignal = 0;

void catchSignal(int number)
{
    caughtSignal = number;
}

} // namespace

DeferredSignals::DeferredSignals(const QVector<int> &signals)
{
    caughtSignal = 0;
    struct sigaction action = {};
    action.sa_handler = catchSignal; // without SA_RESTART: a read is to end
    for (const int signal : signals) {
        struct sigaction previous = {};
        sigaction(signal, nullptr, &previous);
        // What ignores a signal, as nohup does, is to go on doing so.
        if (previous.sa_handler == SIG_IGN)
            continue;
        sigaction(signal, &action, nullptr);
        m_actions.append({signal, previous});
    }
}

DeferredSignals::~DeferredSignals()
{
    for (const Action &action : m_actions)
        sigaction(action.signal, &action.previous, nullptr);
    if (!caughtSignal)
        return;
    std::fflush(stdout);
    std::raise(caughtSignal);
}

void DeferredSignals::throwIfCome()
{
    if (caughtSignal)
        throw Failure(ExitStatus::Failed, QStringLiteral("interrupted"));
}

} // namespace tool
