// SPDX-License-Identifier: MIT

#include "Terminal.h"

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace {

const int patienceInMilliseconds = 30000;

} // namespace

Terminal::Terminal(const QStringList &arguments, int columns, int rows)
    : Terminal(QStringLiteral(EMBOSSERCTL), arguments, columns, rows)
{
}

Terminal::Terminal(const QString &program, const QStringList &arguments, int columns, int rows)
    : ChildProcess(program, arguments)
{
    winsize size = {};
    size.ws_col = static_cast<unsigned short>(columns);
    size.ws_row = static_cast<unsigned short>(rows);
    if (openpty(&m_master, &m_slave, nullptr, nullptr, &size) != 0)
        qFatal("no terminal: %s", std::strerror(errno));
    start();
    if (!waitForStarted())
        qFatal("%s: %s", qPrintable(program), qPrintable(errorString()));
    // The end of the program shows at the other end when nobody has this one open any more.
    ::close(m_slave);
}

Terminal::~Terminal()
{
    ::close(m_master);
}

bool Terminal::areThere()
{
    int master = -1;
    int slave = -1;
    if (openpty(&master, &slave, nullptr, nullptr, nullptr) != 0)
        return false;
    ::close(slave);
    ::close(master);
    return true;
}

void Terminal::setupChildProcess()
{
    ChildProcess::setupChildProcess();
    // A session of its own can take the terminal, and so get Ctrl-C from it.
    setsid();
    ioctl(m_slave, TIOCSCTTY, 0);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(m_slave, standard);
}

void Terminal::type(const QByteArray &keys) const
{
    if (::write(m_master, keys.constData(), size_t(keys.size())) != keys.size())
        qFatal("the terminal does not take what is typed");
}

bool Terminal::readMore()
{
    pollfd waiting{m_master, POLLIN, 0};
    if (poll(&waiting, 1, patienceInMilliseconds) != 1)
        return false;
    char buffer[4096];
    const ssize_t count = ::read(m_master, buffer, sizeof buffer);
    if (count > 0)
        m_shown.append(buffer, int(count));
    return count > 0;
}

bool Terminal::shows(const QByteArray &text)
{
    while (!m_shown.contains(text)) {
        if (!readMore())
            return false;
    }
    return true;
}

QByteArray Terminal::shownAtEnd()
{
    while (readMore()) {
    }
    waitForFinished();
    return m_shown;
}

bool Terminal::echoes() const
{
    termios attributes = {};
    tcgetattr(m_master, &attributes);
    return attributes.c_lflag & ECHO;
}
