// SPDX-License-Identifier: MIT

#ifndef TESTS_TOOL_TERMINAL_H
#define TESTS_TOOL_TERMINAL_H

#include "ChildProcess.h"

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

/// A program on a terminal of its own; the tool, unless told otherwise.
class Terminal : public ChildProcess
{
    Q_OBJECT
public:
    /// Has so many columns and rows, or an unknown number.
    explicit Terminal(const QStringList &arguments, int columns = 0, int rows = 0);
    Terminal(const QString &program, const QStringList &arguments, int columns = 0, int rows = 0);
    ~Terminal() override;

    /// Whether this machine has terminals to give, which a container may lack.
    static bool areThere();

    void type(const QByteArray &keys) const;

    /// Waits until the terminal shows the text; returns false if that does not happen.
    bool shows(const QByteArray &text);

    /// Returns all that the terminal has shown, once the program has ended.
    QByteArray shownAtEnd();

    bool echoes() const;

protected:
    void setupChildProcess() override;

private:
    bool readMore();

    int m_master;
    int m_slave;
    QByteArray m_shown;
};

#endif
