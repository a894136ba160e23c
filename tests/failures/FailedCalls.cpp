// SPDX-License-Identifier: MIT

#include "FailedCalls.h"

#include "NamedCall.h"
#include "SampleValues.h"

#include <QtCore/QDebug>
#include <QtCore/QStringList>

namespace {

bool isDefault(const QMetaMethod &slot, const QVariant &result)
{
    if (slot.returnType() == QMetaType::QString)
        return result.toString().isNull();
    return plain(result) == plain(defaultValue(slot.typeName()));
}

/// The text as QDebug writes it: in quotes, on one line.
QString quoted(const QString &text)
{
    QString line;
    QDebug(&line).nospace() << text;
    return line;
}

/// Whether this is how the compiler names the private method with the slot's signature.
bool isPrivateMethod(const QString &function, const QByteArray &result, const QByteArray &signature)
{
    const QString start =
        QString::fromLatin1(result) +
        QStringLiteral(" libconfigurationmanager::detail::ConfigurationManagerPrivate::");
    QByteArray method = function.mid(start.size()).toLatin1();
    if (method.endsWith(" const"))
        method.chop(int(qstrlen(" const")));
    return function.startsWith(start) &&
           QMetaObject::normalizedSignature(method.constData()) == signature;
}

/// The operation that a default-argument variant calls; it stands directly before its variants.
QMetaMethod fullForm(const QMetaMethod &slot)
{
    int index = slot.methodIndex();
    while (Facade::staticMetaObject.method(index).attributes() & QMetaMethod::Cloned)
        --index;
    return Facade::staticMetaObject.method(index);
}

} // namespace

ExpectedLine notConnectedLine()
{
    return {QStringLiteral("libconfigurationmanager.ConfigurationManager"),
            QRegularExpression(QStringLiteral("^Not [cC]onnected\\.$"))};
}

ExpectedLine errorLine(const QString &message)
{
    return {QStringLiteral("default"),
            QRegularExpression(QLatin1Char('^') + QRegularExpression::escape(quoted(message)) +
                               QLatin1Char('$'))};
}

QString deviation(Facade &facade, const QMetaMethod &slot, const QVariantList &arguments,
                  const ExpectedLine &expected)
{
    LogCapture log;
    const QVariant result = callByName(facade, slot, arguments);
    const QVector<LogLine> lines = log.takeLines();
    if (!isDefault(slot, result))
        return QStringLiteral("returns ") + result.toString();
    if (expected.category.isEmpty())
        return lines.isEmpty() ? QString() : QStringLiteral("logs ") + lines.first().text;
    if (lines.size() != 1)
        return QStringLiteral("logs %1 lines").arg(lines.size());
    const LogLine &line = lines.first();
    if (line.type != QtCriticalMsg)
        return QStringLiteral("logs at level %1").arg(line.type);
    if (line.category != expected.category)
        return QStringLiteral("logs in the category ") + line.category;
    if (!expected.text.match(line.text).hasMatch())
        return QStringLiteral("logs ") + line.text;
    if (!isPrivateMethod(line.function, slot.typeName(), fullForm(slot).methodSignature()))
        return QStringLiteral("logs for the function ") + line.function;
    if (line.file != QStringLiteral("src/ConfigurationManager_p.cpp") || line.line <= 0)
        return QStringLiteral("logs for %1:%2").arg(line.file).arg(line.line);
    return {};
}

QString deviations(Facade &facade, const QVector<QMetaMethod> &methods,
                   const ExpectedLine &expected)
{
    QStringList all;
    for (const QMetaMethod &slot : methods) {
        const QString found = deviation(facade, slot, sampleArguments(slot), expected);
        if (!found.isEmpty())
            all << QString::fromLatin1(slot.methodSignature()) + QLatin1Char(' ') + found;
    }
    return all.join(QLatin1Char('\n'));
}

QMetaMethod slotOf(const char *signature)
{
    const QMetaObject &metaObject = Facade::staticMetaObject;
    return metaObject.method(metaObject.indexOfSlot(signature));
}

QVector<QMetaMethod> allSlots()
{
    return slotsOf(Facade::staticMetaObject);
}
