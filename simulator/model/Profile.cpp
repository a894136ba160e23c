// SPDX-License-Identifier: MIT

#include "model/Profile.h"

#include "model/DBusTypes.h"
#include "model/Page.h"
#include "model/Resources.h"
#include "model/Rules.h"
#include "model/Settings.h"

#include <contract/Interface.h>
#include <libconfigurationmanager/lcm.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtCore/QMetaEnum>

#include <algorithm>
#include <cmath>
#include <limits>

namespace simulator {

namespace {

using lcm::FeedType;

const QString abstractBase = QStringLiteral("Embosser");
const QString captureMember = QStringLiteral("capture");
const QString inch = QStringLiteral("inch");

QString baseFile(const QString &base, const QString &file)
{
    const QString builtIn = Profile::fileOfBuiltIn(base);
    return QFile::exists(builtIn) ? builtIn : QFileInfo(file).dir().filePath(base);
}

/// The number that a text of the form "Enumeration.Key" stands for; none if it is no such text.
std::optional<int> enumValue(const JsonNode &node)
{
    const QString text = node.toText();
    const QString enumeration = text.section(QLatin1Char('.'), 0, 0);
    const QMetaObject &meta = lcm::EnumDetail::staticMetaObject;
    const int index = meta.indexOfEnumerator(enumeration.toLatin1().constData());
    if (index < 0 || enumeration == text)
        return {};
    bool ok = false;
    const QString key = text.section(QLatin1Char('.'), 1);
    const int value = meta.enumerator(index).keyToValue(key.toLatin1().constData(), &ok);
    if (!ok)
        node.refuse(QStringLiteral("%1 has no key %2").arg(enumeration, key));
    return value;
}

/// A number, the key of an enumeration, or a list of keys of which each is a bit.
int readInteger(const JsonNode &node)
{
    if (node.isNumber())
        return node.toInteger();
    if (!node.isArray()) {
        const std::optional<int> value = enumValue(node);
        if (!value)
            node.refuse(QStringLiteral("is neither a number nor the key of an enumeration"));
        return *value;
    }
    int bits = 0;
    for (const JsonNode &element : node.elements())
        bits |= readInteger(element);
    return bits;
}

/// A length or a factor.
double readPositive(const JsonNode &node)
{
    // Also in hundredths, it is within an int.
    const double most = 1e6;
    const double number = node.toNumber();
    if (number <= 0 || number > most)
        node.refuse(QStringLiteral("is not above 0 and up to 1000000"));
    return number;
}

double readNotNegative(const JsonNode &node)
{
    const double number = node.toNumber();
    if (number < 0)
        node.refuse(QStringLiteral("is below 0"));
    return number;
}

/// How many of something.
int readCount(const JsonNode &node)
{
    readNotNegative(node);
    return node.toInteger();
}

/// A number that has a key in the enumeration, or that key.
template<typename Enumeration>
int readKey(const JsonNode &node)
{
    const auto enumeration = QMetaEnum::fromType<Enumeration>();
    const int value = readInteger(node);
    if (!enumeration.valueToKey(value))
        node.refuse(QStringLiteral("is not a value of %1")
                        .arg(QString::fromLatin1(enumeration.enumName())));
    return value;
}

/// Refuses what is no rule, or one of which nobody has said when it holds.
void requireRule(const JsonNode &node)
{
    const auto rules = QMetaEnum::fromType<lcm::ValidateCommand>();
    const QString text = node.toText();
    if (rules.keyToValue(text.toLatin1().constData()) < 0)
        node.refuse(QStringLiteral("is not a value of ValidateCommand"));
    if (!isRuleAboutModel(text) && !isRuleAboutSettings(text))
        node.refuse(QStringLiteral("is a rule of which the simulator does not know when it holds"));
}

/// Those of the rules that may hold at another time.
QStringList aboutSettings(const QStringList &rules)
{
    QStringList found;
    std::copy_if(rules.begin(), rules.end(), std::back_inserter(found), isRuleAboutSettings);
    return found;
}

QVariant readValue(const JsonNode &node, const QString &dbusType)
{
    if (dbusType == QLatin1String("i"))
        return readInteger(node);
    if (dbusType == QLatin1String("d"))
        return node.toNumber();
    if (dbusType == QLatin1String("b"))
        return node.toBool();
    return node.toText();
}

/// A value with its D-Bus type: {"i": 5}.
QVariant readTyped(const JsonNode &node);

QVariantMap readTypedMap(const JsonNode &node)
{
    QVariantMap map;
    for (const QString &key : node.keys())
        map.insert(key, readTyped(node[key]));
    return map;
}

QVariant readTyped(const JsonNode &node)
{
    const QStringList types = node.keys();
    if (types.size() != 1)
        node.refuse(QStringLiteral("is not one value with its type"));
    const QString &type = types.constFirst();
    const JsonNode value = node[type];
    if (type == QLatin1String("a{sv}"))
        return readTypedMap(value);
    if (type == QLatin1String("as"))
        return value.toTexts();
    if (type == QLatin1String("b"))
        return value.toBool();
    if (type == QLatin1String("s"))
        return value.toText();
    if (type == QLatin1String("d"))
        return value.toNumber();
    // A double has no more whole numbers.
    const double most = 1LL << std::numeric_limits<double>::digits;
    static const QHash<QString, QPair<double, double>> ranges{
        {QStringLiteral("y"), {0, std::numeric_limits<quint8>::max()}},
        {QStringLiteral("n"),
         {std::numeric_limits<qint16>::min(), std::numeric_limits<qint16>::max()}},
        {QStringLiteral("q"), {0, std::numeric_limits<quint16>::max()}},
        {QStringLiteral("i"),
         {std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()}},
        {QStringLiteral("u"), {0, std::numeric_limits<quint32>::max()}},
        {QStringLiteral("x"), {-most, most}},
        {QStringLiteral("t"), {0, most}}};
    const auto range = ranges.constFind(type);
    if (range == ranges.cend())
        value.refuse(QStringLiteral("is not of a type that can be read"));
    const double number = value.toNumber();
    if (number != std::floor(number) || number < range->first || number > range->second)
        value.refuse(QStringLiteral("is not a number of its type"));
    QVariant whole = qint64(number);
    whole.convert(metaTypeOf(type));
    return whole;
}

/// The result of a method.
QVariant readAnswer(const JsonNode &node, const QString &dbusType)
{
    if (dbusType == QLatin1String("a{sv}"))
        return readTypedMap(node);
    if (dbusType != QLatin1String("aa{sv}"))
        return readValue(node, dbusType);
    MapList list;
    for (const JsonNode &element : node.elements())
        list.append(readTypedMap(element));
    return QVariant::fromValue(list);
}

Choice readChoice(const JsonNode &node, int position)
{
    if (node.isNumber())
        return {QString::number(node.toInteger()), node.toInteger()};
    if (node.isObject()) {
        node.allowOnly(
            {QStringLiteral("key"), QStringLiteral("value"), QStringLiteral("available")});
        const Choice choice = readChoice(node["value"], position);
        return {node.has(QStringLiteral("key")) ? node["key"].toText() : choice.key, choice.value};
    }
    const std::optional<int> value = enumValue(node);
    return value ? Choice{node.toText().section(QLatin1Char('.'), 1), *value}
                 : Choice{node.toText(), position};
}

QVector<Choice> choicesOf(const QStringList &keys)
{
    QVector<Choice> choices;
    for (const QString &key : keys)
        choices.append({key, choices.size()});
    return choices;
}

/// The line that a model is of: a V5 variant is of that of its model.
QString lineOf(const QString &model)
{
    const QString variant = QStringLiteral("_V5");
    return model.endsWith(variant) ? model.chopped(variant.size()) : model;
}

QVector<Choice> modelChoices()
{
    using Type = lcm::EnumDetail::EmbosserType;
    const auto types = QMetaEnum::fromType<Type>();
    QVector<Choice> choices;
    for (int i = 0; i < types.keyCount(); ++i) {
        const auto type = Type(types.value(i));
        if (type != Type::Undefined && type != Type::BrailleEmbosser)
            choices.append({QString::fromLatin1(types.key(i)), types.value(i)});
    }
    return choices;
}

/// A paper as an embosser tells it, which may leave out what it does not know.
QVariantMap readCapturedPaper(const JsonNode &node)
{
    const QString unit = QStringLiteral("unit");
    QVariantMap paper;
    for (const QString &name : node.keys()) {
        if (!isPaperProperty(name))
            node[name].refuse(QStringLiteral("is not a property of a paper"));
        if (name == QLatin1String("width") || name == QLatin1String("height") ||
            name == QLatin1String("printHeadOffset"))
            paper.insert(name, node[name].toNumber());
        else if (name != unit)
            paper.insert(name, readInteger(node[name]));
    }
    if (node.has(unit)) {
        paper.insert(QStringLiteral("sizeUnit"), node[unit].toText());
        paper.insert(unit, node[unit].toText() == inch ? 1 : 0);
    }
    return paper;
}

QVariantMap readPaper(const JsonNode &node)
{
    using Orientation = lcm::EnumDetail::Orientation;
    const double millimetresPerInch = 25.4;

    node.allowOnly({QStringLiteral("width"), QStringLiteral("height"), QStringLiteral("unit"),
                    QStringLiteral("feedStep"), QStringLiteral("printHeadOffset"),
                    QStringLiteral("formatOrientation"), QStringLiteral("loadOrientation"),
                    QStringLiteral("feedType"), QStringLiteral("modelMask")});
    const double width = readPositive(node["width"]);
    const double height = readPositive(node["height"]);
    const QString unit = node["unit"].toText();
    if (unit != inch && unit != QLatin1String("mm"))
        node["unit"].refuse(QStringLiteral("is neither mm nor inch"));
    const auto orientation = Orientation(readKey<Orientation>(node["formatOrientation"]));
    const bool isLandscape = orientation == Orientation::Landscape;
    if (width != height && isLandscape != (width > height))
        node["formatOrientation"].refuse(QStringLiteral("does not agree with width and height"),
                                         {node["width"], node["height"]});
    // Whole millimetres and hundredths.
    const int hundredths = qRound(readPositive(node["feedStep"]) * 100);
    if (hundredths <= 0)
        node["feedStep"].refuse(QStringLiteral("is not above 0 in hundredths"));
    return {{QStringLiteral("width"), width},
            {QStringLiteral("height"), height},
            {QStringLiteral("inchesWidth"), qRound(width / millimetresPerInch)},
            {QStringLiteral("inchesHeight"), qRound(height / millimetresPerInch)},
            {QStringLiteral("sizeUnit"), unit},
            {QStringLiteral("unit"), unit == inch ? 1 : 0},
            {QStringLiteral("stepLength"), hundredths / 100},
            {QStringLiteral("stepLengthFraction"), hundredths % 100},
            {QStringLiteral("printHeadOffset"), node["printHeadOffset"].toNumber()},
            {QStringLiteral("formatOrientation"), int(orientation)},
            {QStringLiteral("loadOrientation"), readKey<Orientation>(node["loadOrientation"])},
            {QStringLiteral("feedType"), readKey<FeedType>(node["feedType"])},
            {QStringLiteral("modelMask"), readInteger(node["modelMask"])}};
}

Cell readCell(const JsonNode &node)
{
    node.allowOnly({QStringLiteral("cellToCell"), QStringLiteral("horizontal"),
                    QStringLiteral("vertical"), QStringLiteral("lineToLine"),
                    QStringLiteral("interline")});
    return {readPositive(node["cellToCell"]), readPositive(node["horizontal"]),
            readPositive(node["vertical"]), readPositive(node["lineToLine"]),
            node["interline"].toBool()};
}

/// A cell as an embosser tells it, which may leave out what it does not know.
Cell readCapturedCell(const JsonNode &node)
{
    node.allowOnly({QStringLiteral("cellToCell"), QStringLiteral("horizontal"),
                    QStringLiteral("vertical"), QStringLiteral("lineToLine"),
                    QStringLiteral("interline")});
    const auto length = [&](const char *name) {
        return node.has(QString::fromLatin1(name)) ? node[name].toNumber() : 0;
    };
    return {length("cellToCell"), length("horizontal"), length("vertical"), length("lineToLine"),
            node.has(QStringLiteral("interline")) && node["interline"].toBool()};
}

QString numberText(double number)
{
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

/// Whether the type takes a range.
bool isNumeric(const QString &dbusType)
{
    return dbusType == QLatin1String("i") || dbusType == QLatin1String("d");
}

/// What stands for a value that is not told: nothing, as near to it as the bounds allow.
QVariant zeroOf(const QString &dbusType, const Parameter &parameter)
{
    QVariant zero(metaTypeOf(dbusType), nullptr);
    if (isNumeric(dbusType) && parameter.min) {
        zero = qBound(*parameter.min, 0.0, *parameter.max);
        zero.convert(metaTypeOf(dbusType));
    }
    return zero;
}

Parameter readParameter(const JsonNode &node, const Setting &setting)
{
    Parameter parameter;
    const QString follows = QStringLiteral("follows");
    QStringList allowed{node.has(follows) ? follows : QStringLiteral("default"),
                        QStringLiteral("unit"), QStringLiteral("available")};
    if (node.has(follows))
        parameter.follows = node["follows"].toText();
    else
        parameter.initial = readValue(node["default"], setting.type);
    if (setting.type != QLatin1String("d")) {
        if (node.has(QStringLiteral("row")))
            parameter.row = node["row"].toText();
        allowed << QStringLiteral("row");
    }
    if (node.has(QStringLiteral("unit")))
        parameter.unit = node["unit"].toText();
    if (isNumeric(setting.type) && parameter.row.isEmpty()) {
        const bool isInteger = setting.type == QLatin1String("i");
        parameter.min = isInteger ? node["min"].toInteger() : node["min"].toNumber();
        parameter.max = isInteger ? node["max"].toInteger() : node["max"].toNumber();
        if (*parameter.min > *parameter.max)
            node["min"].refuse(QStringLiteral("is above max"), {node["max"]});
        if (node.has(QStringLiteral("below")))
            parameter.below = node["below"].toText();
        allowed << QStringLiteral("min") << QStringLiteral("max") << QStringLiteral("below");
    }
    if (setting.type == QLatin1String("d")) {
        if (node.has(QStringLiteral("precision")))
            parameter.precision = readCount(node["precision"]);
        allowed << QStringLiteral("precision");
    }
    if (setting.type == QLatin1String("s")) {
        if (node.has(QStringLiteral("maxLength")))
            parameter.maxLength = readCount(node["maxLength"]);
        allowed << QStringLiteral("maxLength");
    }
    node.allowOnly(allowed, {node["row"], node["follows"]});
    return parameter;
}

/// A setting as an embosser tells it, which may leave out what it does not know.
Parameter readCapturedParameter(const JsonNode &node, const Setting &setting)
{
    node.allowOnly({QStringLiteral("value"), QStringLiteral("default"), QStringLiteral("follows"),
                    QStringLiteral("min"), QStringLiteral("max"), QStringLiteral("precision"),
                    QStringLiteral("maxLength"), QStringLiteral("unit"), QStringLiteral("row"),
                    QStringLiteral("below"), QStringLiteral("available"),
                    QStringLiteral("proposition"), QStringLiteral("sentence")});
    const auto text = [&](const char *name) {
        return node.has(QString::fromLatin1(name)) ? node[name].toText() : QString();
    };
    const bool isInteger = setting.type == QLatin1String("i");
    const auto bound = [&](const char *name) -> std::optional<double> {
        if (!node.has(QString::fromLatin1(name)))
            return {};
        return isInteger ? node[name].toInteger() : node[name].toNumber();
    };
    const auto count = [&](const char *name) -> std::optional<int> {
        if (!node.has(QString::fromLatin1(name)))
            return {};
        return readCount(node[name]);
    };
    const auto value = [&](const char *name) {
        return node.has(QString::fromLatin1(name)) ? readValue(node[name], setting.type)
                                                   : QVariant();
    };
    Parameter parameter;
    parameter.follows = text("follows");
    parameter.held = value("value");
    parameter.min = bound("min");
    parameter.max = bound("max");
    if (parameter.min.has_value() != parameter.max.has_value())
        node[parameter.min ? "max" : "min"].refuse(QString());
    if (parameter.follows.isEmpty()) {
        parameter.initial = value("default");
        if (!parameter.initial.isValid())
            parameter.initial = parameter.held;
        if (!parameter.initial.isValid())
            parameter.initial = zeroOf(setting.type, parameter);
    }
    parameter.precision = count("precision").value_or(0);
    parameter.maxLength = count("maxLength");
    parameter.unit = text("unit");
    parameter.row = text("row");
    parameter.below = text("below");
    parameter.proposition = text("proposition");
    parameter.sentence = text("sentence");
    return parameter;
}

/// The queries that tell whether a model has a feed.
const QMap<FeedType, QString> &feedCapabilities()
{
    static const QMap<FeedType, QString> queries{
        {FeedType::Tractor, QStringLiteral("hasTractorFeed")},
        {FeedType::Feeder, QStringLiteral("hasFeeder")}};
    return queries;
}

/// Refuses answers that contradict each other.
void checkAnswers(const JsonNode &node)
{
    const int type = readKey<lcm::EnumDetail::EmbosserType>(node["getType"]);
    const auto feed = FeedType(readKey<FeedType>(node["getFeedType"]));
    readKey<lcm::EnumDetail::HeadType>(node["getHeadType"]);
    readKey<lcm::EnumDetail::ModelMask>(node["getModelMask"]);

    QMap<QString, bool> isOfLine;
    for (const Choice &model : modelChoices())
        isOfLine[lineOf(model.key)] |= model.value == type;
    for (auto line = isOfLine.begin(); line != isOfLine.end(); ++line) {
        const JsonNode answer = node[QStringLiteral("is") + line.key()];
        if (answer.toBool() != *line)
            answer.refuse(QStringLiteral("does not agree with getType"), {node["getType"]});
    }
    const auto capability = feedCapabilities().constFind(feed);
    if (capability != feedCapabilities().cend() && !node[*capability].toBool())
        node[*capability].refuse(QStringLiteral("does not agree with getFeedType"),
                                 {node["getFeedType"]});
}

} // namespace

QStringList Profile::builtInModels()
{
    QStringList models;
    for (const QFileInfo &file : QDir(builtInProfiles()).entryInfoList()) {
        if (file.completeBaseName() != abstractBase)
            models += file.completeBaseName();
    }
    return models;
}

QString Profile::fileOfBuiltIn(const QString &model)
{
    return QStringLiteral("%1/%2.json").arg(builtInProfiles(), model);
}

Profile::Profile(const QString &file, const contract::Interface &interface,
                 const Settings &settings)
    : m_json(file, baseFile),
      m_name(QFileInfo(file).completeBaseName()),
      m_isCapture(JsonNode(m_json).has(captureMember))
{
    const JsonNode root(m_json);
    if (m_isCapture)
        readCapture(root[captureMember]);
    root.allowOnly({QStringLiteral("answers"), QStringLiteral("settings"), QStringLiteral("rows"),
                    QStringLiteral("papers"), QStringLiteral("unprintable"),
                    QStringLiteral("cells"), QStringLiteral("lineSpacings"),
                    QStringLiteral("documents"), QStringLiteral("layoutParameters"),
                    QStringLiteral("temporaryProperties"), QStringLiteral("userSettings"),
                    QStringLiteral("recorded"), captureMember});

    readAnswers(root["answers"], interface);
    for (const QString &name : root["papers"].keys())
        m_papers.insert(name, m_isCapture ? readCapturedPaper(root["papers"][name])
                                          : readPaper(root["papers"][name]));
    root["unprintable"].allowOnly({QStringLiteral("width"), QStringLiteral("length")});
    if (!m_isCapture || !root["unprintable"].keys().isEmpty()) {
        m_unprintableWidth = readNotNegative(root["unprintable"]["width"]);
        m_unprintableLength = readNotNegative(root["unprintable"]["length"]);
    }
    for (const QString &name : root["cells"].keys())
        m_cells.insert(name, m_isCapture ? readCapturedCell(root["cells"][name])
                                         : readCell(root["cells"][name]));
    for (const QString &name : root["lineSpacings"].keys())
        m_lineSpacings.insert(name, readPositive(root["lineSpacings"][name]));
    root["documents"].allowOnly(
        {QStringLiteral("demo"), QStringLiteral("manual"), QStringLiteral("service")});
    for (const QString &kind : root["documents"].keys()) {
        const JsonNode documents = root["documents"][kind];
        for (const QString &name : documents.keys())
            m_documents[kind].insert(name, documents[name].toText());
    }
    if (suitablePapers().isEmpty() && !m_isCapture)
        root["answers"]["getMaskValue"].refuse(
            QStringLiteral("there is no paper for it and for getFeedType"),
            {root["answers"]["getFeedType"], root["papers"]});
    readRows(root["rows"]);
    readParameters(root["settings"], settings);
    if (!m_isCapture)
        checkConsistency(root);
    checkFollowing(root["settings"]);
    checkOrder(root["settings"]);
    m_layoutParameters = readSettingNames(root["layoutParameters"]);
    m_temporaryProperties = readSettingNames(root["temporaryProperties"]);
    readUserSettings(root["userSettings"], settings);
    if (root.has(QStringLiteral("recorded")))
        readRecorded(root["recorded"], interface);
}

void Profile::checkConsistency(const JsonNode &root) const
{
    requireChoicesOf(currentPaper(), root["papers"]);
    requireChoicesOf(QStringLiteral("BrailleCellSize"), root["cells"]);
    requireChoicesOf(QStringLiteral("GraphicCellSize"), root["cells"]);
    requireChoicesOf(QStringLiteral("BrailleLineSpacing"), root["lineSpacings"]);
    const QString brailleCellDots = QStringLiteral("BrailleCellDots");
    if (m_parameters.value(brailleCellDots).row.isEmpty())
        root["settings"][brailleCellDots]["row"].refuse(QString());
    for (const Choice &choice : m_rows.value(m_parameters.value(brailleCellDots).row)) {
        if (rowsOf(choice.key) == 0)
            root["rows"][m_parameters.value(brailleCellDots).row].refuse(
                QStringLiteral("has a choice that is neither SixDot nor EightDot"));
    }
    checkDuplex(root);
    checkPapers(root["papers"]);
}

void Profile::readCapture(const JsonNode &node)
{
    const QString collection = QStringLiteral("collection");
    node.allowOnly({QStringLiteral("tool"), QStringLiteral("leftOut"), collection});
    if (node.has(collection))
        m_capturedCollection = node[collection].toText();
}

void Profile::readRecorded(const JsonNode &node, const contract::Interface &interface)
{
    const QString error = QStringLiteral("error");
    for (const JsonNode &element : node.elements()) {
        element.allowOnly({QStringLiteral("method"), QStringLiteral("arguments"),
                           element.has(error) ? error : QStringLiteral("answer")});
        const contract::Method *method = interface.method(element["method"].toText());
        if (!method || method->writes || method->resultType.isEmpty())
            element["method"].refuse(QStringLiteral("is not a query of the service"));
        QStringList types;
        for (const contract::Argument &argument : method->arguments) {
            if (argument.role != contract::Role::CollectionId)
                types += argument.type;
        }
        RecordedAnswer recorded;
        const QVector<JsonNode> arguments = element["arguments"].elements();
        if (arguments.size() != types.size())
            element["arguments"].refuse(QStringLiteral("are not those of the method"));
        for (int i = 0; i < arguments.size(); ++i)
            recorded.arguments += readValue(arguments[i], types[i]);
        if (element.has(error))
            recorded.error = element["error"].toText();
        else
            recorded.answer = readAnswer(element["answer"], method->resultType);
        m_recorded[method->name].append(recorded);
    }
}

const RecordedAnswer *Profile::recorded(const QString &method, const QVariantList &arguments) const
{
    const auto answers = m_recorded.constFind(method);
    if (answers == m_recorded.cend())
        return nullptr;
    const auto *const found =
        std::find_if(answers->cbegin(), answers->cend(),
                     [&](const RecordedAnswer &each) { return each.arguments == arguments; });
    return found == answers->cend() ? nullptr : &*found;
}

void Profile::readAnswers(const JsonNode &node, const contract::Interface &interface)
{
    for (const QString &name : node.keys()) {
        const contract::Method *method = interface.method(name);
        if (!method)
            node[name].refuse(QStringLiteral("is not a method of the service"));
        m_answers.insert(name, readValue(node[name], method->resultType));
    }
    if (!m_isCapture)
        checkAnswers(node);
}

QStringList Profile::rulesThatHold() const
{
    using ModelMask = lcm::ModelMask;
    const auto masks = QMetaEnum::fromType<ModelMask>();
    QStringList rules{QStringLiteral("AlwaysValid")};
    if (m_answers.value(QStringLiteral("isDoubleSided")).toBool())
        rules += QStringLiteral("IsDoubleSided");
    if (m_answers.value(QStringLiteral("isUserPaperCompatible")).toBool())
        rules += QStringLiteral("UserPaperAvailable");
    const int mask = m_answers.value(QStringLiteral("getMaskValue")).toInt();
    for (int i = 0; i < masks.keyCount(); ++i) {
        if (masks.value(i) & mask)
            rules += QStringLiteral("ModelIs") + QString::fromLatin1(masks.key(i));
    }
    return rules;
}

QStringList Profile::unfulfilledRules(const JsonNode &node) const
{
    const QString member = QStringLiteral("available");
    if (!node.has(member))
        return {};
    const QStringList holding = rulesThatHold();
    QStringList unfulfilled;
    for (const JsonNode &rule : node[member].elements()) {
        requireRule(rule);
        if (holding.contains(rule.toText()))
            return {};
        unfulfilled += rule.toText();
    }
    return unfulfilled;
}

void Profile::readRows(const JsonNode &node)
{
    // What these lists hold stands elsewhere already.
    m_rows = {{QStringLiteral("Model"), modelChoices()},
              {QStringLiteral("Papers"), choicesOf(suitablePapers())},
              {QStringLiteral("DemoFiles"), choicesOf(documents(QStringLiteral("demo")).keys())},
              {QStringLiteral("Manuals"), choicesOf(documents(QStringLiteral("manual")).keys())}};
    const auto rows = QMetaEnum::fromType<lcm::EnumDetail::RowValueList>();
    QStringList names;
    for (int i = 0; i < rows.keyCount(); ++i) {
        const QString name = QString::fromLatin1(rows.key(i));
        // A captured service tells these lists as well, but perhaps not all of the others.
        if (m_isCapture ? !node.has(name) : m_rows.contains(name))
            continue;
        names += name;
        QVector<Choice> &choices = m_rows[name];
        choices.clear();
        int position = 0;
        for (const JsonNode &element : node[name].elements()) {
            Choice choice = readChoice(element, position++);
            const QStringList unfulfilled = unfulfilledRules(element);
            choice.when = aboutSettings(unfulfilled);
            if (!unfulfilled.isEmpty() && choice.when.isEmpty())
                continue;
            for (const Choice &other : m_isCapture ? QVector<Choice>() : choices) {
                if (choice.key == other.key || choice.value == other.value)
                    element.refuse(QStringLiteral("has the key or the value of another entry"));
            }
            choices.append(choice);
        }
        if (choices.isEmpty() && !m_isCapture)
            node[name].refuse(QStringLiteral("is empty"));
    }
    node.allowOnly(names);
}

void Profile::readParameters(const JsonNode &node, const Settings &settings)
{
    for (const QString &name : node.keys()) {
        const JsonNode member = node[name];
        const auto setting = settings.all().constFind(name.section(QLatin1Char('/'), 0, 0));
        if (setting == settings.all().cend())
            member.refuse(QStringLiteral("is not a setting of the service"));
        if (setting->keyed != name.contains(QLatin1Char('/')))
            member.refuse(setting->keyed ? QStringLiteral("needs a key, after a slash")
                                         : QStringLiteral("takes no key"));
        Parameter parameter =
            m_isCapture ? readCapturedParameter(member, *setting) : readParameter(member, *setting);
        parameter.unfulfilled = unfulfilledRules(member);
        parameter.when = aboutSettings(parameter.unfulfilled);
        if (member.has(QStringLiteral("available")))
            parameter.available = member["available"].toTexts();
        m_parameters.insert(name, parameter);
        if (!parameter.row.isEmpty() && !m_isCapture && !m_rows.contains(parameter.row))
            member["row"].refuse(QStringLiteral("is not a value list"));
        if (parameter.follows.isEmpty()) {
            const QString objection = objectionTo(name, parameter.initial);
            if (!objection.isEmpty() && !m_isCapture)
                member["default"].refuse(objection, constraintsOf(name));
        } else if (!isPageProperty(parameter.follows) && !isPaperProperty(parameter.follows)) {
            member["follows"].refuse(QStringLiteral("is not a property of a paper or a page"));
        }
    }
    for (const Setting &setting : settings.all()) {
        const QString name = setting.keyed ? setting.name + QLatin1Char('/') : setting.name;
        const auto next = m_parameters.lowerBound(name);
        if (next != m_parameters.cend() &&
            (setting.keyed ? next.key().startsWith(name) : next.key() == name))
            continue;
        if (!m_isCapture)
            node[name].refuse(QString());
        if (!setting.keyed)
            m_parameters[name].initial = zeroOf(setting.type, {});
    }
}

void Profile::requireChoicesOf(const QString &setting, const JsonNode &members) const
{
    const QString row = m_parameters.value(setting).row;
    if (row.isEmpty())
        JsonNode(m_json)["settings"][setting]["row"].refuse(QString());
    for (const Choice &choice : m_rows.value(row)) {
        if (!members.has(choice.key))
            members[choice.key].refuse(QString(), constraintsOf(setting));
    }
}

QStringList Profile::suitablePapers() const
{
    const int mask = m_answers.value(QStringLiteral("getMaskValue")).toInt();
    const QVariant feed = m_answers.value(QStringLiteral("getFeedType"));
    const int any = int(lcm::EnumDetail::FeedType::Ignore);
    const auto has = [this](int paperFeed) {
        const auto capability = feedCapabilities().constFind(FeedType(paperFeed));
        return capability != feedCapabilities().cend() && m_answers.value(*capability).toBool();
    };
    QStringList names;
    for (auto paper = m_papers.begin(); paper != m_papers.end(); ++paper) {
        const int paperFeed = paper->value(QStringLiteral("feedType")).toInt();
        if ((paper->value(QStringLiteral("modelMask")).toInt() & mask) &&
            (feed == any || paperFeed == any || feed == paperFeed || has(paperFeed)))
            names += paper.key();
    }
    return names;
}

void Profile::checkDuplex(const JsonNode &root) const
{
    const QMap<QString, QString> capabilities{
        {QStringLiteral("Booklet"), QStringLiteral("hasBooklet")},
        {QStringLiteral("Double"), QStringLiteral("isDoubleSided")}};
    for (const Choice &choice : m_rows.value(QStringLiteral("Duplex"))) {
        for (auto kind = capabilities.begin(); kind != capabilities.end(); ++kind) {
            if (choice.key.contains(kind.key()) && !m_answers.value(*kind).toBool())
                root["answers"][*kind].refuse(
                    QStringLiteral("does not agree with the choice %1 of Duplex").arg(choice.key),
                    {root["rows"]["Duplex"]});
        }
    }
}

void Profile::checkPapers(const JsonNode &node) const
{
    for (const QString &name : suitablePapers()) {
        for (auto parameter = m_parameters.begin(); parameter != m_parameters.end(); ++parameter) {
            if (parameter->follows.isEmpty() || isPageProperty(parameter->follows))
                continue;
            const QString objection =
                objectionTo(parameter.key(), m_papers.value(name).value(parameter->follows));
            if (!objection.isEmpty())
                node[name].refuse(parameter.key() + QLatin1String(": ") + objection,
                                  constraintsOf(parameter.key()));
        }
    }
}

QStringList Profile::allSourcesOf(const QString &property) const
{
    QStringList sources = sourcesOf(property);
    for (int i = 0; i < sources.size(); ++i) {
        const QString followed = m_parameters.value(sources.at(i)).follows;
        for (const QString &source : followed.isEmpty() ? QStringList() : sourcesOf(followed)) {
            if (!sources.contains(source))
                sources += source;
        }
    }
    return sources;
}

void Profile::checkFollowing(const JsonNode &node) const
{
    for (auto parameter = m_parameters.begin(); parameter != m_parameters.end(); ++parameter) {
        if (!parameter->follows.isEmpty() &&
            allSourcesOf(parameter->follows).contains(parameter.key()))
            node[parameter.key()]["follows"].refuse(
                QStringLiteral("depends on %1 itself").arg(parameter.key()));
    }
}

void Profile::checkOrder(const JsonNode &node) const
{
    for (auto lower = m_parameters.begin(); lower != m_parameters.end(); ++lower) {
        const JsonNode below = node[lower.key()]["below"];
        if (lower->below.isEmpty())
            continue;
        const auto upper = m_parameters.constFind(lower->below);
        if (upper == m_parameters.cend() || !upper->min)
            below.refuse(QStringLiteral("is not a setting that has bounds"));
        if (!m_isCapture && !(lower->initial.toDouble() < upper->initial.toDouble()))
            node[lower.key()]["default"].refuse(
                QStringLiteral("is not below that of %1").arg(lower->below),
                {below, node[lower->below]["default"]});
    }
}

QVector<JsonNode> Profile::constraintsOf(const QString &setting) const
{
    const JsonNode root(m_json);
    QVector<JsonNode> nodes;
    for (const char *constraint : {"min", "max", "row", "precision", "maxLength"})
        nodes += root["settings"][setting][constraint];
    const QString row = m_parameters.value(setting).row;
    if (!row.isEmpty())
        nodes += root["rows"][row];
    return nodes;
}

QStringList Profile::readSettingNames(const JsonNode &node) const
{
    for (const JsonNode &element : node.elements()) {
        if (!m_parameters.contains(element.toText()))
            element.refuse(QStringLiteral("is not a setting"),
                           {JsonNode(m_json)["settings"][element.toText()]});
    }
    return node.toTexts();
}

void Profile::readUserSettings(const JsonNode &node, const Settings &settings)
{
    const QString names = QStringLiteral("names");
    if (node.has(names)) {
        node.allowOnly({names});
        m_userSettings = readSettingNames(node[names]);
        return;
    }
    node.allowOnly({QStringLiteral("families"), QStringLiteral("except")});
    const QStringList except = readSettingNames(node["except"]);
    for (const JsonNode &element : node["families"].elements()) {
        const int before = m_userSettings.size();
        for (const Setting &setting : settings.all()) {
            if (setting.family == element.toText() && !except.contains(setting.name))
                m_userSettings += setting.name;
        }
        if (m_userSettings.size() == before)
            element.refuse(QStringLiteral("is not a family of settings"));
    }
}

QString Profile::objectionTo(const QString &name, const QVariant &value) const
{
    const Parameter parameter = m_parameters.value(name);
    if (parameter.held.isValid() && value == parameter.held)
        return {};
    const bool isText = value.userType() == QMetaType::QString;
    const QString shown = isText ? QStringLiteral("the value") : value.toString();
    if (!parameter.row.isEmpty()) {
        QStringList allowed;
        for (const Choice &choice : m_rows.value(parameter.row)) {
            if (isText ? value == choice.key : value.toDouble() == choice.value)
                return {};
            allowed += isText ? choice.key : QString::number(choice.value);
        }
        return QStringLiteral("%1 is none of: %2").arg(shown, allowed.join(QStringLiteral(", ")));
    }
    if (parameter.min) {
        const double number = value.toDouble();
        // Written so that what is not a number is refused.
        if (!(number >= *parameter.min && number <= *parameter.max))
            return QStringLiteral("%1 is not between %2 and %3 %4")
                .arg(shown, numberText(*parameter.min), numberText(*parameter.max), parameter.unit)
                .trimmed();
        if (parameter.precision == 0 && number != std::floor(number))
            return QStringLiteral("%1 is not a whole number").arg(shown);
    }
    if (parameter.maxLength && value.toString().toUtf8().size() > *parameter.maxLength)
        return QStringLiteral("%1 is longer than %2 bytes")
            .arg(shown, QString::number(*parameter.maxLength));
    return {};
}

void Profile::requireAnswers(const QStringList &methods) const
{
    const JsonNode answers = JsonNode(m_json)["answers"];
    for (const QString &method : methods) {
        if (!m_isCapture && !m_answers.contains(method))
            answers[method].refuse(QString());
    }
    for (const QString &method : m_answers.keys()) {
        if (!methods.contains(method))
            answers[method].refuse(QStringLiteral("is not a query that the profile answers"));
    }
}

} // namespace simulator
