// SPDX-License-Identifier: MIT

#include "model/LayeredJson.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <cmath>
#include <cstring>
#include <limits>

namespace simulator {

namespace {

QString childPointer(const QString &pointer, QString key)
{
    key.replace(QLatin1Char('~'), QLatin1String("~0"));
    key.replace(QLatin1Char('/'), QLatin1String("~1"));
    return pointer + QLatin1Char('/') + key;
}

/// Finds the line of each value in a text that is known to be JSON: QJsonDocument does not say.
class LineIndex
{
public:
    LineIndex(const QString &file, const QByteArray &text) : m_file(file), m_text(text)
    {
        readValue(QString());
    }

    const QHash<QString, int> &lines() const { return m_lines; }

private:
    char next()
    {
        for (; m_offset < m_text.size() && std::strchr(" \t\r\n", current()); ++m_offset)
            m_line += current() == '\n';
        return m_offset < m_text.size() ? current() : '\0';
    }

    char current() const { return m_text.at(m_offset); }

    void readValue(const QString &pointer)
    {
        const char first = next();
        if (!m_lines.contains(pointer))
            m_lines.insert(pointer, m_line);
        if (first == '{')
            readMembers(pointer);
        else if (first == '[')
            readElements(pointer);
        else if (first == '"')
            readString();
        else
            while (m_offset < m_text.size() && !std::strchr(",]} \t\r\n", current()))
                ++m_offset;
    }

    void readMembers(const QString &pointer)
    {
        ++m_offset;
        while (next() != '}') {
            const QString key = readString();
            const QString member = childPointer(pointer, key);
            if (m_lines.contains(member))
                throw JsonError(m_file, m_line, QStringLiteral("a second \"%1\"").arg(key));
            m_lines.insert(member, m_line);
            next();
            ++m_offset; // the colon
            readValue(member);
            if (next() == ',')
                ++m_offset;
        }
        ++m_offset;
    }

    void readElements(const QString &pointer)
    {
        ++m_offset;
        for (int i = 0; next() != ']'; ++i) {
            readValue(childPointer(pointer, QString::number(i)));
            if (next() == ',')
                ++m_offset;
        }
        ++m_offset;
    }

    QString readString()
    {
        const int begin = m_offset++;
        for (; current() != '"'; ++m_offset) {
            if (current() == '\\')
                ++m_offset;
        }
        ++m_offset;
        const QByteArray array = '[' + m_text.mid(begin, m_offset - begin) + ']';
        return QJsonDocument::fromJson(array).array().at(0).toString();
    }

    const QString m_file;
    const QByteArray m_text;
    int m_offset = 0;
    int m_line = 1;
    QHash<QString, int> m_lines;
};

/// RFC 7396
QJsonValue mergePatch(const QJsonValue &target, const QJsonValue &patch)
{
    if (!patch.isObject())
        return patch;
    QJsonObject merged = target.toObject();
    const QJsonObject members = patch.toObject();
    for (auto member = members.begin(); member != members.end(); ++member) {
        if (member->isNull())
            merged.remove(member.key());
        else
            merged.insert(member.key(), mergePatch(merged.value(member.key()), *member));
    }
    return merged;
}

} // namespace

JsonError::JsonError(const QString &file, int line, const QString &reason)
    : std::runtime_error((line > 0
                              ? QStringLiteral("%1:%2: %3").arg(file, QString::number(line), reason)
                              : QStringLiteral("%1: %2").arg(file, reason))
                             .toStdString())
{
}

LayeredJson::LayeredJson(const QString &file, const BaseFile &baseFile)
{
    const QString base = QStringLiteral("base");
    QVector<QJsonObject> objects{read(file)};
    while (objects.constLast().contains(base)) {
        const QJsonValue name = objects.constLast().value(base);
        const QString pointer = QLatin1Char('/') + base;
        const Layer layer = m_layers.constLast();
        if (!name.isString())
            throw JsonError(layer.file, layer.lines.value(pointer),
                            QStringLiteral("base: is not a string"));
        const QString path = baseFile(name.toString(), layer.file);
        if (!QFile::exists(path))
            throw JsonError(layer.file, layer.lines.value(pointer),
                            QStringLiteral("base: there is no \"%1\"").arg(name.toString()));
        for (const Layer &other : qAsConst(m_layers)) {
            if (QFileInfo(other.file) == QFileInfo(path))
                throw JsonError(layer.file, layer.lines.value(pointer),
                                QStringLiteral("base: %1 is based on itself").arg(path));
        }
        objects.append(read(path));
    }
    for (auto layer = objects.crbegin(); layer != objects.crend(); ++layer)
        m_root = mergePatch(m_root, *layer).toObject();
    m_root.remove(base);
}

QJsonObject LayeredJson::read(const QString &file)
{
    QFile device(file);
    if (!device.open(QFile::ReadOnly))
        throw JsonError(file, 0, device.errorString());
    QByteArray text = device.readAll();
    const QByteArray byteOrderMark = QByteArrayLiteral("\xef\xbb\xbf");
    if (text.startsWith(byteOrderMark))
        text.remove(0, byteOrderMark.size());
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError)
        throw JsonError(file, 1 + text.left(error.offset).count('\n'), error.errorString());
    if (!document.isObject())
        throw JsonError(file, 1, QStringLiteral("is not a JSON object"));
    m_layers.append({file, LineIndex(file, text).lines()});
    return document.object();
}

void LayeredJson::refuse(const QString &pointer, const QString &reason,
                         const QStringList &contradicted) const
{
    const QString described = pointer.mid(1).replace(QLatin1String("~1"), QLatin1String("/"));
    for (QStringList places = QStringList(pointer) + contradicted;;) {
        for (const Layer &layer : m_layers) {
            for (const QString &place : qAsConst(places)) {
                if (layer.lines.contains(place))
                    throw JsonError(layer.file, layer.lines.value(place),
                                    described.isEmpty() ? reason
                                                        : described + QLatin1String(": ") + reason);
            }
        }
        const QString missing = places.constFirst();
        places = QStringList(missing.left(missing.lastIndexOf(QLatin1Char('/'))));
    }
}

JsonNode::JsonNode(const LayeredJson &json) : JsonNode(json, QString(), json.root()) {}

JsonNode::JsonNode(const LayeredJson &json, const QString &pointer, const QJsonValue &value)
    : m_json(&json), m_pointer(pointer), m_value(value)
{
}

QStringList JsonNode::keys() const
{
    if (!m_value.isObject())
        refuse(QStringLiteral("is not an object"));
    return m_value.toObject().keys();
}

bool JsonNode::has(const QString &key) const
{
    return m_value.toObject().contains(key);
}

JsonNode JsonNode::operator[](const QString &key) const
{
    return {*m_json, childPointer(m_pointer, key), m_value.toObject().value(key)};
}

QVector<JsonNode> JsonNode::elements() const
{
    if (!m_value.isArray())
        refuse(QStringLiteral("is not an array"));
    QVector<JsonNode> nodes;
    for (const QJsonValue value : m_value.toArray())
        nodes.append(
            JsonNode(*m_json, childPointer(m_pointer, QString::number(nodes.size())), value));
    return nodes;
}

void JsonNode::allowOnly(const QStringList &allowed, const QVector<JsonNode> &excluding) const
{
    for (const QString &key : keys()) {
        if (!allowed.contains(key))
            (*this)[key].refuse(
                QStringLiteral("is none of: %1").arg(allowed.join(QStringLiteral(", "))),
                excluding);
    }
}

QString JsonNode::toText() const
{
    if (!m_value.isString())
        refuse(QStringLiteral("is not a string"));
    return m_value.toString();
}

double JsonNode::toNumber() const
{
    if (!m_value.isDouble())
        refuse(QStringLiteral("is not a number"));
    return m_value.toDouble();
}

int JsonNode::toInteger() const
{
    const double number = toNumber();
    if (number != std::floor(number) || number < std::numeric_limits<int>::min() ||
        number > std::numeric_limits<int>::max())
        refuse(QStringLiteral("is not a 32-bit integer"));
    return int(number);
}

bool JsonNode::toBool() const
{
    if (!m_value.isBool())
        refuse(QStringLiteral("is neither true nor false"));
    return m_value.toBool();
}

QStringList JsonNode::toTexts() const
{
    QStringList texts;
    for (const JsonNode &element : elements())
        texts += element.toText();
    return texts;
}

void JsonNode::refuse(const QString &reason, const QVector<JsonNode> &contradicted) const
{
    QStringList pointers;
    for (const JsonNode &node : contradicted)
        pointers += node.m_pointer;
    m_json->refuse(m_pointer, m_value.isUndefined() ? QStringLiteral("is missing") : reason,
                   pointers);
}

} // namespace simulator
