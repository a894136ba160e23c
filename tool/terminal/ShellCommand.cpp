// SPDX-License-Identifier: MIT

#include "terminal/ShellCommand.h"

#include <QtCore/QVector>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tool {

namespace {

/// While an object lives, signals of the terminal are left to the program that has it, and writing
/// to one that has ended fails.
class SignalsForOthers
{
public:
    SignalsForOthers()
    {
        // What is ignored would be so in the other program, too.
        for (const int signal : {SIGINT, SIGQUIT, SIGPIPE})
            m_previous.append({signal, std::signal(signal, [](int) {})});
    }
    ~SignalsForOthers()
    {
        for (const Handler &handler : m_previous)
            std::signal(handler.signal, handler.function);
    }
    Q_DISABLE_COPY(SignalsForOthers)

private:
    struct Handler
    {
        int signal;
        void (*function)(int);
    };

    QVector<Handler> m_previous;
};

void writeAll(int file, const QByteArray &bytes)
{
    for (int written = 0; written < bytes.size();) {
        const ssize_t count =
            write(file, bytes.constData() + written, size_t(bytes.size() - written));
        if (count < 0)
            return;
        written += int(count);
    }
}

int statusOf(pid_t process)
{
    int status = 0;
    while (waitpid(process, &status, 0) == -1 && errno == EINTR) {
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace

int runInShell(const QByteArray &commandLine, const QByteArray &input)
{
    std::array<int, 2> ends{-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return commandNotFound;
    const auto [readingEnd, writingEnd] = ends;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (!input.isNull())
        posix_spawn_file_actions_adddup2(&actions, readingEnd, STDIN_FILENO);
    QByteArray shell = "sh";
    QByteArray option = "-c";
    QByteArray line = commandLine;
    const std::array<char *, 4> arguments{shell.data(), option.data(), line.data(), nullptr};
    const SignalsForOthers signals;
    pid_t process = 0;
    const int error =
        posix_spawnp(&process, shell.constData(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(readingEnd);
    if (error == 0)
        writeAll(writingEnd, input);
    close(writingEnd);
    return error == 0 ? statusOf(process) : commandNotFound;
}

} // namespace tool
