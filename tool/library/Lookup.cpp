// SPDX-License-Identifier: MIT

#include "library/Lookup.h"

#include "common/Failure.h"
#include "common/Suggestion.h"

#include <QtCore/QRegularExpression>

namespace tool {

namespace {

/// The operations that reach what has this name, but only with a key beside the value.
QStringList keyedOperations(const Catalogue &catalogue, const QString &name, bool write)
{
    QStringList names;
    for (const Operation &operation : catalogue.operations()) {
        const bool writes = !operation.isQuery;
        if (operation.bareName() == name && operation.name != name && writes == write)
            names.append(QStringLiteral("'embosserctl call %1'").arg(operation.name));
    }
    return names;
}

QString hint(const QStringList &keyedOperations, const QString &name, const QStringList &known)
{
    if (keyedOperations.isEmpty())
        return didYouMean(name, known);
    return QStringLiteral("; it takes a key: see %1")
        .arg(keyedOperations.join(QStringLiteral(" and ")));
}

} // namespace

const Setting &readableSetting(const Catalogue &catalogue, const QString &name)
{
    const Setting *setting = catalogue.setting(name);
    if (setting && setting->getter)
        return *setting;
    throw Failure(ExitStatus::Usage, QStringLiteral("there is no readable setting '%1'%2")
                                         .arg(name, hint(keyedOperations(catalogue, name, false),
                                                         name, catalogue.readableSettings())));
}

const Setting &writableSetting(const Catalogue &catalogue, const QString &name)
{
    const Setting *setting = catalogue.setting(name);
    if (setting && setting->setter)
        return *setting;
    throw Failure(ExitStatus::Usage, QStringLiteral("there is no writable setting '%1'%2")
                                         .arg(name, hint(keyedOperations(catalogue, name, true),
                                                         name, catalogue.writableSettings())));
}

bool isWildcard(const QString &text)
{
    return text.contains(QLatin1Char('*')) || text.contains(QLatin1Char('?'));
}

bool matchesWildcard(const QString &name, const QString &wildcard)
{
    const QRegularExpression expression(QRegularExpression::wildcardToRegularExpression(wildcard),
                                        QRegularExpression::CaseInsensitiveOption);
    return expression.match(name).hasMatch();
}

QVector<const Setting *> settingsLike(const Catalogue &catalogue, const QString &pattern)
{
    QVector<const Setting *> found;
    for (const Setting &setting : catalogue.settings()) {
        const bool isMeant = isWildcard(pattern)
                                 ? matchesWildcard(setting.name, pattern)
                                 : setting.name.contains(pattern, Qt::CaseInsensitive) ||
                                       setting.meaning.contains(pattern, Qt::CaseInsensitive);
        if (setting.getter && isMeant)
            found.append(&setting);
    }
    return found;
}

QVector<const Operation *> operationsCalled(const Catalogue &catalogue, const QString &name)
{
    const QVector<const Operation *> operations = catalogue.operationsNamed(name);
    if (operations.isEmpty()) {
        throw Failure(ExitStatus::Usage,
                      QStringLiteral("there is no operation '%1'%2")
                          .arg(name, didYouMean(name, catalogue.operationNames())));
    }
    return operations;
}

const Operation &operationFor(const Catalogue &catalogue, const QString &name, int arguments)
{
    QStringList forms;
    for (const Operation *operation : operationsCalled(catalogue, name)) {
        if (operation->accepts(arguments))
            return *operation;
        forms.append(operation->name + operation->parameterList());
    }
    throw Failure(ExitStatus::Usage,
                  QStringLiteral("wrong number of arguments (%1) for %2")
                      .arg(QString::number(arguments), forms.join(QStringLiteral(" or "))));
}

QVector<const Setting *> settingsMeant(const Catalogue &catalogue, const QString &name)
{
    if (!isWildcard(name))
        return {&readableSetting(catalogue, name)};
    QVector<const Setting *> settings;
    for (const Setting *setting : settingsLike(catalogue, name)) {
        if (!setting->isSecret)
            settings.append(setting);
    }
    if (settings.isEmpty()) {
        throw Failure(ExitStatus::Usage,
                      QStringLiteral("no readable setting matches '%1'").arg(name));
    }
    return settings;
}

} // namespace tool
