// SPDX-License-Identifier: MIT

#include "Commands.h"

#include "../Configuration.h"
#include "../Output.h"

namespace {

ExitStatus run(const Request &request)
{
    const Configuration configuration = readConfiguration(request, request.collection);
    request.output.json(configurationToJson(configuration, request.catalogue));
    return configuration.status;
}

} // namespace

Command dumpCommand()
{
    Command command;
    command.name = QStringLiteral("dump");
    command.summary = QStringLiteral("print the whole configuration as JSON");
    command.description = QStringList{
        QStringLiteral("Prints every setting that can be both read and written, as JSON that diff "
                       "and restore read. Secret settings (Passphrase) are left out; their names "
                       "are listed. What the service does not tell is left out as well, and the "
                       "exit status is 1."),
        QStringLiteral("What identifies the device (SerialNo, MacAddress) is a setting like any "
                       "other: see the option --except of restore."),
    };
    command.run = run;
    return command;
}
