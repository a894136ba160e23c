// SPDX-License-Identifier: MIT

#include "CallInFlight.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QThread>

#include <atomic>
#include <pthread.h>

namespace libconfigurationmanager {
namespace detail {

namespace {

// Without destructors: threads go on while the process ends.
std::atomic<int> callCount{0};
std::atomic<bool> isEnding{false};
std::atomic<bool> hasForked{false};
thread_local int loggingCount = 0;

struct Awaiting
{
    Awaiting()
    {
        // The threads that were calling are not those of the child.
        pthread_atfork(nullptr, nullptr, [] {
            hasForked = true;
            callCount = 0;
        });
    }
    ~Awaiting()
    {
        isEnding = true;
        // A call ends at the latest when the bus's time-out of 25 seconds is over.
        const QDeadlineTimer deadline(30000);
        while (callCount > loggingCount && !deadline.hasExpired())
            QThread::msleep(1);
    }
};

} // namespace

void CallInFlight::awaitAllAtExit()
{
    static const Awaiting awaiting;
}

bool CallInFlight::isProcessEnding()
{
    return isEnding;
}

bool CallInFlight::isForked()
{
    return hasForked.load(std::memory_order_relaxed);
}

CallInFlight::CallInFlight()
{
    ++callCount;
}

CallInFlight::~CallInFlight()
{
    --callCount;
}

CallInFlight::Logging::Logging()
{
    ++loggingCount;
}

CallInFlight::Logging::~Logging()
{
    --loggingCount;
}

} // namespace detail
} // namespace libconfigurationmanager
