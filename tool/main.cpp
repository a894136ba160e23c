// SPDX-License-Identifier: MIT

#include "Catalogue.h"
#include "CommandLine.h"
#include "Output.h"
#include "Utf8.h"
#include "commands/Commands.h"
#include "documentation/Documentation.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTextCodec>

#include <fcntl.h>
#include <unistd.h>

using namespace tool;

namespace {

/// Opens the standard files that are closed: the next file that is opened, such as the connection
/// to the bus, would take their place. Reading finds nothing, and writing fails as it should.
void openStandardFiles()
{
    for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(file, F_GETFD) == -1)
            open("/dev/null", O_RDONLY);
    }
}

/// The arguments are not repeated: one of them may be a secret.
QStringList texts(const QVector<const char *> &arguments)
{
    QStringList texts;
    for (const char *argument : arguments) {
        const std::optional<QString> text = textFromUtf8(argument);
        if (!text) {
            throw Failure(ExitStatus::Usage,
                          QStringLiteral("argument %1 is not valid UTF-8").arg(texts.size()));
        }
        texts.append(*text);
    }
    return texts;
}

ExitStatus run(const CommandLine &line, const QVector<Command> &commands, Output &output)
{
    const Catalogue catalogue;
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
    return line.command->run({line.arguments, line.options, line.collection, output, catalogue});
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

int main(int argc, char *argv[])
{
    openStandardFiles();
    // On a device without a locale, names of files are UTF-8 all the same.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("embosserctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(EMBOSSERCTL_VERSION));

    const QVector<Command> commands = allCommands();
    Output output({});
    CommandLine line;
    try {
        line = parseCommandLine(texts(QVector<const char *>(argv, argv + argc)), commands);
    } catch (const Failure &failure) {
        output.error(failure.message());
        output.note(QStringLiteral("see 'embosserctl --help'"));
        return int(failure.status());
    }
    output = Output(line.output);
    try {
        return int(flushed(run(line, commands, output), output));
    } catch (const Failure &failure) {
        output.error(failure.message());
        return int(failure.status());
    }
}
