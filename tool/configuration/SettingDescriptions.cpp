// SPDX-License-Identifier: MIT

#include "configuration/SettingDescriptions.h"

#include "common/DeferredSignals.h"
#include "common/JsonText.h"
#include "library/Choices.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"
#include "terminal/ProgressBar.h"

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

} // namespace

QVector<QJsonObject> describe(const QVector<const Setting *> &settings, const Catalogue &catalogue,
                              const Output &output, Session &session)
{
    const DeferredSignals untilBarIsGone({SIGINT, SIGTERM});
    std::vector<SettingQuestion> questions;
    for (const Setting *setting : settings)
        questions.emplace_back(*setting, catalogue, session);
    ProgressBar progress(settings.size(), output.showsProgress());
    QVector<QJsonObject> descriptions;
    for (SettingQuestion &question : questions) {
        progress.step();
        DeferredSignals::throwIfCome();
        descriptions.append(question.answer());
    }
    return descriptions;
}

} // namespace tool
