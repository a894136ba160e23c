// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_MODEL_LAYEREDJSON_H
#define SIMULATOR_MODEL_LAYEREDJSON_H

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <functional>
#include <json/value.h>
#include <stdexcept>

namespace simulator {

/// A JSON file that cannot be used; what() has file, line and reason.
class JsonError : public std::runtime_error
{
public:
    JsonError(const QString &file, int line, const QString &reason);
};

/// A JSON object in a file that may name another file, its base, which it changes as a JSON merge
/// patch (RFC 7396) does. Remembers in which file and line each value stands.
class LayeredJson
{
public:
    /// Where the base is that the member "base" of a file names.
    using BaseFile = std::function<QString(const QString &base, const QString &file)>;

    /// Throws JsonError.
    LayeredJson(const QString &file, const BaseFile &baseFile);

    /// All layers merged, without "base".
    const Json::Value &root() const { return m_root; }

    /// The names of members and the indexes of elements that lead to a value.
    using Path = QStringList;

    /// Throws JsonError for a value. One that does not exist is reported at the place where it
    /// should be; one that contradicts others, at that of them which stands in the outermost file,
    /// since its base was right without it.
    [[noreturn]] void refuse(const Path &path, const QString &reason,
                             const QVector<Path> &contradicted = {}) const;

private:
    struct Layer
    {
        QString file;
        QByteArray text;
        Json::Value root;

        int lineOf(const Json::Value &value) const;
        [[noreturn]] void refuseBase(const QString &reason) const;
    };

    static Layer read(const QString &file);

    QVector<Layer> m_layers; ///< the base last
    Json::Value m_root;
};

/// A value in a LayeredJson; what is not as it is asked for is refused with its place.
class JsonNode
{
public:
    explicit JsonNode(const LayeredJson &json);

    QStringList keys() const;
    bool has(const QString &key) const;
    JsonNode operator[](const QString &key) const;
    JsonNode operator[](const char *key) const { return (*this)[QString::fromLatin1(key)]; }
    QVector<JsonNode> elements() const;

    /// Refuses the first member that is not one of these, or that some value excludes.
    void allowOnly(const QStringList &allowed, const QVector<JsonNode> &excluding = {}) const;

    bool isNumber() const { return m_value && m_value->isNumeric(); }
    bool isObject() const { return m_value && m_value->isObject(); }
    bool isArray() const { return m_value && m_value->isArray(); }
    QString toText() const;
    double toNumber() const;
    int toInteger() const;
    bool toBool() const;
    QStringList toTexts() const;

    /// See LayeredJson::refuse().
    [[noreturn]] void refuse(const QString &reason,
                             const QVector<JsonNode> &contradicted = {}) const;

private:
    JsonNode(const LayeredJson &json, const LayeredJson::Path &path, const Json::Value *value);

    const LayeredJson *m_json;
    LayeredJson::Path m_path;
    const Json::Value *m_value; ///< null when there is none
};

} // namespace simulator

#endif
