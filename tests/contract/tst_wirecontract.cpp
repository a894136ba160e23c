// SPDX-License-Identifier: MIT

#include "LogCapture.h"
#include "NamedCall.h"
#include "TypedCalls.h"
#include "WireContract.h"

#include <QtCore/QHash>
#include <QtTest/QTest>

#include <cstdio>
#include <functional>
#include <utility>

namespace {

/// A facade, whose operations say in the log why they fail.
class FacadeSubject : public ContractSubject
{
public:
    using Caller = std::function<QVariant(Facade &, const QMetaMethod &slot, int round)>;

    explicit FacadeSubject(Caller caller) : m_caller(std::move(caller)) {}

    bool isConnected() const override { return m_facade.isConnected(); }
    void setCollectionId(const QString &id) override { m_facade.setCatalogsCollectionId(id); }

    Outcome call(const QMetaMethod &slot, int round) override
    {
        LogCapture log;
        Outcome outcome{m_caller(m_facade, slot, round), {}};
        for (const LogLine &line : log.takeLines())
            outcome.said << line.text;
        return outcome;
    }

private:
    const Caller m_caller;
    Facade m_facade{nullptr};
};

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
    void compareWithTheLock(const QVector<QMetaMethod> &methods, FacadeSubject::Caller call)
    {
        FacadeSubject subject(std::move(call));
        const QStringList changes = differencesFromTheLock(subject, methods, m_service);
        if (!changes.isEmpty()) {
            std::printf("What the lock (-) and the wire (+) do not have in common:\n%s\n",
                        qPrintable(changes.join(QLatin1Char('\n'))));
            QFAIL("The lines stand above. Is the change meant? Then change operations.lock and run "
                  "scripts/generate");
        }
    }

    PrivateBus m_bus;
    RecordingService m_service{m_bus};
};

QTEST_GUILESS_MAIN(TestWireContract)
#include "tst_wirecontract.moc"
