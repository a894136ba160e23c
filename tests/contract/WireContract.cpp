// SPDX-License-Identifier: MIT

#include "WireContract.h"

#include "ContractLine.h"
#include "NamedCall.h"
#include "SampleValues.h"

#include <QtCore/QFile>
#include <QtCore/QSet>
#include <QtTest/QTest>

#include <algorithm>

namespace {

QStringList linesOfTheLock()
{
    QFile file(QStringLiteral(OPERATIONS_LOCK));
    if (!file.open(QFile::ReadOnly))
        qFatal("%s: %s", qPrintable(file.fileName()), qPrintable(file.errorString()));
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [](const QString &line) {
                                   return line.isEmpty() || line.startsWith(QLatin1Char('#'));
                               }),
                lines.end());
    return lines;
}

/// The lines that only one of the two has, as a diff marks them.
QStringList differences(const QStringList &expected, const QStringList &arrived)
{
    QStringList lines;
    const auto addMissing = [&lines](const QString &mark, const QStringList &from,
                                     const QStringList &in) {
        const QSet<QString> present(in.cbegin(), in.cend());
        for (const QString &line : from) {
            if (!present.contains(line))
                lines << mark + line;
        }
    };
    addMissing(QStringLiteral("- "), expected, arrived);
    addMissing(QStringLiteral("+ "), arrived, expected);
    // Next to each other what is about the same operation.
    std::stable_sort(lines.begin(), lines.end(), [](const QString &left, const QString &right) {
        return left.section(QLatin1Char('('), 0, 0).mid(2) <
               right.section(QLatin1Char('('), 0, 0).mid(2);
    });
    return lines;
}

} // namespace

QStringList differencesFromTheLock(ContractSubject &subject, const QVector<QMetaMethod> &methods,
                                   RecordingService &service)
{
    QVector<ObservedSlot> observed;
    for (const QMetaMethod &slot : methods)
        observed << ObservedSlot{slot, {}, {}};

    // The bus may not have noticed yet that the last one has gone.
    if (!QTest::qWaitFor([&subject] { return !subject.isConnected(); }))
        qFatal("There is a service already");
    for (ObservedSlot &each : observed)
        each.notConnected = subject.call(each.slot, 0).said;

    service.start();
    if (!QTest::qWaitFor([&subject] { return subject.isConnected(); }))
        qFatal("The service is not noticed");
    // The first id is the one that nobody has set.
    const QString ids[] = {QStringLiteral("masterCollectionKey"),
                           QStringLiteral("another collection"), QString()};
    for (int round = 0; round < 3; ++round) {
        if (round > 0)
            subject.setCollectionId(ids[round]);
        for (ObservedSlot &each : observed) {
            ObservedCall seen;
            seen.given = sampleArguments(each.slot, round);
            seen.collectionId = ids[round];
            seen.reply = sampleValue(each.slot.typeName(), round);
            service.setAnswer(seen.reply.isValid() ? Answer::value(seen.reply) : Answer());
            const ContractSubject::Outcome outcome = subject.call(each.slot, round);
            seen.returned = outcome.returned;
            seen.logged = outcome.said;
            seen.arrived = service.takeCalls();
            each.calls << seen;
        }
    }
    return differences(linesOfTheLock(), contractLines(observed));
}
