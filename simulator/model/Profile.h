// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_MODEL_PROFILE_H
#define SIMULATOR_MODEL_PROFILE_H

#include "model/LayeredJson.h"

#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <optional>

namespace contract {
class Interface;
} // namespace contract

namespace simulator {

class Settings;
struct Setting;

/// What a model says of one setting, or of one key of a keyed setting.
struct Parameter
{
    QVariant initial; ///< the value until one is set; invalid if that follows something
    QString follows;  ///< the property of the page that gives the value until one is set
    /// What the captured service had; it is as if it had been set. Invalid if that is the same.
    QVariant held;
    std::optional<double> min;
    std::optional<double> max;
    int precision = 0; ///< decimals
    QString unit;
    QString row; ///< name of the value list that has the allowed values; may be empty
    std::optional<int> maxLength; ///< of a text, in bytes of UTF-8
    QString below; ///< the setting whose value is to stay above this one's; may be empty
    /// The rules of which one must hold for another value than the initial one; may be empty.
    QStringList available;
    /// These, if none of them holds for the model; and those of them that look at what is set.
    QStringList unfulfilled;
    QStringList when;
    /// What the captured service said of the setting, and of the value that it had; may be null.
    QString proposition;
    QString sentence;
};

/// What a captured service answered to a call that the rest of the profile cannot tell.
struct RecordedAnswer
{
    QVariantList arguments; ///< without the collection id
    QVariant answer;
    QString error; ///< why the call was refused; null if it was answered
};

/// One entry of a value list.
struct Choice
{
    QString key; ///< what a text setting holds
    int value;   ///< what a number setting holds
    /// The rules about what is set of which one must hold; empty if it is always there.
    QStringList when = {};
};

/// Braille distances in millimetres; 0 is one that a captured service does not tell.
struct Cell
{
    double cellToCell = 0;
    double horizontalDotToDot = 0;
    double verticalDotToDot = 0;
    double lineToLine = 0;
    bool interline = false; ///< whether the dots of the back stand between the lines of the front
};

/// An embosser model: everything that the service knows without being told over the bus.
class Profile
{
public:
    /// Throws JsonError if the file does not describe a model that has these settings.
    Profile(const QString &file, const contract::Interface &interface, const Settings &settings);

    /// The models that are part of the program.
    static QStringList builtInModels();
    static QString fileOfBuiltIn(const QString &model);

    /// The setting that names the current paper.
    static QString currentPaper() { return QStringLiteral("PaperSize"); }

    /// The name of the file without its suffix.
    QString name() const { return m_name; }

    /// The answers to the queries without arguments, by method name.
    const QMap<QString, QVariant> &answers() const { return m_answers; }

    /// By name; a key follows the name of its setting and a slash.
    const QMap<QString, Parameter> &parameters() const { return m_parameters; }

    /// Those that the model has of the value lists' entries, whatever is set.
    const QMap<QString, QVector<Choice>> &rows() const { return m_rows; }

    /// The properties of each paper format, the lengths in millimetres.
    const QMap<QString, QVariantMap> &papers() const { return m_papers; }

    /// What of a paper cannot be printed on, in millimetres.
    double unprintableWidth() const { return m_unprintableWidth; }
    double unprintableLength() const { return m_unprintableLength; }

    const QMap<QString, Cell> &cells() const { return m_cells; }

    /// The factor by which a line spacing widens the distance of lines.
    const QMap<QString, double> &lineSpacings() const { return m_lineSpacings; }

    /// The paths of the stored documents by their names; `kind` is demo, manual or service.
    QVariantMap documents(const QString &kind) const { return m_documents.value(kind); }

    const QStringList &layoutParameters() const { return m_layoutParameters; }
    const QStringList &temporaryProperties() const { return m_temporaryProperties; }
    bool isUserSetting(const QString &setting) const { return m_userSettings.contains(setting); }

    /// Why a setting cannot have a value, in words that follow its name; empty if it can. Never
    /// has a text that somebody may have typed.
    QString objectionTo(const QString &name, const QVariant &value) const;

    /// Throws JsonError unless exactly these methods have an answer; in a capture, none but these.
    void requireAnswers(const QStringList &methods) const;

    /// Null when there is none for the call. The arguments are without the collection id.
    const RecordedAnswer *recorded(const QString &method, const QVariantList &arguments) const;

    /// The collection whose values a capture has; null if it is the master.
    QString capturedCollection() const { return m_capturedCollection; }

private:
    void readAnswers(const JsonNode &node, const contract::Interface &interface);
    QStringList rulesThatHold() const;
    /// The rules at a node of which none holds for the model; empty if it has none or one holds.
    QStringList unfulfilledRules(const JsonNode &node) const;
    void readRows(const JsonNode &node);
    void readParameters(const JsonNode &node, const Settings &settings);
    /// Refuses a value of the setting that is none of the members.
    void requireChoicesOf(const QString &setting, const JsonNode &members) const;
    /// Refuses kinds of printing that the model says it has not.
    void checkDuplex(const JsonNode &root) const;
    void checkPapers(const JsonNode &node) const;
    void checkOrder(const JsonNode &node) const;
    void checkFollowing(const JsonNode &node) const;
    /// The settings on which a property depends, also by way of others.
    QStringList allSourcesOf(const QString &property) const;
    /// What the profile says of the values that a setting can have.
    QVector<JsonNode> constraintsOf(const QString &setting) const;
    void readUserSettings(const JsonNode &node, const Settings &settings);
    void readCapture(const JsonNode &node);
    void readRecorded(const JsonNode &node, const contract::Interface &interface);
    /// Refuses what the model says of itself if it does not fit together.
    void checkConsistency(const JsonNode &root) const;
    QStringList readSettingNames(const JsonNode &node) const;
    QStringList suitablePapers() const;

    const LayeredJson m_json;
    const QString m_name;
    /// Whether an embosser has said all this, so that it may lack something or contradict itself.
    const bool m_isCapture;
    QString m_capturedCollection;
    QHash<QString, QVector<RecordedAnswer>> m_recorded; ///< by method
    QMap<QString, QVariant> m_answers;
    QMap<QString, Parameter> m_parameters;
    QMap<QString, QVector<Choice>> m_rows;
    QMap<QString, QVariantMap> m_papers;
    double m_unprintableWidth = 0;
    double m_unprintableLength = 0;
    QMap<QString, Cell> m_cells;
    QMap<QString, double> m_lineSpacings;
    QMap<QString, QVariantMap> m_documents;
    QStringList m_layoutParameters;
    QStringList m_temporaryProperties;
    QStringList m_userSettings;
};

} // namespace simulator

#endif
