// SPDX-License-Identifier: MIT

#include "capture/Capture.h"

#include "common/DeferredSignals.h"
#include "library/Lookup.h"
#include "library/Secret.h"
#include "library/Value.h"

#include <contract/Interface.h>
#include <libconfigurationmanager/lcm.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tool {

namespace {

const QString settingsTable = QStringLiteral("settings");
const QString volumeAdjustment = QStringLiteral("VolumeFineAdjustment");

const contract::Interface &service()
{
    return contract::Interface::configurationManager();
}

/// The settings that tell of which kind the embosser is. They belong to its identity, but nothing
/// could be simulated without them.
bool isKind(const QString &setting)
{
    return QStringList{QStringLiteral("Type"), QStringLiteral("ModelMask"),
                       QStringLiteral("MaskValue")}
        .contains(setting);
}

int metaTypeOf(const QString &dbusType)
{
    static const QHash<QString, int> types{{QStringLiteral("i"), QMetaType::Int},
                                           {QStringLiteral("d"), QMetaType::Double},
                                           {QStringLiteral("b"), QMetaType::Bool},
                                           {QStringLiteral("s"), QMetaType::QString}};
    return types.value(dbusType, QMetaType::UnknownType);
}

bool isNumeric(const contract::Setting &setting)
{
    return setting.type() == QLatin1String("i") || setting.type() == QLatin1String("d");
}

/// What can be said of a setting beside what the contract says, with the types that it has.
QHash<QString, int> metadataTypes(const contract::Setting &setting)
{
    return {{QStringLiteral("default"), metaTypeOf(setting.type())},
            {QStringLiteral("min"), QMetaType::Double},
            {QStringLiteral("max"), QMetaType::Double},
            {QStringLiteral("modelMin"), QMetaType::Double},
            {QStringLiteral("modelMax"), QMetaType::Double},
            {QStringLiteral("precision"), QMetaType::Int},
            {QStringLiteral("maxLength"), QMetaType::Int},
            {QStringLiteral("unit"), QMetaType::QString},
            {QStringLiteral("row"), QMetaType::QString},
            {QStringLiteral("below"), QMetaType::QString},
            {QStringLiteral("follows"), QMetaType::QString},
            {QStringLiteral("available"), QMetaType::QStringList},
            {QStringLiteral("user"), QMetaType::Bool}};
}

/// Whether the map says of a setting what the contract says, and otherwise only what profiles know.
bool isMetadata(const QVariantMap &map, const contract::Setting &setting)
{
    const QHash<QString, int> types = metadataTypes(setting);
    QVariantMap others;
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        if (!types.contains(entry.key()))
            others.insert(entry.key(), *entry);
        else if (entry->userType() != types.value(entry.key()) ||
                 (entry->userType() == QMetaType::Double && !std::isfinite(entry->toDouble())))
            return false;
    }
    const contract::Method &primary = setting.primary();
    return others == QVariantMap{{QStringLiteral("type"), setting.type()},
                                 {QStringLiteral("family"), primary.family},
                                 {QStringLiteral("meaning"), primary.meaning},
                                 {QStringLiteral("perCollection"), setting.isPerCollection()},
                                 {QStringLiteral("secret"), setting.isSecret()}};
}

/// The nearest number that an int can have.
int clamped(double number)
{
    return int(qBound(double(std::numeric_limits<int>::min()), number,
                      double(std::numeric_limits<int>::max())));
}

/// The number as an integer setting has it.
QJsonValue bound(double number, const contract::Setting &setting)
{
    return setting.type() == QLatin1String("i") ? QJsonValue(clamped(number)) : QJsonValue(number);
}

} // namespace

Capture::Capture(Session &session, const Catalogue &catalogue, const CaptureOptions &options)
    : m_session(session),
      m_catalogue(catalogue),
      m_options(options),
      m_recording([this](const QString &name) { return isLeftOut(name); })
{
}

int Capture::steps()
{
    const auto rows = QMetaEnum::fromType<lcm::EnumDetail::RowValueList>();
    return service().settings().size() + rows.keyCount();
}

void Capture::read(const std::function<void()> &progress)
{
    readValueLists(progress);
    readSettings(progress);
    readAnswers();
    readPapers();
    readBraille();
}

QJsonObject Capture::profile() const
{
    QJsonObject profile = m_profile;
    profile.insert(settingsTable, m_settings);
    profile.insert(QStringLiteral("answers"), m_answers);
    profile.insert(QStringLiteral("documents"), m_documents);
    profile.insert(QStringLiteral("recorded"), m_recording.toJson());
    return profile;
}

const Operation &Capture::operation(const char *name, int arguments) const
{
    return operationFor(m_catalogue, QString::fromLatin1(name), arguments);
}

std::optional<QVariant> Capture::ask(const Operation &operation, const QVariantList &arguments)
{
    DeferredSignals::throwIfCome();
    const Reply reply = m_session.call(operation, arguments);
    const bool isFinite =
        reply.value.userType() != QMetaType::Double || std::isfinite(reply.value.toDouble());
    if (!reply.error && isFinite)
        return reply.value;
    m_recording.addError(operation, arguments,
                         reply.error.value_or(QStringLiteral("the answer is not a finite number")));
    return {};
}

void Capture::recordUnless(const QVariant &expected, const Operation &operation,
                           const QVariantList &arguments)
{
    const auto answer = ask(operation, arguments);
    if (answer && *answer != expected)
        m_recording.addAnswer(operation, arguments, *answer);
}

bool Capture::isLeftOut(const QString &setting) const
{
    const QString name = setting.section(QLatin1Char('/'), 0, 0);
    const contract::Setting *known = service().setting(name);
    if (isSecret(name))
        return !m_options.withSecrets;
    return known && known->isIdentity() && !isKind(name) && !m_options.withIdentity;
}

void Capture::readValueLists(const std::function<void()> &progress)
{
    const QString keyName = QStringLiteral("key");
    const QString valueName = QStringLiteral("value");
    const Operation &lists = operation("getValueList", 1);
    QJsonObject rows;
    for (const QString &name : lists.parameters[0].type.enumeration.keys()) {
        progress();
        const QVariantList row{*lists.parameters[0].type.enumeration.value(name)};
        const auto answer = ask(lists, row);
        if (!answer)
            continue;
        QJsonArray choices;
        bool isOfKnownForm = true;
        for (const QVariantMap &choice : answer->value<lcm::PropList>()) {
            const QVariant key = choice.value(keyName);
            const QVariant value = choice.value(valueName);
            if (choice.size() != 2 || key.userType() != QMetaType::QString ||
                value.userType() != QMetaType::Int) {
                isOfKnownForm = false;
                continue;
            }
            choices.append(QJsonObject{{keyName, key.toString()}, {valueName, value.toInt()}});
            m_choices[name].append({key.toString(), value.toInt()});
        }
        if (isOfKnownForm)
            rows.insert(name, choices);
        else
            m_recording.addAnswer(lists, row, *answer);
    }
    m_profile.insert(QStringLiteral("rows"), rows);
}

void Capture::readAnswers()
{
    for (const Operation &operation : m_catalogue.operations()) {
        const contract::Setting *setting = service().setting(operation.setting);
        if (operation.isQuery && operation.parameters.isEmpty() && !(setting && setting->writer))
            readAnswer(operation);
    }
}

void Capture::readAnswer(const Operation &operation)
{
    static const QMap<QString, QString> documents{
        {QStringLiteral("getDemoDocuments"), QStringLiteral("demo")},
        {QStringLiteral("getManualDocuments"), QStringLiteral("manual")},
        {QStringLiteral("getServiceDocuments"), QStringLiteral("service")}};
    static const QMap<QString, QPair<QString, QString>> bounds{
        {QStringLiteral("getMinWidth"), {QStringLiteral("PaperWidth"), QStringLiteral("min")}},
        {QStringLiteral("getMaxWidth"), {QStringLiteral("PaperWidth"), QStringLiteral("max")}},
        {QStringLiteral("getMinHeight"), {QStringLiteral("PaperLength"), QStringLiteral("min")}},
        {QStringLiteral("getMaxHeight"), {QStringLiteral("PaperLength"), QStringLiteral("max")}}};
    if (documents.contains(operation.name)) {
        readDocuments(documents.value(operation.name), operation);
    } else if (operation.name == QLatin1String("getLayoutParameters")) {
        readSettingNames(QStringLiteral("layoutParameters"), operation);
    } else if (operation.name == QLatin1String("getTempProperties")) {
        readSettingNames(QStringLiteral("temporaryProperties"), operation);
    } else if (operation.name == QLatin1String("getVolumeFineAdjustmentLimits")) {
        const QJsonObject entry = m_settings.value(volumeAdjustment).toObject();
        const QJsonValue initial = entry[QStringLiteral("default")];
        recordUnless(
            QVariantMap{
                {QStringLiteral("min"), entry[QStringLiteral("min")].toInt()},
                {QStringLiteral("max"), entry[QStringLiteral("max")].toInt()},
                {QStringLiteral("default"),
                 (initial.isUndefined() ? entry[QStringLiteral("value")] : initial).toInt()}},
            operation, {});
    } else if (bounds.contains(operation.name)) {
        // The sizes that a paper can have are mostly those that can be set for the current one.
        const auto [setting, member] = bounds.value(operation.name);
        recordUnless(m_settings.value(setting)[member].toVariant(), operation, {});
    } else if (isLeftOut(operation.setting)) {
        m_leftOut.append(operation.setting);
    } else if (const auto answer = ask(operation)) {
        m_answers.insert(operation.remoteMethod, profileValue(*answer, operation.result));
    }
}

void Capture::readDocuments(const QString &kind, const Operation &operation)
{
    const auto answer = ask(operation);
    if (!answer)
        return;
    const QVariantMap map = answer->toMap();
    const bool areTexts = std::all_of(map.begin(), map.end(), [](const QVariant &path) {
        return path.userType() == QMetaType::QString;
    });
    if (!areTexts) {
        m_recording.addAnswer(operation, {}, *answer);
        return;
    }
    m_documents.insert(kind, QJsonObject::fromVariantMap(map));
}

void Capture::readSettingNames(const QString &member, const Operation &operation)
{
    m_profile.insert(member, QJsonArray());
    const auto answer = ask(operation);
    if (!answer)
        return;
    const QVariantMap map = answer->toMap();
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        const bool isValue = isLeftOut(entry.key()) || m_values.value(entry.key()) == *entry;
        if (!m_settings.contains(entry.key()) || !isValue) {
            m_recording.addAnswer(operation, {}, *answer);
            return;
        }
    }
    m_profile.insert(member, QJsonArray::fromStringList(map.keys()));
}

void Capture::readSettings(const std::function<void()> &progress)
{
    if (const auto report = ask(operation("currentConfigurationCmd", 0))) {
        for (const auto &family : report->value<ConfigurationList>())
            m_reported += family.second.keys();
    }
    for (const contract::Setting &setting : service().settings()) {
        progress();
        if (!setting.writer)
            continue;
        for (const QString &key : setting.isKeyed() ? keysOf(setting) : QStringList(QString()))
            readSetting(setting, key);
    }
    m_profile.insert(
        QStringLiteral("userSettings"),
        QJsonObject{{QStringLiteral("names"), QJsonArray::fromStringList(m_userSettings)}});
}

QStringList Capture::keysOf(const contract::Setting &setting)
{
    // The one that is sent when none is given.
    QStringList keys{
        setting.reader->arguments[setting.reader->indexOf(contract::Role::Key)].defaultValue};
    for (const QString &name : qAsConst(m_reported)) {
        if (name.section(QLatin1Char('/'), 0, 0) == setting.name && name != setting.name)
            keys += name.section(QLatin1Char('/'), 1);
    }
    keys += m_options.keys.value(setting.name);
    keys.removeAll(QString());
    keys.removeDuplicates();
    return keys;
}

void Capture::readSetting(const contract::Setting &setting, const QString &key)
{
    // Those that can only be written are commands, unless the service tells them by name.
    if (!setting.reader && setting.type() != QLatin1String("i"))
        return;
    const QString name = key.isEmpty() ? setting.name : setting.name + QLatin1Char('/') + key;
    QJsonObject entry;
    readValue(setting, key, &entry);
    const QVariantMap metadata = readMetadata(setting, name, &entry);
    if (isNumeric(setting))
        readBounds(setting, name, metadata, &entry);
    if (const auto proposition = ask(operation("getProposition", 1), {name}))
        entry.insert(QStringLiteral("proposition"), proposition->toString());
    if (entry.contains(QStringLiteral("value"))) {
        if (const auto sentence = ask(operation("getValueSentence", 1), {name}))
            entry.insert(QStringLiteral("sentence"), sentence->toString());
    }
    m_settings.insert(name, entry);
}

void Capture::readValue(const contract::Setting &setting, const QString &key, QJsonObject *entry)
{
    const QString name = key.isEmpty() ? setting.name : setting.name + QLatin1Char('/') + key;
    if (isLeftOut(setting.name)) {
        m_leftOut.append(name);
        return;
    }
    const Operation &reader =
        setting.reader
            ? operationFor(m_catalogue, setting.reader->operationName(), setting.isKeyed() ? 1 : 0)
            : operation("getIntValue", 1);
    QVariantList arguments;
    if (!setting.reader)
        arguments += setting.name;
    else if (setting.isKeyed())
        arguments += argumentFromText(key, reader.parameters[0].type);
    const auto answer = ask(reader, arguments);
    if (!answer)
        return;
    m_values.insert(name, *answer);
    entry->insert(QStringLiteral("value"), profileValue(*answer, reader.result));
}

QVariantMap Capture::readMetadata(const contract::Setting &setting, const QString &name,
                                  QJsonObject *entry)
{
    const Operation &table = operation("getTableMetadata", 2);
    const auto answer = ask(table, {settingsTable, name});
    if (!answer)
        return {};
    const QVariantMap metadata = answer->toMap();
    if (!isMetadata(metadata, setting)) {
        if (!isLeftOut(name))
            m_recording.addAnswer(table, {settingsTable, name}, metadata);
        return {};
    }
    for (const char *member : {"unit", "row", "below", "follows", "available", "maxLength"}) {
        const QString key = QString::fromLatin1(member);
        if (metadata.contains(key))
            entry->insert(key, QJsonValue::fromVariant(metadata.value(key)));
    }
    const QString initial = QStringLiteral("default");
    if (metadata.contains(initial) && !isLeftOut(name))
        entry->insert(initial, QJsonValue::fromVariant(metadata.value(initial)));
    if (metadata.value(QStringLiteral("user")).toBool())
        m_userSettings.append(name);
    return metadata;
}

void Capture::readBounds(const contract::Setting &setting, const QString &name,
                         const QVariantMap &metadata, QJsonObject *entry)
{
    const QString min = QStringLiteral("min");
    const QString max = QStringLiteral("max");
    const auto told = [&](const QString &member, const char *ofModel) {
        const QString key = QString::fromLatin1(ofModel);
        return bound(metadata.value(metadata.contains(key) ? key : member).toDouble(), setting);
    };
    const Operation &minimum = operation("getMinValue", 1);
    const Operation &maximum = operation("getMaxValue", 1);
    const Operation &precision = operation("getPrecision", 1);
    const QVector<Choice> choices =
        m_choices.value(metadata.value(QStringLiteral("row")).toString());
    if (metadata.contains(min) && metadata.contains(max)) {
        entry->insert(min, told(min, "modelMin"));
        entry->insert(max, told(max, "modelMax"));
        recordUnless(clamped(std::floor(metadata.value(min).toDouble())), minimum, {name});
        recordUnless(clamped(std::ceil(metadata.value(max).toDouble())), maximum, {name});
    } else if (!choices.isEmpty() && setting.type() == QLatin1String("i")) {
        const auto [least, most] =
            std::minmax_element(choices.begin(), choices.end(),
                                [](const Choice &a, const Choice &b) { return a.value < b.value; });
        recordUnless(least->value, minimum, {name});
        recordUnless(most->value, maximum, {name});
    } else {
        const auto least = ask(minimum, {name});
        const auto most = ask(maximum, {name});
        if (least && most && least->toInt() <= most->toInt()) {
            entry->insert(min, bound(least->toInt(), setting));
            entry->insert(max, bound(most->toInt(), setting));
        } else {
            if (least)
                m_recording.addAnswer(minimum, {name}, *least);
            if (most)
                m_recording.addAnswer(maximum, {name}, *most);
        }
    }
    if (setting.type() == QLatin1String("i") || metadata.contains(QStringLiteral("precision"))) {
        const QVariant decimals = metadata.value(QStringLiteral("precision"), 0);
        if (setting.type() == QLatin1String("d"))
            entry->insert(QStringLiteral("precision"), std::max(0, decimals.toInt()));
        recordUnless(decimals, precision, {name});
    } else if (const auto decimals = ask(precision, {name})) {
        if (decimals->toInt() >= 0)
            entry->insert(QStringLiteral("precision"), decimals->toInt());
        else
            m_recording.addAnswer(precision, {name}, *decimals);
    }
}

QStringList Capture::names(const NameSource &source) const
{
    QStringList names;
    for (const QString &list : source.lists) {
        for (const Choice &choice : m_choices.value(list))
            names += choice.key;
    }
    for (const QString &setting : source.settings)
        names += m_values.value(setting).toString();
    names.removeAll(QString());
    names.removeDuplicates();
    return names;
}

void Capture::readPapers()
{
    const QString inch = QStringLiteral("inch");
    const QString unit = QStringLiteral("unit");
    static const QVector<QPair<const char *, QString>> properties{
        {"getWidth", QStringLiteral("width")},
        {"getHeight", QStringLiteral("height")},
        {"getInchesWidth", QStringLiteral("inchesWidth")},
        {"getInchesHeight", QStringLiteral("inchesHeight")},
        {"getStepLength", QStringLiteral("stepLength")},
        {"getStepLengthFract", QStringLiteral("stepLengthFraction")},
        {"getFormatOrientation", QStringLiteral("formatOrientation")},
        {"getLoadOrientation", QStringLiteral("loadOrientation")},
        {"getPaperModelMask", QStringLiteral("modelMask")},
        {"getPaperFeedType", QStringLiteral("feedType")},
        {"getSizeUnit", unit},
        {"getPrintHeadOffset", QStringLiteral("printHeadOffset")}};
    QJsonObject papers;
    for (const QString &name : names(NameSource::papers())) {
        QJsonObject paper;
        QVariantMap metadata;
        for (const auto &property : properties) {
            const Operation &query = operation(property.first, 1);
            const auto answer = ask(query, {name});
            if (!answer)
                continue;
            paper.insert(property.second, profileValue(*answer, query.result));
            if (property.second == unit) {
                metadata.insert(QStringLiteral("sizeUnit"), *answer);
                metadata.insert(unit, *answer == inch ? 1 : 0);
            } else {
                metadata.insert(property.second, *answer);
            }
        }
        papers.insert(name, paper);
        recordUnless(metadata, operation("getTableMetadata", 2), {QStringLiteral("papers"), name});
    }
    m_profile.insert(QStringLiteral("papers"), papers);
}

void Capture::readBraille()
{
    const QString lineToLine = QStringLiteral("lineToLine");
    const QString factor = QStringLiteral("factor");
    const QStringList cellNames = names(NameSource::cells());
    const QStringList spacingNames = names(NameSource::lineSpacings());
    static const QVector<QPair<const char *, QString>> distances{
        {"getCellToCell", QStringLiteral("cellToCell")},
        {"getHorizontalDotToDot", QStringLiteral("horizontal")},
        {"getVerticalDotToDot", QStringLiteral("vertical")},
        {"getIsInterline", QStringLiteral("interline")}};
    const Operation &table = operation("getTableMetadata", 2);
    // Whether it is told from what the distances of lines follow.
    bool isTold = true;
    QJsonObject cells;
    for (const QString &name : cellNames) {
        QJsonObject cell;
        QVariantMap expected;
        for (const auto &distance : distances) {
            const Operation &query = operation(distance.first, 1);
            if (const auto answer = ask(query, {name})) {
                cell.insert(distance.second, profileValue(*answer, query.result));
                expected.insert(distance.second, *answer);
            }
        }
        const QVariantList entry{QStringLiteral("cells"), name};
        if (const auto answer = ask(table, entry)) {
            const QVariantMap metadata = answer->toMap();
            expected.insert(lineToLine, metadata.value(lineToLine));
            if (metadata == expected)
                cell.insert(lineToLine, metadata.value(lineToLine).toDouble());
            else
                m_recording.addAnswer(table, entry, metadata);
        }
        isTold = isTold && cell.contains(lineToLine);
        cells.insert(name, cell);
    }
    m_profile.insert(QStringLiteral("cells"), cells);

    QJsonObject spacings;
    for (const QString &name : spacingNames) {
        const QVariantList entry{QStringLiteral("lineSpacings"), name};
        const auto answer = ask(table, entry);
        const QVariantMap metadata = answer ? answer->toMap() : QVariantMap();
        if (metadata.keys() == QStringList(factor) && metadata.value(factor).toDouble() > 0)
            spacings.insert(name, metadata.value(factor).toDouble());
        else if (answer)
            m_recording.addAnswer(table, entry, metadata);
    }
    isTold = isTold && spacings.size() == spacingNames.size();
    m_profile.insert(QStringLiteral("lineSpacings"), spacings);

    QJsonObject unprintable;
    const QVariantList page{QStringLiteral("page"), QStringLiteral("unprintable")};
    if (const auto answer = ask(table, page)) {
        const QVariantMap metadata = answer->toMap();
        for (const char *member : {"width", "length"})
            unprintable.insert(QString::fromLatin1(member),
                               metadata.value(QString::fromLatin1(member)).toDouble());
        if (metadata != unprintable.toVariantMap())
            m_recording.addAnswer(table, page, metadata);
    }
    m_profile.insert(QStringLiteral("unprintable"), unprintable);
    if (!isTold)
        readDistances(cellNames, spacingNames);
}

void Capture::readDistances(const QStringList &cells, const QStringList &spacings)
{
    const Operation &offset = operation("getInterlineBackRowOffset", 2);
    const Operation &lines = operation("getLineToLine", 8);
    const QStringList papers = names(NameSource::papers());
    const QStringList dots = names(NameSource::cellDots());
    for (const QString &cell : cells) {
        for (const QString &spacing : spacings) {
            if (const auto answer = ask(offset, {cell, spacing}))
                m_recording.addAnswer(offset, {cell, spacing}, *answer);
            for (const QString &paper : papers) {
                for (const QString &dot : dots) {
                    // A number that is 0 stands for that of what is named.
                    const QVariantList arguments{0.0, 0, 0.0, 0.0, paper, cell, dot, spacing};
                    if (const auto answer = ask(lines, arguments))
                        m_recording.addAnswer(lines, arguments, *answer);
                }
            }
        }
    }
}

} // namespace tool
