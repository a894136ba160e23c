// SPDX-License-Identifier: MIT

#include "Program.h"

#include "commandline/CommandLine.h"
#include "commands/Commands.h"
#include "common/Utf8.h"
#include "documentation/Documentation.h"
#include "library/Catalogue.h"
#include "terminal/Output.h"

#include <QtCore/QCoreApplication>

namespace tool {

namespace {

/// The arguments are not repeated: one of them may be a secret.
QStringList texts(const QVector<QByteArray> &arguments)
{
    QStringList texts;
    for (const QByteArray &argument : arguments) {
        const std::optional<QString> text = textFromUtf8(argument);
        if (!text) {
            throw Failure(ExitStatus::Usage,
                          QStringLiteral("argument %1 is not valid UTF-8").arg(texts.size()));
        }
        texts.append(*text);
    }
    return texts;
}

/// While an object lives, what is long is collected, to be paged through.
class Paging
{
public:
    Paging(Output &output, const CommandLine &line) : m_output(output)
    {
        if (line.help || (line.command && line.command->isLong))
            m_output.beginPaging();
    }
    ~Paging() { m_output.endPaging(); }
    Q_DISABLE_COPY(Paging)

private:
    Output &m_output;
};

ExitStatus run(const CommandLine &line, const QVector<Command> &commands, Output &output)
{
    const Catalogue catalogue;
    const Paging paging(output, line);
    if (!line.generate.isEmpty()) {
        output.text(documentation(line.generate, commands, catalogue));
        return ExitStatus::Done;
    }
    if (line.version) {
        output.text(QStringLiteral("embosserctl %1\n").arg(QCoreApplication::applicationVersion()));
        return ExitStatus::Done;
    }
    if (line.help) {
        output.text(line.command ? commandHelp(*line.command) : programHelp(commands));
        return ExitStatus::Done;
    }
    const Request request{line.arguments, line.options, line.session, output, catalogue};
    if (!line.complete)
        return line.command->run(request);
    if (line.command->candidates) {
        for (const QString &candidate : line.command->candidates(request))
            output.line(candidate);
    }
    return ExitStatus::Done;
}

/// What a full disk has swallowed must not pass for done.
ExitStatus flushed(ExitStatus status, const Output &output)
{
    if (output.isWritten())
        return status;
    output.error(QStringLiteral("the output could not be written"));
    return ExitStatus::Failed;
}

} // namespace

int runProgram(const QVector<QByteArray> &arguments)
{
    const QVector<Command> commands = allCommands();
    Output output({});
    CommandLine line;
    try {
        line = parseCommandLine(texts(arguments), commands);
    } catch (const Failure &failure) {
        output.error(failure.message());
        output.note(QStringLiteral("see 'embosserctl --help'"));
        return int(failure.status());
    }
    output = Output(line.output);
    if (!line.busAddress.isEmpty())
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", line.busAddress.toUtf8());
    ExitStatus status = ExitStatus::Done;
    try {
        status = flushed(run(line, commands, output), output);
    } catch (const Failure &failure) {
        output.failure(failure);
        status = failure.status();
    }
    return int(status);
}

} // namespace tool
