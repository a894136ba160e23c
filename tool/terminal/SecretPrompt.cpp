// SPDX-License-Identifier: MIT

#include "terminal/SecretPrompt.h"

#include "common/DeferredSignals.h"
#include "common/Failure.h"
#include "common/Utf8.h"

#include <QtCore/QFile>
#include <QtCore/QTextStream>

#include <csignal>
#include <cstdio>
#include <optional>
#include <termios.h>
#include <unistd.h>

namespace tool {

namespace {

/// A terminal that does not show what is typed. The process cannot be stopped meanwhile, and ends
/// by a signal only after the echo is back.
class EchoOff
{
public:
    explicit EchoOff(int terminal)
        : m_signals({SIGINT, SIGTERM, SIGHUP, SIGQUIT}), m_terminal(terminal)
    {
        tcgetattr(m_terminal, &m_attributes);
        termios silent = m_attributes;
        silent.c_lflag &= ~tcflag_t(ECHO);
        // Ctrl-Z is neither part of the secret nor to take away what has been typed before it.
        silent.c_lflag |= NOFLSH;
        m_stop = std::signal(SIGTSTP, SIG_IGN);
        tcsetattr(m_terminal, TCSAFLUSH, &silent);
    }

    ~EchoOff()
    {
        tcsetattr(m_terminal, TCSAFLUSH, &m_attributes);
        std::signal(SIGTSTP, m_stop);
    }
    Q_DISABLE_COPY(EchoOff)

private:
    const DeferredSignals m_signals;
    int m_terminal;
    termios m_attributes = {};
    void (*m_stop)(int) = SIG_DFL;
};

/// Reads a line; nothing if there is none, as after Ctrl-D, or a signal has come.
std::optional<QByteArray> readLine(int file)
{
    QByteArray line;
    char character = 0;
    while (read(file, &character, 1) == 1) {
        if (character == '\n')
            return line;
        line.append(character);
    }
    return std::nullopt;
}

QByteArray promptForSecret(const QString &name)
{
    QTextStream prompt(stderr);
    prompt << name << ": " << Qt::flush;
    const std::optional<QByteArray> line = [&] {
        const EchoOff echoOff(STDIN_FILENO);
        const std::optional<QByteArray> entered = readLine(STDIN_FILENO);
        prompt << Qt::endl;
        return entered;
    }();
    if (!line)
        throw Failure(ExitStatus::Usage, QStringLiteral("%1 was not entered").arg(name));
    return *line;
}

QByteArray pipedSecret(const QString &name)
{
    QFile input;
    input.open(stdin, QFile::ReadOnly);
    QByteArray secret = input.readAll();
    if (secret.endsWith('\n'))
        secret.chop(1);
    if (secret.contains('\n')) {
        throw Failure(ExitStatus::Usage,
                      QStringLiteral("%1 is more than one line on standard input").arg(name));
    }
    return secret;
}

} // namespace

QString readSecret(const QString &name)
{
    const QByteArray secret = isatty(STDIN_FILENO) ? promptForSecret(name) : pipedSecret(name);
    if (secret.isEmpty()) {
        throw Failure(ExitStatus::Usage,
                      QStringLiteral("%1 is empty; 'embosserctl set %1 \"\"' clears it").arg(name));
    }
    const std::optional<QString> text = textFromUtf8(secret);
    if (!text) {
        throw Failure(ExitStatus::Usage,
                      QStringLiteral("%1 contains a NUL or is not valid UTF-8").arg(name));
    }
    return *text;
}

} // namespace tool
