// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_MODEL_LAYEREDJSON_H
#define SIMULATOR_MODEL_LAYEREDJSON_H

#include <QtCore/QHash>
#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <functional>
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
    const QJsonObject &root() const { return m_root; }

    /// Throws JsonError for the value that the JSON pointer (RFC 6901) leads to. A value that does
    /// not exist is reported at the place where it should be; one that contradicts others, at that
    /// of them which stands in the outermost file, since its base was right without it.
    [[noreturn]] void refuse(const QString &pointer, const QString &reason,
                             const QStringList &contradicted = {}) const;

private:
    struct Layer
    {
        QString file;
        QHash<QString, int> lines; ///< by JSON pointer
    };

    QJsonObject read(const QString &file);

    QVector<Layer> m_layers; ///< the base last
    QJsonObject m_root;
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

    bool isText() const { return m_value.isString(); }
    bool isNumber() const { return m_value.isDouble(); }
    bool isObject() const { return m_value.isObject(); }
    bool isArray() const { return m_value.isArray(); }
    QString toText() const;
    double toNumber() const;
    int toInteger() const;
    bool toBool() const;
    QStringList toTexts() const;

    /// See LayeredJson::refuse().
    [[noreturn]] void refuse(const QString &reason,
                             const QVector<JsonNode> &contradicted = {}) const;

private:
    JsonNode(const LayeredJson &json, const QString &pointer, const QJsonValue &value);

    const LayeredJson *m_json;
    QString m_pointer;
    QJsonValue m_value;
};

} // namespace simulator

#endif
