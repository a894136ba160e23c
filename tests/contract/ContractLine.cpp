// SPDX-License-Identifier: MIT

#include "ContractLine.h"

#include "SampleValues.h"
#include "ServiceName.h"
#include "TypedCalls.h"

#include <QtCore/QHash>
#include <QtDBus/QDBusMetaType>

#include <algorithm>
#include <functional>

namespace {

/// The columns that follow the declaration and the constness.
struct WireColumns
{
    QString remoteMethod;
    QString signature;
    QStringList arguments;
    QString reply;
    QString notConnected;

    QString text() const
    {
        const auto orDash = [](const QString &column) {
            return column.isEmpty() ? QStringLiteral("-") : column;
        };
        return QStringList{remoteMethod, orDash(signature),
                           orDash(arguments.join(QLatin1Char(' '))), orDash(reply), notConnected}
            .join(QStringLiteral(" | "));
    }
};

QVariant argumentOf(const ObservedCall &call, int position)
{
    QVariant argument = call.arrived.constFirst().arguments.value(position);
    if (argument.userType() == qMetaTypeId<QDBusArgument>())
        return qdbus_cast<QVariantMap>(argument);
    return argument;
}

/// What was the same in all calls; else what it was in each.
QString inAllCalls(const ObservedSlot &observed,
                   const std::function<QString(const ObservedCall &)> &textOf)
{
    QStringList texts;
    for (const ObservedCall &call : observed.calls)
        texts << textOf(call);
    texts.removeDuplicates();
    return texts.join(QStringLiteral(" or "));
}

/// The parameter whose value arrived at the position in every call, or the value itself.
QString argumentName(const ObservedSlot &observed, int position)
{
    const auto isAlways = [&](const std::function<QVariant(const ObservedCall &)> &expected) {
        return std::all_of(
            observed.calls.cbegin(), observed.calls.cend(),
            [&](const ObservedCall &call) { return argumentOf(call, position) == expected(call); });
    };
    const QList<QByteArray> names = observed.slot.parameterNames();
    for (int i = 0; i < names.size(); ++i) {
        if (isAlways([i](const ObservedCall &call) { return call.given.at(i); }))
            return QString::fromLatin1(names.at(i));
    }
    if (isAlways([](const ObservedCall &call) { return call.collectionId; }))
        return QStringLiteral("<id>");
    return inAllCalls(observed, [position](const ObservedCall &call) {
        return argumentOf(call, position).toString();
    });
}

QString remoteMethodOf(const ObservedCall &call)
{
    if (call.arrived.size() != 1)
        return QStringLiteral("%1 messages").arg(call.arrived.size());
    const RecordedCall &arrived = call.arrived.constFirst();
    if (arrived.path == QStringLiteral("/") && arrived.interface == serviceName)
        return arrived.member;
    return QStringLiteral("%1 %2.%3").arg(arrived.path, arrived.interface, arrived.member);
}

QString replyOf(const ObservedCall &call)
{
    if (!call.logged.isEmpty())
        return call.logged.join(QStringLiteral(", "));
    if (plain(call.returned) != plain(call.reply))
        return QStringLiteral("another value");
    return QString::fromLatin1(QDBusMetaType::typeToSignature(call.reply.userType()));
}

WireColumns wireColumns(const ObservedSlot &observed)
{
    WireColumns columns;
    columns.remoteMethod = inAllCalls(observed, remoteMethodOf);
    columns.notConnected = observed.notConnected.join(QStringLiteral(", "));
    columns.reply = inAllCalls(observed, replyOf);
    if (observed.calls.constFirst().arrived.size() != 1)
        return columns;
    columns.signature = inAllCalls(
        observed, [](const ObservedCall &call) { return call.arrived.constFirst().signature; });
    for (int i = 0; i < observed.calls.constFirst().arrived.constFirst().arguments.size(); ++i)
        columns.arguments << argumentName(observed, i);
    return columns;
}

/// The declaration and the constness; an operation that the lock does not have is not known to the
/// compiler's part of the test, and so its constness is not.
QString declarationOf(const QMetaMethod &slot, const QString &lastDefault)
{
    static const QHash<QByteArray, Declaration> all = [] {
        QHash<QByteArray, Declaration> bySignature;
        for (const Declaration &declaration : declarations())
            bySignature.insert(declaration.signature, declaration);
        return bySignature;
    }();
    const auto found = all.constFind(slot.methodSignature());
    const bool known = found != all.constEnd();

    QStringList parameters;
    for (int i = 0; i < slot.parameterCount(); ++i) {
        const QByteArray type =
            known ? QByteArray(found->parameterTypes[i]) : slot.parameterTypes().at(i) + ' ';
        parameters << QString::fromLatin1(type + slot.parameterNames().at(i));
    }
    if (!lastDefault.isEmpty())
        parameters.last() += QStringLiteral(" = ") + lastDefault;

    const auto constness = [known](bool isConst) {
        return !known    ? QStringLiteral("?")
               : isConst ? QStringLiteral("const")
                         : QStringLiteral("plain");
    };
    return QStringLiteral("%1 %2(%3) | %4 %5 | ")
        .arg(QString::fromLatin1(slot.typeName()), QString::fromLatin1(slot.name()),
             parameters.join(QStringLiteral(", ")), constness(known && found->constInFacade),
             constness(known && found->constInPrivate));
}

} // namespace

QStringList contractLines(const QVector<ObservedSlot> &observed)
{
    QStringList lines;
    for (int i = 0; i < observed.size(); ++i) {
        const ObservedSlot &full = observed.at(i);
        const WireColumns columns = wireColumns(full);
        QString lastDefault;
        while (i + 1 < observed.size() &&
               observed.at(i + 1).slot.attributes() & QMetaMethod::Cloned) {
            const ObservedSlot &variant = observed.at(++i);
            WireColumns variantColumns = wireColumns(variant);
            const int omitted = columns.arguments.indexOf(
                QString::fromLatin1(full.slot.parameterNames().constLast()));
            lastDefault = variantColumns.arguments.value(omitted);
            if (omitted >= 0 && omitted < variantColumns.arguments.size())
                variantColumns.arguments[omitted] = columns.arguments.at(omitted);
            if (variantColumns.text() != columns.text())
                lines << declarationOf(variant.slot, QString()) + wireColumns(variant).text();
        }
        lines << declarationOf(full.slot, lastDefault) + columns.text();
    }
    return lines;
}
