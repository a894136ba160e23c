// SPDX-License-Identifier: MIT

#include "verification/Verification.h"

#include "library/Enumeration.h"

#include <libconfigurationmanager/lcm.h>

#include <algorithm>
#include <numeric>

namespace tool {

namespace {

const QString valueList = QStringLiteral("getValueList");
const QString tableMetadata = QStringLiteral("getTableMetadata");
const QString configurationReport = QStringLiteral("currentConfigurationCmd");
const QString settingsTable = QStringLiteral("settings");

const contract::Interface &service()
{
    return contract::Interface::configurationManager();
}

/// Whether a call of the method only reads: it has a meaning that can be told, or is a command that
/// does nothing but tell.
bool onlyReads(const contract::Method &method)
{
    static const QStringList tellingCommands{QStringLiteral("embosserInfoCmd"), configurationReport,
                                             QStringLiteral("buildHammerBatchString"),
                                             QStringLiteral("returnDocSettingKey")};
    return !method.takesValue() &&
           (!method.meaning.isEmpty() || tellingCommands.contains(method.name));
}

bool takesNothing(const contract::Method &method)
{
    return std::all_of(
        method.arguments.begin(), method.arguments.end(),
        [](const contract::Argument &each) { return each.role == contract::Role::CollectionId; });
}

/// Whether an answer is one of the enumeration's; any is if there is none.
bool isOfEnumeration(const QVariant &answer, const QString &enumeration)
{
    const Enumeration known(enumeration);
    if (!known.isValid())
        return true;
    // Papers suit several models.
    const std::optional<int> all = known.value(QStringLiteral("All"));
    const int value = answer.toInt();
    return all ? (value & ~*all) == 0 : known.key(value).has_value();
}

/// The types as a reader takes them in.
QString shown(const QString &signature)
{
    return signature.isEmpty() ? QStringLiteral("nothing")
                               : QStringLiteral("\"%1\"").arg(signature);
}

/// The arguments as one text.
QString joined(const QVariantList &arguments)
{
    QStringList texts;
    for (const QVariant &argument : arguments)
        texts += argument.toString();
    return texts.join(QLatin1Char('/'));
}

/// The arguments with one each of these names, in all combinations.
QVector<QVariantList> combined(const QVector<QVariantList> &beginnings, const QStringList &names)
{
    QVector<QVariantList> lists;
    for (const QVariantList &beginning : beginnings) {
        for (const QString &name : names)
            lists.append(beginning + QVariantList{name});
    }
    return lists;
}

/// The list that is a setting's by its name, unless the service tells of another one; may be none.
QString listOf(const QString &setting, const QVariant &value)
{
    for (const NameSource &source : {NameSource::papers(), NameSource::cells(),
                                     NameSource::cellDots(), NameSource::lineSpacings()}) {
        const int position = source.settings.indexOf(setting);
        if (position >= 0)
            return source.lists.at(position);
    }
    // Of a text, such as that of the model, there may be more than a list has.
    return value.userType() == QMetaType::Int ? setting : QString();
}

} // namespace

Verification::Verification(Session &session, const Catalogue &catalogue) : m_session(session)
{
    for (const Operation &operation : catalogue.operations())
        m_operations.insert(operation.remoteMethod, &operation);
}

void Verification::run(std::chrono::milliseconds timeout)
{
    // A service that does not answer at all is told of as by any call.
    m_session.call(*m_operations.value(QStringLiteral("getType")));
    m_introspected = introspect(timeout);
    QVector<const contract::Method *> methods;
    for (const contract::Method &method : service().methods()) {
        FamilyReport &report = familyOf(method);
        if (m_introspected || onlyReads(method))
            ++report.methods;
        else
            report.notJudged += method.name;
        if (isAsIntrospected(method) && onlyReads(method))
            methods.append(&method);
    }
    // What tells with which arguments the others can be called comes first.
    std::stable_partition(methods.begin(), methods.end(), [](const contract::Method *method) {
        return takesNothing(*method) || method->name == valueList;
    });
    for (const contract::Method *method : qAsConst(methods))
        judge(*method);
    for (auto value = m_values.begin(); value != m_values.end(); ++value) {
        const QString &name = value.key();
        judgeValue(*service().setting(name.section(QLatin1Char('/'), 0, 0)), name, *value);
    }
}

int Verification::findings() const
{
    return std::accumulate(
        m_families.begin(), m_families.end(), 0,
        [](int sum, const FamilyReport &report) { return sum + report.findings.size(); });
}

FamilyReport &Verification::familyOf(const contract::Method &method)
{
    auto *const found =
        std::find_if(m_families.begin(), m_families.end(),
                     [&](const FamilyReport &each) { return each.family == method.family; });
    if (found != m_families.end())
        return *found;
    m_families.append(FamilyReport());
    m_families.last().family = method.family;
    return m_families.last();
}

void Verification::addFinding(const contract::Method &method, const QString &subject,
                              const QString &text)
{
    familyOf(method).findings.append({subject, text});
}

bool Verification::isAsIntrospected(const contract::Method &method)
{
    if (!m_introspected)
        return true;
    const auto found = m_introspected->constFind(method.name);
    if (found == m_introspected->cend()) {
        addFinding(method, method.name, QStringLiteral("is missing"));
        return false;
    }
    if (found->arguments != method.signature()) {
        addFinding(method, method.name,
                   QStringLiteral("takes %1 instead of %2")
                       .arg(shown(found->arguments), shown(method.signature())));
        return false;
    }
    if (found->results != method.resultType) {
        addFinding(method, method.name,
                   QStringLiteral("is declared to answer %1 instead of %2")
                       .arg(shown(found->results), shown(method.resultType)));
        return false;
    }
    return true;
}

void Verification::judge(const contract::Method &method)
{
    QVector<QPair<QVariantList, Session::Call>> calls;
    for (const QVariantList &arguments : argumentsFor(method))
        calls.append({arguments, m_session.begin(*m_operations.value(method.name), arguments)});
    familyOf(method).calls += calls.size();
    bool isAnswered = false;
    for (const auto &[arguments, call] : qAsConst(calls)) {
        const Reply reply = m_session.finish(call);
        QString deviation;
        if (reply.error)
            deviation = deviationIn(call.reply.error(), !arguments.isEmpty());
        else if (!isOfEnumeration(reply.value, method.resultEnumeration))
            deviation = QStringLiteral("answers %1, which is not a value of %2")
                            .arg(reply.value.toString(), method.resultEnumeration);
        if (!deviation.isEmpty()) {
            addFinding(method, method.name, deviation);
            return;
        }
        if (reply.error)
            continue;
        isAnswered = true;
        keep(method, arguments, reply.value);
    }
    if (!isAnswered)
        familyOf(method).notJudged += method.name;
}

QString Verification::deviationIn(const QDBusError &error, bool takesArguments)
{
    switch (error.type()) {
    case QDBusError::UnknownMethod:
    case QDBusError::UnknownInterface:
    case QDBusError::UnknownObject:
        return QStringLiteral("is missing");
    case QDBusError::InvalidSignature:
        return QStringLiteral("is of another type: %1").arg(error.message());
    default:
        // What a method is asked about, the service may not have.
        return takesArguments ? QString() : QStringLiteral("is refused: %1").arg(error.message());
    }
}

void Verification::keep(const contract::Method &method, const QVariantList &arguments,
                        const QVariant &answer)
{
    m_answers[method.name].insert(joined(arguments), answer);
    if (method.name == configurationReport) {
        for (const auto &family : answer.value<ConfigurationList>())
            m_reported += family.second.keys();
    }
    if (method.setting.isEmpty())
        return;
    const bool isKeyed = service().setting(method.setting)->isKeyed();
    m_values.insert(
        isKeyed ? method.setting + QLatin1Char('/') + joined(arguments) : method.setting, answer);
}

void Verification::judgeValue(const contract::Setting &setting, const QString &name,
                              const QVariant &value)
{
    QString deviation = deviationFromList(setting, name, value);
    if (deviation.isEmpty())
        deviation = deviationFromBounds(name, value);
    if (!deviation.isEmpty())
        addFinding(*setting.reader, name, deviation);
}

QString Verification::deviationFromBounds(const QString &name, const QVariant &value) const
{
    const QVariant min = m_answers.value(QStringLiteral("getMinValue")).value(name);
    const QVariant max = m_answers.value(QStringLiteral("getMaxValue")).value(name);
    const bool isNumber =
        value.userType() == QMetaType::Int || value.userType() == QMetaType::Double;
    if (!isNumber || !min.isValid() || !max.isValid())
        return {};
    if (min.toInt() > max.toInt())
        return QStringLiteral("has bounds in the wrong order, %1 to %2")
            .arg(min.toInt())
            .arg(max.toInt());
    // Written so that what is not a number is found.
    if (value.toDouble() >= min.toInt() && value.toDouble() <= max.toInt())
        return {};
    return QStringLiteral("is %1, which is not within its bounds, %2 to %3")
        .arg(value.toString())
        .arg(min.toInt())
        .arg(max.toInt());
}

QString Verification::deviationFromList(const contract::Setting &setting, const QString &name,
                                        const QVariant &value) const
{
    const QVariantMap metadata =
        m_answers.value(tableMetadata).value(settingsTable + QLatin1Char('/') + name).toMap();
    const QString list =
        metadata.value(QStringLiteral("row"), listOf(setting.name, value)).toString();
    const std::optional<int> row = Enumeration(QStringLiteral("RowValueList")).value(list);
    const QVariant choices = m_answers.value(valueList).value(QString::number(row.value_or(-1)));
    if (!choices.isValid())
        return {};
    const bool isText = value.userType() == QMetaType::QString;
    for (const QVariantMap &choice : choices.value<lcm::PropList>()) {
        for (const QVariant &property : choice) {
            const bool isChoiceText = property.userType() == QMetaType::QString;
            if (isText ? isChoiceText && property == value
                       : !isChoiceText && property.toDouble() == value.toDouble())
                return {};
        }
    }
    return setting.isSecret() ? QStringLiteral("is none of the value list %1").arg(list)
                              : QStringLiteral("is %1, which is none of the value list %2")
                                    .arg(value.toString(), list);
}

QVector<QVariantList> Verification::argumentsFor(const contract::Method &method) const
{
    const QVector<QVariantList> nothing{QVariantList()};
    QVector<contract::Argument> own = method.arguments;
    own.erase(std::remove_if(own.begin(), own.end(),
                             [](const contract::Argument &each) {
                                 return each.role == contract::Role::CollectionId;
                             }),
              own.end());
    if (own.isEmpty())
        return nothing;
    QVector<QVariantList> calls;
    switch (own.first().role) {
    case contract::Role::Key:
        for (const QString &key : keysOf(method.setting))
            calls.append(
                {own.first().type == QLatin1String("i") ? QVariant(key.toInt()) : QVariant(key)});
        return calls;
    case contract::Role::Setting:
        calls = combined(nothing, settingNames());
        // The first choice.
        for (QVariantList &call : calls) {
            if (own.size() > 1)
                call.append(0);
        }
        return calls;
    case contract::Role::Paper:
        return combined(nothing, names(NameSource::papers()));
    default:
        break;
    }
    if (method.name == valueList) {
        const Enumeration rows(own.first().enumeration);
        for (const QString &key : rows.keys())
            calls.append(QVariantList{*rows.value(key)});
        return calls;
    }
    if (method.name == tableMetadata)
        return combined({QVariantList{settingsTable}}, settingNames()) +
               combined({QVariantList{QStringLiteral("papers")}}, names(NameSource::papers()));
    const QStringList cells = names(NameSource::cells());
    const QStringList spacings = names(NameSource::lineSpacings());
    if (method.signature() == QLatin1String("s"))
        return combined(nothing, cells);
    if (method.signature() == QLatin1String("ss"))
        return combined(combined(nothing, cells), spacings);
    // A number that is 0 stands for that of what is named.
    calls = combined({QVariantList{0.0, 0, 0.0, 0.0}}, names(NameSource::papers()));
    calls = combined(calls, cells);
    calls = combined(calls, names(NameSource::cellDots()));
    return combined(calls, spacings);
}

QStringList Verification::settingNames() const
{
    QStringList names;
    for (const contract::Setting &setting : service().settings()) {
        if (!setting.reader || !setting.writer)
            continue;
        if (!setting.isKeyed()) {
            names += setting.name;
            continue;
        }
        for (const QString &key : keysOf(setting.name))
            names += setting.name + QLatin1Char('/') + key;
    }
    return names;
}

QStringList Verification::keysOf(const QString &setting) const
{
    // The one that is sent when none is given.
    const contract::Method &reader = *service().setting(setting)->reader;
    QStringList keys{reader.arguments[reader.indexOf(contract::Role::Key)].defaultValue};
    for (const QString &name : m_reported) {
        if (name.startsWith(setting + QLatin1Char('/')))
            keys += name.section(QLatin1Char('/'), 1);
    }
    keys.removeAll(QString());
    keys.removeDuplicates();
    return keys;
}

QStringList Verification::names(const NameSource &source) const
{
    const Enumeration rows(QStringLiteral("RowValueList"));
    QStringList names;
    for (const QString &list : source.lists) {
        const QVariant choices =
            m_answers.value(valueList).value(QString::number(*rows.value(list)));
        for (const QVariantMap &choice : choices.value<lcm::PropList>())
            names += choice.value(QStringLiteral("key")).toString();
    }
    for (const QString &setting : source.settings)
        names += m_values.value(setting).toString();
    names.removeAll(QString());
    names.removeDuplicates();
    return names;
}

} // namespace tool
