// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "common/DeferredSignals.h"
#include "common/Utf8.h"
#include "configuration/Differences.h"
#include "configuration/EditableText.h"
#include "configuration/SettingDescriptions.h"
#include "library/Choices.h"
#include "library/Lookup.h"
#include "library/Sequence.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Editor.h"
#include "terminal/Output.h"

#include <QtCore/QDir>
#include <QtCore/QHash>
#include <QtCore/QJsonArray>
#include <QtCore/QSet>
#include <QtCore/QTemporaryFile>

#include <algorithm>
#include <csignal>
#include <optional>

namespace tool {

namespace {

/// A file that only the user can read, and that goes with the object unless it is to be kept.
class PrivateFile
{
public:
    explicit PrivateFile(const QString &text)
        : m_file(QDir::temp().filePath(QStringLiteral("embosserctl-XXXXXX.conf"))),
          m_text(text.toUtf8())
    {
        if (!m_file.open() || m_file.write(m_text) != m_text.size() || !m_file.flush())
            throwUnusable(m_file);
        m_file.close();
    }

    QString name() const { return m_file.fileName(); }

    /// What is in it now: an editor may have put another file in its place.
    QString text() const
    {
        const std::optional<QString> text = textFromUtf8(bytes());
        if (!text)
            throw Failure(ExitStatus::Usage, about(name(), QStringLiteral("it is not UTF-8")));
        return *text;
    }

    void keepIfChanged(const Output &output)
    {
        if (!QFile::exists(name()) || bytes() == m_text)
            return;
        m_file.setAutoRemove(false);
        output.error(QStringLiteral("the edited text is in %1").arg(name()));
    }

private:
    [[noreturn]] static void throwUnusable(const QFile &file)
    {
        throw Failure(ExitStatus::Failed, about(file.fileName(), file.errorString()));
    }

    QByteArray bytes() const
    {
        QFile file(name());
        if (!file.open(QFile::ReadOnly))
            throwUnusable(file);
        return file.readAll();
    }

    QTemporaryFile m_file;
    const QByteArray m_text;
};

/// Whether it can be read and written, and may be seen and copied.
bool canBeEdited(const Setting &setting)
{
    return setting.getter && setting.setter && !setting.isSecret && !setting.isIdentity;
}

/// Those of the names or patterns, or all, in the order of the catalogue.
QVector<const Setting *> settingsToEdit(const Request &request)
{
    QSet<const Setting *> meant;
    for (const QString &pattern : request.arguments) {
        const Setting *const named = request.catalogue.setting(pattern);
        QVector<const Setting *> found =
            named ? QVector<const Setting *>{named} : settingsLike(request.catalogue, pattern);
        found.erase(std::remove_if(found.begin(), found.end(),
                                   [](const Setting *setting) { return !canBeEdited(*setting); }),
                    found.end());
        if (found.isEmpty()) {
            throw Failure(
                ExitStatus::Usage,
                QStringLiteral("no setting that can be edited matches '%1'").arg(pattern));
        }
        for (const Setting *setting : qAsConst(found))
            meant.insert(setting);
    }
    QVector<const Setting *> settings;
    for (const Setting &setting : request.catalogue.settings()) {
        if (canBeEdited(setting) && (request.arguments.isEmpty() || meant.contains(&setting)))
            settings.append(&setting);
    }
    return settings;
}

/// What the user has made of the text.
class Edited
{
public:
    Edited(const QVector<QJsonObject> &descriptions, const Request &request, Session &session)
        : m_request(request), m_session(session)
    {
        for (const QJsonObject &description : descriptions) {
            m_held.insert(description.value(QLatin1String("name")).toString(),
                          description.value(QLatin1String("value")));
        }
    }

    /// Throws a Failure after all that is wrong with it has been said.
    void read(const QString &original, const QString &text);

    const QVariantMap &values() const { return m_values; }
    const Differences &differences() const { return m_differences; }

private:
    void read(const Assignment &assignment);

    const Request &m_request;
    Session &m_session;
    QHash<QString, QJsonValue> m_held;
    QHash<QString, QString> m_original;
    QSet<QString> m_read;
    QVariantMap m_values;
    Differences m_differences;
};

void Edited::read(const QString &original, const QString &text)
{
    for (const QString &line : original.split(QLatin1Char('\n'))) {
        if (const auto assignment = assignmentIn(line))
            m_original.insert(assignment->name, assignment->value);
    }
    bool isRight = true;
    int number = 0;
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        ++number;
        try {
            if (const auto assignment = assignmentIn(line))
                read(*assignment);
        } catch (const Failure &failure) {
            if (failure.status() != ExitStatus::Usage)
                throw;
            m_request.output.error(
                QStringLiteral("line %1: %2").arg(QString::number(number), failure.message()));
            isRight = false;
        }
    }
    if (!isRight)
        throw Failure(ExitStatus::Usage, QStringLiteral("nothing has been written"));
}

void Edited::read(const Assignment &assignment)
{
    const auto &[name, text] = assignment;
    const Setting &setting = writableSetting(m_request.catalogue, name);
    if (!m_held.contains(name))
        throw Failure(ExitStatus::Usage, QStringLiteral("%1 is not edited here").arg(name));
    if (m_read.contains(name))
        throw Failure(ExitStatus::Usage, QStringLiteral("%1 is given twice").arg(name));
    m_read.insert(name);
    const auto original = m_original.constFind(name);
    if (original != m_original.constEnd() && *original == text)
        return;
    try {
        const QVariant value = valueFromText(text, setting, m_request.catalogue, m_session);
        const QJsonValue wanted = toJson(value, setting.getter->result);
        if (wanted == m_held.value(name))
            return;
        m_values.insert(name, value);
        m_differences.insert(name, {m_held.value(name), wanted});
    } catch (const Failure &failure) {
        throw Failure(failure.status(), about(name, failure.message()));
    }
}

void write(const Edited &edited, const Request &request, Session *session)
{
    if (edited.values().isEmpty())
        request.output.note(QStringLiteral("nothing has been changed"));
    else if (!request.output.isJson())
        print(request.output, edited.differences(),
              {QStringLiteral("before"), QStringLiteral("after")}, QStringLiteral("(unknown)"));
    if (!edited.values().isEmpty())
        writeTogether(edited.values(), request.catalogue, session);
    if (request.output.isJson()) {
        request.output.json(QJsonObject{
            {QStringLiteral("settings"), QJsonArray::fromStringList(edited.values().keys())},
            {QStringLiteral("differences"),
             toJson(edited.differences(), QStringLiteral("first"), QStringLiteral("second"))}});
    }
}

ExitStatus runEdit(const Request &request)
{
    const QVector<const Setting *> settings = settingsToEdit(request);
    Session session(request.session);
    session.requireConnection();
    const QVector<QJsonObject> descriptions =
        describe(settings, request.catalogue, request.output, session);
    const QString text = editableText(descriptions, request.catalogue);
    PrivateFile file(text);
    const DeferredSignals untilTextIsSafe({SIGINT, SIGTERM, SIGHUP});
    try {
        editFile(file.name());
        DeferredSignals::throwIfCome();
        Edited edited(descriptions, request, session);
        edited.read(text, file.text());
        write(edited, request, &session);
    } catch (const Failure &) {
        file.keepIfChanged(request.output);
        throw;
    }
    return ExitStatus::Done;
}

} // namespace

Command editCommand()
{
    Command command;
    command.name = QStringLiteral("edit");
    command.arguments = QStringLiteral("[PATTERN...]");
    command.maxArguments = Command::AnyNumber;
    command.completion = Completion::WritableSetting;
    command.summary = QStringLiteral("change settings in an editor");
    command.description = QStringList{
        QStringLiteral(
            "Opens the settings in the editor of VISUAL or EDITOR, each with its meaning and its "
            "range or choices, and writes what has been changed when the editor is left, in one "
            "call: all of it, or nothing if the service refuses one. What has been changed is "
            "shown as by diff. PATTERN is a name, or is matched as by settings; without one, all "
            "settings are shown that can be read and written, but for secret ones and those that "
            "tell one device from another."),
        QStringLiteral("A line that is taken out leaves its setting as it is. If a line cannot be "
                       "read, the editor fails or the service refuses, nothing is written, and "
                       "the edited text is kept in a file that is named."),
    };
    command.run = runEdit;
    return command;
}

} // namespace tool
