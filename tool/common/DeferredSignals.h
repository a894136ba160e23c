// SPDX-License-Identifier: MIT

#ifndef TOOL_COMMON_DEFERREDSIGNALS_H
#define TOOL_COMMON_DEFERREDSIGNALS_H

#include <QtCore/QVector>

#include <csignal>

namespace tool {

/// While an object lives, signals that would end the process only interrupt what it waits for. They
/// take effect when the object goes, after everything has been tidied up and reported.
class DeferredSignals
{
public:
    explicit DeferredSignals(const QVector<int> &signals);
    ~DeferredSignals();
    Q_DISABLE_COPY(DeferredSignals)

    /// Throws a Failure if a signal has come.
    static void throwIfCome();

private:
    struct Action
    {
        int signal;
        struct sigaction previous;
    };

    QVector<Action> m_actions;
};

} // namespace tool

#endif
