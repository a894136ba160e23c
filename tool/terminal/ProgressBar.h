// SPDX-License-Identifier: MIT

#ifndef TOOL_TERMINAL_PROGRESSBAR_H
#define TOOL_TERMINAL_PROGRESSBAR_H

#include <QtCore/QtGlobal>

namespace tool {

/// A bar on the terminal of standard error; it is gone when the work is done.
class ProgressBar
{
public:
    ProgressBar(int steps, bool isShown);
    ~ProgressBar();
    Q_DISABLE_COPY(ProgressBar)

    /// One more step is done.
    void step();

private:
    int m_steps;
    int m_done = 0;
    bool m_isShown;
};

} // namespace tool

#endif
