// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "common/DeferredSignals.h"
#include "common/JsonText.h"
#include "library/Choices.h"
#include "library/Lookup.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"
#include "terminal/ProgressBar.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <csignal>
#include <optional>
#include <vector>

namespace tool {

namespace {

/// Asks for what a setting holds and may hold.
class SettingQuestion
{
public:
    /// Begins the calls; there are none for a secret.
    SettingQuestion(const Setting &setting, const Catalogue &catalogue, Session &session)
        : m_setting(setting), m_session(session)
    {
        if (setting.isSecret)
            return;
        m_value = session.begin(*setting.getter);
        m_choices.emplace(setting, catalogue, session);
    }

    /// What a setting is, holds and may hold; what the service does not tell is left out.
    QJsonObject answer();

private:
    const Setting &m_setting;
    Session &m_session;
    std::optional<Session::Call> m_value;
    std::optional<ChoicesQuestion> m_choices;
};

QJsonObject SettingQuestion::answer()
{
    QJsonObject object{{QStringLiteral("name"), m_setting.name},
                       {QStringLiteral("meaning"), m_setting.meaning},
                       {QStringLiteral("writable"), m_setting.setter != nullptr}};
    if (m_setting.isSecret) {
        object.insert(QStringLiteral("value"), QJsonValue());
        return object;
    }
    const Reply reply = m_session.finish(*m_value);
    if (reply.error)
        object.insert(QStringLiteral("error"), errorToJson(ExitStatus::Failed, *reply.error));
    else
        object.insert(QStringLiteral("value"), toJson(reply.value, m_setting.getter->result));
    const QJsonObject choices = toJson(m_choices->answer());
    for (auto member = choices.begin(); member != choices.end(); ++member)
        object.insert(member.key(), member.value());
    return object;
}

QStringList rowOf(const QJsonObject &object)
{
    const QJsonValue value = object.value(QStringLiteral("value"));
    return {object.value(QStringLiteral("name")).toString(),
            value.isUndefined() ? QStringLiteral("(refused)") : toText(value),
            object.value(QStringLiteral("range")).toString(),
            object.value(QStringLiteral("meaning")).toString()};
}

ExitStatus runSettings(const Request &request)
{
    const QVector<const Setting *> settings =
        settingsLike(request.catalogue, request.arguments.value(0));
    Session session(request.session);
    session.requireConnection();
    QJsonArray descriptions;
    QVector<QStringList> rows;
    {
        const DeferredSignals untilBarIsGone({SIGINT, SIGTERM});
        std::vector<SettingQuestion> questions;
        for (const Setting *setting : settings)
            questions.emplace_back(*setting, request.catalogue, session);
        ProgressBar progress(settings.size(), request.output.showsProgress());
        for (SettingQuestion &question : questions) {
            progress.step();
            DeferredSignals::throwIfCome();
            const QJsonObject object = question.answer();
            descriptions.append(object);
            rows.append(rowOf(object));
        }
    }
    if (request.output.isJson()) {
        request.output.json(descriptions);
    } else if (rows.isEmpty()) {
        request.output.note(
            QStringLiteral("no setting matches '%1'").arg(request.arguments.value(0)));
    } else {
        request.output.table(rows,
                             {QStringLiteral("Setting"), QStringLiteral("Value"),
                              QStringLiteral("Range or choices"), QStringLiteral("Meaning")},
                             {2, 3});
    }
    return ExitStatus::Done;
}

} // namespace

Command settingsCommand()
{
    Command command;
    command.name = QStringLiteral("settings");
    command.arguments = QStringLiteral("[PATTERN]");
    command.maxArguments = 1;
    command.completion = Completion::ReadableSetting;
    command.summary = QStringLiteral("list the settings with their values");
    command.description = QStringList{
        QStringLiteral(
            "Lists the settings, each with its value, its range and unit or the keys of its value "
            "list, as far as the service tells them, and its meaning. PATTERN is matched against "
            "any part "
            "of the name or the meaning or, if it contains the wildcards * or ?, against the whole "
            "name. Case is ignored."),
    };
    command.isLong = true;
    command.run = runSettings;
    return command;
}

} // namespace tool
