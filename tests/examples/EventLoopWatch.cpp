// SPDX-License-Identifier: MIT

#include "EventLoopWatch.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QFile>

#include <algorithm>

EventLoopWatch::EventLoopWatch() : m_begin(now())
{
    const auto *dispatcher = QAbstractEventDispatcher::instance();
    connect(dispatcher, &QAbstractEventDispatcher::awake, this, &EventLoopWatch::begin);
    connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &EventLoopWatch::end);
}

void EventLoopWatch::begin()
{
    m_begin = now();
}

void EventLoopWatch::end()
{
    m_longest = std::max(m_longest, now() - m_begin);
}

/// A clock that stands still while the thread could run but gets no processor.
EventLoopWatch::Duration EventLoopWatch::now()
{
    // What the kernel says of a thread: the time on a processor, and the time spent waiting for
    // one.
    QFile statistics(QStringLiteral("/proc/thread-self/schedstat"));
    qint64 waited = 0;
    if (statistics.open(QFile::ReadOnly))
        waited = statistics.readAll().split(' ').value(1).toLongLong();
    return std::chrono::steady_clock::now().time_since_epoch() - Duration(waited);
}
