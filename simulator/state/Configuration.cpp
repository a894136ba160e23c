// SPDX-License-Identifier: MIT

#include "state/Configuration.h"

#include "model/DBusTypes.h"
#include "model/Page.h"
#include "model/Profile.h"
#include "model/Rules.h"
#include "model/Settings.h"
#include "state/Refusal.h"
#include "state/Store.h"

#include <libconfigurationmanager/lcm.h>

#include <algorithm>
#include <cmath>

namespace simulator {

namespace {

// The collections beside the master.
const QString collectionsScope = QStringLiteral("collections");
const QString deviceScope = QStringLiteral("device");
// Whether what a captured service held has been set.
const QString captureScope = QStringLiteral("capture");
const QString takenName = QStringLiteral("taken");
const QString paperSize = Profile::currentPaper();

QString collectionScope(const QString &collection)
{
    return QStringLiteral("collection:") + collection;
}

QString scopeOf(const Setting &setting, const QString &collection)
{
    return setting.perCollection ? collectionScope(collection) : deviceScope;
}

QString joined(const QStringList &rules)
{
    return rules.join(QStringLiteral(" or "));
}

bool isConditional(const Choice &choice)
{
    return !choice.when.isEmpty();
}

bool isSetTo(const QVariant &value, const Choice &choice)
{
    return value.userType() == QMetaType::QString ? value == choice.key
                                                  : value.toDouble() == choice.value;
}

bool isNumber(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::UChar:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

} // namespace

Configuration::Configuration(const Settings &settings, const Profile &profile, Store &store)
    : m_settings(settings), m_profile(profile), m_store(store)
{
}

const Parameter &Configuration::parameter(const QString &name) const
{
    const auto found = m_profile.parameters().constFind(name);
    if (found != m_profile.parameters().cend())
        return *found;
    const QString base = name.section(QLatin1Char('/'), 0, 0) + QLatin1Char('/');
    QStringList keys;
    for (const QString &other : m_profile.parameters().keys()) {
        if (other.startsWith(base))
            keys += other.mid(base.size());
    }
    throw unknownName(keys.isEmpty()
                          ? QStringLiteral("there is no setting \"%1\"").arg(name)
                          : QStringLiteral("there is no setting \"%1\"; the keys are: %2")
                                .arg(name, keys.join(QStringLiteral(", "))));
}

const Setting &Configuration::setting(const QString &name) const
{
    parameter(name);
    return *m_settings.all().constFind(name.section(QLatin1Char('/'), 0, 0));
}

void Configuration::requireInteger(const QString &name) const
{
    const QString type = setting(name).type;
    if (type != QLatin1String("i"))
        throw invalidValue(
            QStringLiteral("%1 is not an integer, but of D-Bus type %2").arg(name, type));
}

QVariant Configuration::initialValue(const QString &name, const QString &collection) const
{
    const Parameter &known = parameter(name);
    if (known.follows.isEmpty())
        return known.initial;
    QVariant followed = pageProperty(
        m_profile, known.follows, [&](const QString &source) { return value(source, collection); });
    if (isPageProperty(known.follows) && known.min) {
        const double factor = std::pow(10, known.precision);
        const double rounded = std::round(followed.toDouble() * factor) / factor;
        followed = qBound(*known.min, rounded, *known.max);
    }
    followed.convert(metaTypeOf(setting(name).type));
    return followed;
}

Bounds Configuration::bounds(const QString &name) const
{
    const Parameter &known = parameter(name);
    const double step = std::pow(10, -known.precision);
    Bounds bounds{*known.min, *known.max};
    if (!known.below.isEmpty())
        bounds.max = std::min(bounds.max, value(known.below).toDouble() - step);
    const auto &parameters = m_profile.parameters();
    for (auto lower = parameters.begin(); lower != parameters.end(); ++lower) {
        if (lower->below == name)
            bounds.min = std::max(bounds.min, value(lower.key()).toDouble() + step);
    }
    return bounds;
}

QMap<QString, QVariant> Configuration::answers() const
{
    // The feed in use: that of the current paper, unless any is right for it.
    QMap<QString, QVariant> answers = m_profile.answers();
    const QString paper = value(paperSize).toString();
    const QVariant feed = m_profile.papers().value(paper).value(QStringLiteral("feedType"));
    if (feed != int(lcm::FeedType::Ignore))
        answers.insert(QStringLiteral("getFeedType"), feed);
    return answers;
}

QVariant Configuration::value(const QString &name, const QString &collection) const
{
    const Setting &asked = setting(name);
    QVariant value = m_store.value(scopeOf(asked, collection), name);
    if (!value.isValid())
        return initialValue(name, collection);
    const int type = metaTypeOf(asked.type);
    // SQLite has no truth values.
    if (type == QMetaType::Bool && isNumber(value) && (value == 0 || value == 1))
        value = value.toBool();
    const QString objection = objectionTo(name, value);
    if (!objection.isEmpty())
        throw failed(
            QStringLiteral("%1: the value in the state does not fit: %2").arg(name, objection));
    value.convert(type);
    return value;
}

QString Configuration::objectionTo(const QString &name, const QVariant &value) const
{
    const QString type = setting(name).type;
    const bool fits = isNumber(value) ? type == QLatin1String("i") || type == QLatin1String("d")
                                      : value.userType() == metaTypeOf(type);
    return fits ? m_profile.objectionTo(name, value)
                : QStringLiteral("takes a value of D-Bus type %1").arg(type);
}

void Configuration::setValue(const QString &name, const QString &collection, const QVariant &value)
{
    setValues(collection, {{name, value}});
}

void Configuration::store(const QString &name, const QString &collection, const QVariant &value)
{
    const QString objection = objectionTo(name, value);
    if (!objection.isEmpty())
        throw invalidValue(name + QLatin1String(": ") + objection);
    QVariant converted = value;
    converted.convert(metaTypeOf(setting(name).type));
    const Parameter &known = parameter(name);
    if (!known.unfulfilled.isEmpty() && known.when.isEmpty() &&
        converted != initialValue(name, collection))
        throw invalidValue(QStringLiteral("%1: cannot be changed on this model, for which %2 does "
                                          "not hold")
                               .arg(name, joined(known.unfulfilled)));

    const QString scope = scopeOf(setting(name), collection);
    m_store.setValue(scope, name, converted);
    if (setting(name).perCollection && collection != masterCollection())
        m_store.setValue(collectionsScope, collection, true);
    resetFollowers(name, scope);
}

void Configuration::resetFollowers(const QString &name, const QString &scope)
{
    const auto &parameters = m_profile.parameters();
    for (auto follower = parameters.begin(); follower != parameters.end(); ++follower) {
        if (follower->follows.isEmpty() || !sourcesOf(follower->follows).contains(name))
            continue;
        m_store.removeValue(scope, follower.key());
        resetFollowers(follower.key(), scope);
    }
}

int Configuration::depthOf(const QString &name) const
{
    const QString followed = parameter(name).follows;
    int depth = 0;
    if (!followed.isEmpty()) {
        for (const QString &source : sourcesOf(followed))
            depth = std::max(depth, 1 + depthOf(source));
    }
    return depth;
}

void Configuration::requireOrder(const QStringList &names, const QString &collection) const
{
    const auto &parameters = m_profile.parameters();
    for (auto lower = parameters.begin(); lower != parameters.end(); ++lower) {
        if (lower->below.isEmpty() ||
            !(names.contains(lower.key()) || names.contains(lower->below)))
            continue;
        const QVariant low = value(lower.key(), collection);
        const QVariant high = value(lower->below, collection);
        if (!(low.toDouble() < high.toDouble()))
            throw invalidValue(
                QStringLiteral("%1: %2 is not below %3, which is %4 %5")
                    .arg(lower.key(), low.toString(), lower->below, high.toString(), lower->unit)
                    .trimmed());
    }
}

QVariantMap Configuration::restrictedValues(const QStringList &names,
                                            const QString &collection) const
{
    QVariantMap values;
    for (const QString &name : names) {
        const auto known = m_profile.parameters().constFind(name);
        if (known == m_profile.parameters().cend())
            continue;
        const QVector<Choice> choices = m_profile.rows().value(known->row);
        const bool isRestricted =
            !known->when.isEmpty() || std::any_of(choices.begin(), choices.end(), isConditional);
        if (!isRestricted)
            continue;
        // One that does not fit may be replaced as well.
        const QVariant stored = m_store.value(scopeOf(setting(name), collection), name);
        values.insert(name, stored.isValid() ? stored : initialValue(name, collection));
    }
    return values;
}

void Configuration::requireAvailable(const QVariantMap &before, const QString &collection) const
{
    for (auto former = before.begin(); former != before.end(); ++former) {
        const QString &name = former.key();
        const QVariant now = value(name, collection);
        if (now == *former)
            continue;
        const Parameter &known = parameter(name);
        if (!known.when.isEmpty() && !holdsAny(known.when, collection))
            throw invalidValue(QStringLiteral("%1: cannot be changed while %2 does not hold")
                                   .arg(name, joined(known.unfulfilled)));
        for (const Choice &choice : m_profile.rows().value(known.row)) {
            if (isSetTo(now, choice) && isConditional(choice) && !holdsAny(choice.when, collection))
                throw invalidValue(QStringLiteral("%1: the value is not available while %2 does "
                                                  "not hold")
                                       .arg(name, joined(choice.when)));
        }
    }
}

bool Configuration::holdsAny(const QStringList &rules, const QString &collection) const
{
    return simulator::holdsAny(rules,
                               [&](const QString &setting) { return value(setting, collection); });
}

QVector<Choice> Configuration::choices(const QString &row) const
{
    const auto isSet = [&](const Choice &choice) {
        const auto &parameters = m_profile.parameters();
        for (auto known = parameters.begin(); known != parameters.end(); ++known) {
            if (known->row == row && isSetTo(value(known.key()), choice))
                return true;
        }
        return false;
    };
    QVector<Choice> available;
    for (const Choice &choice : m_profile.rows().value(row)) {
        if (!isConditional(choice) || holdsAny(choice.when, masterCollection()) || isSet(choice))
            available.append(choice);
    }
    return available;
}

void Configuration::increment(const QString &name, const QString &collection)
{
    setValue(name, collection, value(name, collection).toLongLong() + 1);
}

void Configuration::reset(const QString &name, const QString &collection)
{
    m_store.removeValue(scopeOf(setting(name), collection), name);
}

void Configuration::clear()
{
    m_store.clear();
    takeHeldValues();
}

void Configuration::takeHeldValues()
{
    const QString captured = m_profile.capturedCollection();
    const QString collection = captured.isNull() ? masterCollection() : captured;
    const auto &parameters = m_profile.parameters();
    QStringList names;
    for (auto parameter = parameters.begin(); parameter != parameters.end(); ++parameter) {
        if (parameter->held.isValid())
            names += parameter.key();
    }
    if (names.isEmpty() || m_store.value(captureScope, takenName).isValid())
        return;
    // What others follow comes first: only then is known what is not as it follows.
    std::stable_sort(names.begin(), names.end(), [this](const QString &a, const QString &b) {
        return depthOf(a) < depthOf(b);
    });
    Store::Transaction transaction(m_store);
    m_store.setValue(captureScope, takenName, true);
    for (const QString &name : qAsConst(names)) {
        const QVariant held = parameter(name).held;
        if (held == initialValue(name, collection))
            continue;
        m_store.setValue(scopeOf(setting(name), collection), name, held);
        if (setting(name).perCollection && collection != masterCollection())
            m_store.setValue(collectionsScope, collection, true);
    }
    transaction.commit();
}

void Configuration::setValues(const QString &collection, const QVariantMap &values)
{
    Store::Transaction transaction(m_store);
    // What others follow comes first, since it undoes what is said of them.
    QStringList names = values.keys();
    const QVariantMap before = restrictedValues(names, collection);
    std::stable_sort(names.begin(), names.end(), [this](const QString &a, const QString &b) {
        return depthOf(a) < depthOf(b);
    });
    for (const QString &name : qAsConst(names))
        store(name, collection, values.value(name));
    requireOrder(names, collection);
    requireAvailable(before, collection);
    transaction.commit();
}

QStringList Configuration::collections() const
{
    return QStringList(masterCollection()) + m_store.values(collectionsScope).keys();
}

QStringList Configuration::namesSetIn(const QString &collection) const
{
    QStringList names = m_store.values(collectionScope(collection)).keys();
    if (collection == masterCollection())
        names += m_store.values(deviceScope).keys();
    return names;
}

bool Configuration::duplicateCollection(const QString &from, const QString &to)
{
    if (!collections().contains(from) || collections().contains(to))
        return false;
    Store::Transaction transaction(m_store);
    m_store.copyScope(collectionScope(from), collectionScope(to));
    m_store.setValue(collectionsScope, to, true);
    transaction.commit();
    return true;
}

bool Configuration::removeCollection(const QString &collection)
{
    if (collection == masterCollection() || !collections().contains(collection))
        return false;
    Store::Transaction transaction(m_store);
    m_store.removeScope(collectionScope(collection));
    m_store.removeValue(collectionsScope, collection);
    transaction.commit();
    return true;
}

} // namespace simulator
