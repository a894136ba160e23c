// SPDX-License-Identifier: MIT

#ifndef TESTS_EXAMPLES_EVENTLOOPWATCH_H
#define TESTS_EXAMPLES_EVENTLOOPWATCH_H

#include <QtCore/QObject>

#include <chrono>

/// Watches how long this thread's event loop is kept from waiting for the next event.
class EventLoopWatch : public QObject
{
    Q_OBJECT
public:
    using Duration = std::chrono::nanoseconds;

    EventLoopWatch();

    /// Of all times, the longest that was of the program's own making: without what the thread
    /// waited for a processor.
    Duration longest() const { return m_longest; }

private:
    void begin();
    void end();

    static Duration now();

    Duration m_begin;
    Duration m_longest{0};
};

#endif
