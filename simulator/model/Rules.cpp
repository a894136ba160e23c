// SPDX-License-Identifier: MIT

#include "model/Rules.h"

#include "model/Profile.h"

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QMap>
#include <QtCore/QMetaEnum>

#include <algorithm>
#include <functional>

namespace simulator {

namespace {

const QString paperSizeIs = QStringLiteral("PaperSizeIs");

struct Condition
{
    QString setting;
    std::function<bool(const QString &value)> holdsFor;
};

const QMap<QString, Condition> &conditions()
{
    const QString pageNumber = QStringLiteral("PageNumber");
    const QString none = QStringLiteral("None");
    static const QMap<QString, Condition> all{
        {QStringLiteral("PageNumberIsSelected"),
         {pageNumber, [none](const QString &value) { return value != none; }}},
        {QStringLiteral("PageNumberNotSelected"),
         {pageNumber, [none](const QString &value) { return value == none; }}},
        {QStringLiteral("TmIsSelected"),
         {QStringLiteral("TopMargin"),
          [](const QString &value) { return value != QLatin1String("0"); }}},
        {QStringLiteral("IsBookletTypeSelected"),
         {QStringLiteral("Duplexing"),
          [](const QString &value) { return value.startsWith(QLatin1String("Booklet")); }}},
    };
    return all;
}

bool holds(const QString &rule, const ValueOf &valueOf)
{
    if (rule.startsWith(paperSizeIs))
        return valueOf(Profile::currentPaper()) == rule.mid(paperSizeIs.size());
    const Condition condition = conditions().value(rule);
    return condition.holdsFor(valueOf(condition.setting).toString());
}

} // namespace

bool isRuleAboutModel(const QString &rule)
{
    const QStringList others{QStringLiteral("AlwaysValid"), QStringLiteral("AlwaysInvalid"),
                             QStringLiteral("IsDoubleSided"), QStringLiteral("UserPaperAvailable")};
    const QString model = QStringLiteral("ModelIs");
    const auto masks = QMetaEnum::fromType<lcm::ModelMask>();
    return others.contains(rule) ||
           (rule.startsWith(model) &&
            masks.keyToValue(rule.mid(model.size()).toLatin1().constData()) > 0);
}

bool isRuleAboutSettings(const QString &rule)
{
    return rule.startsWith(paperSizeIs) || conditions().contains(rule);
}

bool holdsAny(const QStringList &rules, const ValueOf &valueOf)
{
    return std::any_of(rules.begin(), rules.end(),
                       [&](const QString &rule) { return holds(rule, valueOf); });
}

} // namespace simulator
