// SPDX-License-Identifier: MIT

#include "Catalogue.h"
#include "CommandLine.h"
#include "Output.h"
#include "commands/Commands.h"
#include "documentation/Documentation.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTextCodec>
#include <QtCore/QTextStream>

namespace {

void print(const QString &text)
{
    QTextStream stream(stdout);
    stream.setCodec("UTF-8");
    stream << text;
}

ExitStatus run(const CommandLine &line, const QVector<Command> &commands, Output &output)
{
    const Catalogue catalogue;
    if (!line.generate.isEmpty()) {
        print(documentation(line.generate, commands, catalogue));
        return ExitStatus::Done;
    }
    if (line.version) {
        print(QStringLiteral("embosserctl %1\n").arg(QCoreApplication::applicationVersion()));
        return ExitStatus::Done;
    }
    if (line.help) {
        print(line.command ? commandHelp(*line.command) : programHelp(commands));
        return ExitStatus::Done;
    }
    return line.command->run(
        {line.arguments, line.options, line.collection, output, catalogue});
}

} // namespace

int main(int argc, char *argv[])
{
    // On a device without a locale, arguments are UTF-8 all the same.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("embosserctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(EMBOSSERCTL_VERSION));

    const QVector<Command> commands = allCommands();
    try {
        const CommandLine line = parseCommandLine(QCoreApplication::arguments(), commands);
        Output output(line.output);
        return int(run(line, commands, output));
    } catch (const Failure &failure) {
        Output output({});
        output.error(failure.message());
        if (failure.status() == ExitStatus::Usage)
            output.note(QStringLiteral("see 'embosserctl --help'"));
        return int(failure.status());
    }
}
