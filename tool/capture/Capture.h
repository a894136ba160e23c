// SPDX-License-Identifier: MIT

#ifndef TOOL_CAPTURE_CAPTURE_H
#define TOOL_CAPTURE_CAPTURE_H

#include "capture/Recording.h"
#include "library/Catalogue.h"
#include "library/NameSource.h"
#include "library/Session.h"

#include <QtCore/QJsonObject>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <functional>
#include <optional>

namespace contract {
struct Setting;
} // namespace contract

namespace tool {

struct CaptureOptions
{
    bool withIdentity = false;
    bool withSecrets = false;
    /// Of keyed settings, by their names: what is known beside what the service tells.
    QMap<QString, QStringList> keys;
};

/// Makes of what a live service tells a profile with which the simulator answers the same.
class Capture
{
public:
    Capture(Session &session, const Catalogue &catalogue, const CaptureOptions &options);

    /// Reads everything; after each step, progress() is called.
    void read(const std::function<void()> &progress);

    /// How many steps there are.
    static int steps();

    /// The profile, without "capture", which says where it is from.
    QJsonObject profile() const;

    /// The names of the settings whose values are left out.
    QStringList leftOut() const { return m_leftOut; }
    const QVector<Recording::Unanswered> &unanswered() const { return m_recording.unanswered(); }

private:
    struct Choice
    {
        QString key;
        int value;
    };

    const Operation &operation(const char *name, int arguments) const;
    /// The answer; a refusal is recorded, and none returned.
    std::optional<QVariant> ask(const Operation &operation, const QVariantList &arguments = {});
    /// Records what has been answered, unless the profile makes the same of what else it has.
    void recordUnless(const QVariant &expected, const Operation &operation,
                      const QVariantList &arguments);

    void readValueLists(const std::function<void()> &progress);
    void readAnswers();
    void readAnswer(const Operation &operation);
    void readDocuments(const QString &kind, const Operation &operation);
    /// The settings whose names the map has, if it has no other names.
    void readSettingNames(const QString &member, const Operation &operation);
    void readSettings(const std::function<void()> &progress);
    void readSetting(const contract::Setting &setting, const QString &key);
    void readValue(const contract::Setting &setting, const QString &key, QJsonObject *entry);
    QVariantMap readMetadata(const contract::Setting &setting, const QString &name,
                             QJsonObject *entry);
    void readBounds(const contract::Setting &setting, const QString &name,
                    const QVariantMap &metadata, QJsonObject *entry);
    QStringList keysOf(const contract::Setting &setting);
    void readPapers();
    void readBraille();
    void readDistances(const QStringList &cells, const QStringList &spacings);

    bool isLeftOut(const QString &setting) const;
    QStringList names(const NameSource &source) const;

    Session &m_session;
    const Catalogue &m_catalogue;
    const CaptureOptions m_options;
    Recording m_recording;
    QMap<QString, QVector<Choice>> m_choices;
    QVariantMap m_values;   ///< of the settings
    QStringList m_reported; ///< the names in the service's report on its configuration
    QStringList m_leftOut;
    QStringList m_userSettings;
    QJsonObject m_settings;
    QJsonObject m_answers;
    QJsonObject m_documents;
    QJsonObject m_profile; ///< the other sections
};

} // namespace tool

#endif
