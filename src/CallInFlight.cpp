// SPDX-License-Identifier: MIT

#include "CallInFlight.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QThread>

#include <atomic>

namespace libconfigurationmanager {
namespace detail {

namespace {

// Without destructors: threads go on while the process ends.
std::atomic<int> callCount{0};
std::atomic<bool> isEnding{false};
thread_local int loggingCount = 0;

struct Awaiting
{
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
