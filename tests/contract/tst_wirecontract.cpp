// SPDX-License-Identifier: MIT

#include "ContractLine.h"
#include "LogCapture.h"
#include "NamedCall.h"
#include "RecordingService.h"
#include "TypedCalls.h"

#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtTest/QTest>

#include <algorithm>
#include <cstdio>
#include <functional>

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

/// What arrives at the service is what the lock says, however an operation is called.
class TestWireContract : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { m_service.kill(); }

    void typedCallsAreTheLinesOfTheLock()
    {
        QHash<QByteArray, TypedCall> calls;
        for (const TypedCall &call : typedCalls())
            calls.insert(call.signature, call);
        QVector<QMetaMethod> inTheLock;
        for (const QMetaMethod &slot : slotsOf(Facade::staticMetaObject)) {
            if (calls.contains(slot.methodSignature()))
                inTheLock << slot;
        }

        compareWithTheLock(inTheLock, [&calls](Facade &facade, const QMetaMethod &slot, int round) {
            return calls.value(slot.methodSignature()).call(facade, In(round));
        });
    }

    void callsByNameAreTheLinesOfTheLock()
    {
        compareWithTheLock(slotsOf(Facade::staticMetaObject),
                           [](Facade &facade, const QMetaMethod &slot, int round) {
                               return callByName(facade, slot, sampleArguments(slot, round));
                           });
    }

private:
    using Caller = std::function<QVariant(Facade &, const QMetaMethod &slot, int round)>;

    void compareWithTheLock(const QVector<QMetaMethod> &methods, const Caller &call)
    {
        QVector<ObservedSlot> observed;
        for (const QMetaMethod &slot : methods)
            observed << ObservedSlot{slot, {}, {}};

        Facade facade(nullptr);
        QVERIFY(!facade.isConnected());
        for (ObservedSlot &each : observed) {
            LogCapture log;
            call(facade, each.slot, 0);
            each.notConnected = textsOf(log);
        }

        m_service.start();
        QTRY_VERIFY(facade.isConnected());
        // The first id is the one that nobody has set.
        const QString ids[] = {QStringLiteral("masterCollectionKey"),
                               QStringLiteral("another collection"), QString()};
        for (int round = 0; round < 3; ++round) {
            if (round > 0)
                facade.setCatalogsCollectionId(ids[round]);
            for (ObservedSlot &each : observed) {
                ObservedCall seen;
                seen.given = sampleArguments(each.slot, round);
                seen.collectionId = ids[round];
                seen.reply = sampleValue(each.slot.typeName(), round);
                m_service.setAnswer(seen.reply.isValid() ? Answer::value(seen.reply) : Answer());
                LogCapture log;
                seen.returned = call(facade, each.slot, round);
                seen.logged = textsOf(log);
                seen.arrived = m_service.takeCalls();
                each.calls << seen;
            }
        }

        const QStringList changes = differences(linesOfTheLock(), contractLines(observed));
        if (!changes.isEmpty()) {
            std::printf("What the lock (-) and the wire (+) do not have in common:\n%s\n",
                        qPrintable(changes.join(QLatin1Char('\n'))));
            QFAIL("The lines stand above. Is the change meant? Then change operations.lock and run "
                  "scripts/generate");
        }
    }

    static QStringList textsOf(LogCapture &log)
    {
        QStringList texts;
        for (const LogLine &line : log.takeLines())
            texts << line.text;
        return texts;
    }

    PrivateBus m_bus;
    RecordingService m_service{m_bus};
};

QTEST_GUILESS_MAIN(TestWireContract)
#include "tst_wirecontract.moc"
