// SPDX-License-Identifier: MIT

#include "AsyncTypedCalls.h"
#include "DescribedCalls.h"
#include "LogCapture.h"
#include "NamedCall.h"
#include "WireContract.h"

#include <QtCore/QEventLoop>
#include <QtCore/QHash>
#include <QtCore/QTimer>
#include <QtTest/QTest>

#include <cstdio>
#include <functional>
#include <utility>

namespace {

/// Waits for what is pending.
using Waiter = std::function<void(AnyReply &)>;

/// The operations that do not wait, each waited for; their errors say why they fail.
class AsyncSubject : public ContractSubject
{
public:
    explicit AsyncSubject(Waiter waiter) : m_waiter(std::move(waiter))
    {
        for (const AsyncTypedCall &call : asyncTypedCalls())
            m_calls.insert(call.signature, call);
    }

    bool has(const QMetaMethod &slot) const { return m_calls.contains(slot.methodSignature()); }
    int count() const { return m_calls.size(); }

    bool isConnected() const override { return m_manager.isConnected(); }
    void setCollectionId(const QString &id) override { m_manager.setCatalogsCollectionId(id); }

    Outcome call(const QMetaMethod &slot, int round) override
    {
        const LogCapture log;
        return wait(m_calls.value(slot.methodSignature()).call(m_manager, In(round)));
    }

protected:
    Outcome wait(AnyReply reply) const
    {
        m_waiter(reply);
        Outcome outcome{reply.value(), {}};
        if (reply.isError())
            outcome.said << reply.error().message();
        return outcome;
    }

    const Async &manager() const { return m_manager; }

private:
    const Waiter m_waiter;
    QHash<QByteArray, AsyncTypedCall> m_calls;
    Async m_manager;
};

/// The same by the names of the methods on the bus.
class DescribedSubject : public AsyncSubject
{
public:
    using AsyncSubject::AsyncSubject;

    Outcome call(const QMetaMethod &slot, int round) override
    {
        // The text is the operation's own, which the name of a method does not tell.
        if (!isConnected())
            return AsyncSubject::call(slot, round);
        return wait(AnyReply(callByDescription(manager(), slot, sampleArguments(slot, round))));
    }
};

} // namespace

/// What arrives at the service is what the lock says.
class TestAsyncContract : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { m_service.kill(); }

    void callsThatAreWaitedForAreTheLinesOfTheLock()
    {
        compareWithTheLock(AsyncSubject([](AnyReply &reply) { reply.waitForFinished(); }));
    }

    void callsByTheNamesOfTheMethodsAreTheLinesOfTheLock()
    {
        compareWithTheLock(DescribedSubject([](AnyReply &reply) { reply.waitForFinished(); }));
    }

    void callsThatCallBackAreTheLinesOfTheLock()
    {
        compareWithTheLock(AsyncSubject([](AnyReply &reply) {
            QVariant told;
            // Unlike QTest's waiting it does not sleep in between.
            QEventLoop loop;
            reply.then(
                &loop,
                [&](const QVariant &value) {
                    told = value;
                    loop.exit(1);
                },
                [&](const QDBusError &) { loop.exit(1); });
            QTimer::singleShot(10000, &loop, &QEventLoop::quit);
            QCOMPARE(loop.exec(), 1);
            if (!reply.isError())
                QCOMPARE(told, reply.value());
        }));
    }

private:
    void compareWithTheLock(AsyncSubject &&subject)
    {
        QVector<QMetaMethod> methods;
        for (const QMetaMethod &slot : slotsOf(Facade::staticMetaObject)) {
            if (subject.has(slot))
                methods << slot;
        }
        QCOMPARE(methods.size(), subject.count());
        const QStringList changes = differencesFromTheLock(subject, methods, m_service);
        if (!changes.isEmpty()) {
            std::printf("What the lock (-) and the wire (+) do not have in common:\n%s\n",
                        qPrintable(changes.join(QLatin1Char('\n'))));
            QFAIL("The lines stand above");
        }
    }

    PrivateBus m_bus;
    RecordingService m_service{m_bus};
};

QTEST_GUILESS_MAIN(TestAsyncContract)
#include "tst_async_contract.moc"
