// SPDX-License-Identifier: MIT

#include "model/LayeredJson.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>

#include <cmath>
#include <json/reader.h>
#include <limits>
#include <memory>

namespace simulator {

namespace {

/// Null when there is none.
const Json::Value *memberOf(const Json::Value *value, const QString &key)
{
    if (!value || !value->isObject())
        return nullptr;
    const std::string name = key.toStdString();
    return value->find(name.data(), name.data() + name.size());
}

/// Null when the path leads nowhere.
const Json::Value *find(const Json::Value &root, const LayeredJson::Path &path)
{
    const Json::Value *value = &root;
    for (const QString &step : path) {
        if (value && value->isArray()) {
            const Json::ArrayIndex index = step.toUInt();
            value = value->isValidIndex(index) ? &(*value)[index] : nullptr;
        } else {
            value = memberOf(value, step);
        }
    }
    return value;
}

/// RFC 7396
void mergePatch(Json::Value &target, const Json::Value &patch)
{
    if (!patch.isObject()) {
        target = patch;
        return;
    }
    if (!target.isObject())
        target = Json::objectValue;
    for (auto member = patch.begin(); member != patch.end(); ++member) {
        if (member->isNull())
            target.removeMember(member.name());
        else
            mergePatch(target[member.name()], *member);
    }
}

/// Of what jsoncpp says about a text, the first line and reason.
[[noreturn]] void refuse(const QString &file, const std::string &errors)
{
    static const QRegularExpression first(QStringLiteral("Line (\\d+), Column \\d+\\s+([^\\n]*)"));
    const QRegularExpressionMatch match = first.match(QString::fromStdString(errors));
    throw JsonError(file, match.captured(1).toInt(), match.captured(2));
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
    m_layers.append(read(file));
    while (const Json::Value *name = memberOf(&m_layers.constLast().root, base)) {
        const Layer &layer = m_layers.constLast();
        if (!name->isString())
            layer.refuseBase(QStringLiteral("is not a string"));
        const QString text = QString::fromStdString(name->asString());
        const QString path = baseFile(text, layer.file);
        if (!QFile::exists(path))
            layer.refuseBase(QStringLiteral("there is no \"%1\"").arg(text));
        for (const Layer &other : qAsConst(m_layers)) {
            if (QFileInfo(other.file) == QFileInfo(path))
                layer.refuseBase(QStringLiteral("%1 is based on itself").arg(path));
        }
        m_layers.append(read(path));
    }
    for (auto layer = m_layers.crbegin(); layer != m_layers.crend(); ++layer)
        mergePatch(m_root, layer->root);
    m_root.removeMember(base.toStdString());
}

LayeredJson::Layer LayeredJson::read(const QString &file)
{
    QFile device(file);
    if (!device.open(QFile::ReadOnly))
        throw JsonError(file, 0, device.errorString());
    Layer layer{file, device.readAll(), {}};

    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    std::string errors;
    try {
        if (!reader->parse(layer.text.cbegin(), layer.text.cend(), &layer.root, &errors))
            simulator::refuse(file, errors);
    } catch (const Json::Exception &) {
        throw JsonError(file, 0, QStringLiteral("is nested too deeply"));
    }
    if (!layer.root.isObject())
        throw JsonError(file, 1, QStringLiteral("is not a JSON object"));
    return layer;
}

int LayeredJson::Layer::lineOf(const Json::Value &value) const
{
    return 1 + text.left(int(value.getOffsetStart())).count('\n');
}

void LayeredJson::Layer::refuseBase(const QString &reason) const
{
    throw JsonError(file, lineOf(root["base"]), QStringLiteral("base: ") + reason);
}

void LayeredJson::refuse(const Path &path, const QString &reason,
                         const QVector<Path> &contradicted) const
{
    const QString described = path.join(QLatin1Char('/'));
    for (QVector<Path> places = QVector<Path>{path} + contradicted;;) {
        for (const Layer &layer : m_layers) {
            for (const Path &place : qAsConst(places)) {
                if (const Json::Value *value = find(layer.root, place))
                    throw JsonError(layer.file, layer.lineOf(*value),
                                    described.isEmpty() ? reason
                                                        : described + QLatin1String(": ") + reason);
            }
        }
        places = {places.constFirst().mid(0, places.constFirst().size() - 1)};
    }
}

JsonNode::JsonNode(const LayeredJson &json) : JsonNode(json, {}, &json.root()) {}

JsonNode::JsonNode(const LayeredJson &json, const LayeredJson::Path &path, const Json::Value *value)
    : m_json(&json), m_path(path), m_value(value)
{
}

QStringList JsonNode::keys() const
{
    if (!isObject())
        refuse(QStringLiteral("is not an object"));
    QStringList keys;
    for (const std::string &name : m_value->getMemberNames())
        keys += QString::fromStdString(name);
    return keys;
}

bool JsonNode::has(const QString &key) const
{
    return memberOf(m_value, key) != nullptr;
}

JsonNode JsonNode::operator[](const QString &key) const
{
    return {*m_json, m_path + QStringList(key), memberOf(m_value, key)};
}

QVector<JsonNode> JsonNode::elements() const
{
    if (!isArray())
        refuse(QStringLiteral("is not an array"));
    QVector<JsonNode> nodes;
    for (const Json::Value &value : *m_value)
        nodes.append(
            JsonNode(*m_json, m_path + QStringList(QString::number(nodes.size())), &value));
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
    if (!m_value || !m_value->isString())
        refuse(QStringLiteral("is not a string"));
    return QString::fromStdString(m_value->asString());
}

double JsonNode::toNumber() const
{
    if (!isNumber())
        refuse(QStringLiteral("is not a number"));
    return m_value->asDouble();
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
    if (!m_value || !m_value->isBool())
        refuse(QStringLiteral("is neither true nor false"));
    return m_value->asBool();
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
    QVector<LayeredJson::Path> paths;
    for (const JsonNode &node : contradicted)
        paths += node.m_path;
    m_json->refuse(m_path, m_value ? reason : QStringLiteral("is missing"), paths);
}

} // namespace simulator
