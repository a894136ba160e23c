// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_TERMINATIONSIGNALS_H
#define SIMULATOR_TERMINATIONSIGNALS_H

#include <QtCore/QObject>

namespace simulator {

/// Turns SIGTERM and SIGINT into a signal of the event loop.
///
/// Make it before any thread is started: the threads inherit that they leave the signals alone.
class TerminationSignals : public QObject
{
    Q_OBJECT
public:
    TerminationSignals();
    ~TerminationSignals() override;

Q_SIGNALS:
    void received();

private:
    int m_descriptor = -1;
};

} // namespace simulator

#endif
