// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "configuration/Configuration.h"
#include "terminal/Output.h"

namespace tool {

namespace {

ExitStatus runDump(const Request &request)
{
    const Configuration configuration =
        readConfiguration(request.catalogue, request.output, request.session);
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
                       "and restore can read. Secret settings (Passphrase) are left out; their "
                       "names are listed. A setting that the service does not report is left out "
                       "as well, and the exit status is 1."),
        QStringLiteral("The type and the model of the embosser and the version of this program are "
                       "recorded. Settings that identify the device (SerialNo, MacAddress) are "
                       "included; restore leaves them out unless it is told otherwise."),
    };
    command.run = runDump;
    return command;
}

} // namespace tool
