// SPDX-License-Identifier: MIT

#ifndef SUPPORT_TERMINATIONSIGNALS_H
#define SUPPORT_TERMINATIONSIGNALS_H

#include <QtCore/QtGlobal>

#include <memory>

class QSocketNotifier;

namespace support {

/// While an object lives, the first SIGTERM or SIGINT ends the event loop in place of the process.
///
/// A second one ends the process: the loop may be busy with something that never ends. There is
/// one object at a time.
class TerminationSignals
{
public:
    TerminationSignals();
    ~TerminationSignals();
    Q_DISABLE_COPY(TerminationSignals)

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace support

#endif
