// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_CALLINFLIGHT_H
#define LIBCONFIGURATIONMANAGER_CALLINFLIGHT_H

#include <QtCore/QtGlobal>

namespace libconfigurationmanager {
namespace detail {

/// A call that a thread is making, as long as it lives.
///
/// A process that ends while threads call hangs or crashes: Qt destroys what they wait on, and then
/// what logs. So the calls in flight are awaited before, and no further one is made.
class CallInFlight
{
public:
    /// Has the end of the process wait for the calls in flight. What is made last is destroyed
    /// first: Qt D-Bus must have been used before.
    static void awaitAllAtExit();

    /// Whether calls are no longer made, nor lines logged.
    static bool isProcessEnding();

    /// Whether this is the child of a fork(), where nobody reads from the bus: calls would wait for
    /// ever. Known from awaitAllAtExit() on.
    static bool isForked();

    CallInFlight();
    ~CallInFlight();
    Q_DISABLE_COPY(CallInFlight)

    /// A call that logs, as long as it lives: a message handler that ends the process does not wait
    /// for the call by which it is called.
    class Logging
    {
    public:
        Logging();
        ~Logging();
        Q_DISABLE_COPY(Logging)
    };
};

} // namespace detail
} // namespace libconfigurationmanager

#endif
