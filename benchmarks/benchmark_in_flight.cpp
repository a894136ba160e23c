// SPDX-License-Identifier: MIT

// What 205 settings cost when they are read one at a time, and when the calls wait together; beside
// the same calls made by hand with Qt D-Bus.

#include "ChildProcess.h"
#include "PrivateBus.h"
#include "ServiceName.h"

#include <libconfigurationmanager-async/AsyncConfigurationManager.h>
#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingReply>

#include <benchmark/benchmark.h>

#include <cstdlib>

using libconfigurationmanager::AsyncConfigurationManager;
using libconfigurationmanager::PendingReply;
using libconfigurationmanager::detail::ConfigurationManager;

namespace {

constexpr int settings = 205;

const QString objectPath = QStringLiteral("/");
const QString method = QStringLiteral("getBaudrate");
const QString collectionId = QStringLiteral("masterCollectionKey");

/// Qt's own call, with what a program that writes it by hand says each time.
QDBusPendingReply<int> callByHand(const QDBusConnection &bus)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(serviceName, objectPath, serviceName, method);
    call << collectionId;
    return bus.asyncCall(call);
}

int waitFor(QDBusPendingReply<int> &reply)
{
    reply.waitForFinished();
    return reply.value();
}

int waitFor(PendingReply<int> &reply)
{
    return reply.value();
}

/// Makes the calls, with no more than so many unanswered at a time.
template<typename MakeCall>
void readAll(int count, int inFlight, MakeCall makeCall)
{
    QVector<decltype(makeCall())> replies;
    replies.reserve(count);
    for (int i = 0; i < count; ++i) {
        if (i >= inFlight)
            benchmark::DoNotOptimize(waitFor(replies[i - inFlight]));
        replies.append(makeCall());
    }
    for (int i = qMax(0, count - inFlight); i < count; ++i)
        benchmark::DoNotOptimize(waitFor(replies[i]));
}

void readOneAtATime(benchmark::State &state)
{
    ConfigurationManager manager;
    for (auto _ : state) {
        for (int i = 0; i < settings; ++i)
            benchmark::DoNotOptimize(manager.getBaudrate());
    }
}

void readByAsyncCall(benchmark::State &state)
{
    const QDBusConnection bus = QDBusConnection::systemBus();
    for (auto _ : state)
        readAll(settings, int(state.range(0)), [&bus] { return callByHand(bus); });
}

void readWithoutWaiting(benchmark::State &state)
{
    AsyncConfigurationManager manager;
    manager.setMaximumInFlight(int(state.range(0)));
    // All at once: the queue keeps the number.
    for (auto _ : state)
        readAll(settings, settings, [&manager] { return manager.getBaudrate(); });
}

} // namespace

BENCHMARK(readOneAtATime)->UseRealTime();
BENCHMARK(readByAsyncCall)->Arg(1)->Arg(2)->Arg(8)->Arg(64)->UseRealTime();
BENCHMARK(readWithoutWaiting)->Arg(1)->Arg(2)->Arg(8)->Arg(64)->UseRealTime();

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const PrivateBus bus;
    ChildProcess service(QStringLiteral(BENCHMARK_SERVICE_PROGRAM),
                         {QStringLiteral(INTERFACE_FILE)});
    service.startAndReadLine();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
