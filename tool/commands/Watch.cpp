// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "commandline/Seconds.h"
#include "common/JsonText.h"
#include "common/Time.h"
#include "library/Lookup.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"

#include <QtCore/QHash>
#include <QtCore/QJsonObject>

#include <poll.h>
#include <unistd.h>

namespace tool {

namespace {

const QString everyOption = QStringLiteral("every");

/// The value of a setting, or why there is none, as JSON has it.
QJsonObject stateOf(const Setting &setting, const Reply &reply)
{
    if (reply.error) {
        return {{QStringLiteral("error"),
                 errorToJson(ExitStatus::Failed, reason(setting.name, *reply.error))}};
    }
    return {{QStringLiteral("value"), toJson(reply.value, setting.getter->result)}};
}

void print(Output &output, const QString &name, QJsonObject state)
{
    const QString time = timeNow();
    if (output.isJson()) {
        state.insert(QStringLiteral("time"), time);
        state.insert(QStringLiteral("name"), name);
        output.jsonLine(state);
    } else if (state.contains(QStringLiteral("error"))) {
        output.table({{time, name, QStringLiteral("(refused)")}});
    } else {
        output.table({{time, name, toText(state.value(QStringLiteral("value")))}});
    }
}

/// Waits for a time, and no longer when nobody reads the output any more.
bool isReaderGone(std::chrono::milliseconds time)
{
    pollfd output{STDOUT_FILENO, 0, 0};
    return poll(&output, 1, int(time.count())) > 0;
}

ExitStatus runWatch(const Request &request)
{
    QVector<const Setting *> settings;
    for (const QString &name : request.arguments)
        settings += settingsMeant(request.catalogue, name);
    const std::chrono::milliseconds interval =
        secondsFrom(request.option(everyOption).value_or(QStringLiteral("1")));

    Session session(request.session);
    session.requireConnection();
    QHash<const Setting *, QJsonObject> states;
    while (request.output.isWritten()) {
        for (const auto &[setting, call] : session.beginToRead(settings)) {
            const QJsonObject state = stateOf(*setting, session.finish(call));
            if (states.contains(setting) && states.value(setting) == state)
                continue;
            states.insert(setting, state);
            print(request.output, setting->name, state);
        }
        if (isReaderGone(interval))
            break;
    }
    return ExitStatus::Done;
}

} // namespace

Command watchCommand()
{
    Command command;
    command.name = QStringLiteral("watch");
    command.arguments = QStringLiteral("NAME...");
    command.minArguments = 1;
    command.maxArguments = Command::AnyNumber;
    command.completion = Completion::ReadableSetting;
    command.options = {
        {everyOption, QStringLiteral("SECONDS"),
         QStringLiteral("read the settings so often, each second if not given")},
    };
    command.summary = QStringLiteral("report when settings change, until Ctrl-C");
    command.description = QStringList{
        QStringLiteral(
            "Prints each setting with the time, first as it is and then whenever it has "
            "changed, until Ctrl-C. The service does not tell of changes: the settings are "
            "read again and again, and what is changed and changed back between two "
            "readings is not seen. A NAME with the wildcards * or ? stands for all settings "
            "that it matches, but for secret ones. With --json, each line is an object."),
    };
    command.run = runWatch;
    return command;
}

} // namespace tool
