// SPDX-License-Identifier: MIT

// What an operation costs the application, beside the same call made by hand with Qt D-Bus.

#include "PrivateBus.h"
#include "RecordingService.h"
#include "ServiceName.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusInterface>
#include <QtDBus/QDBusReply>

#include <benchmark/benchmark.h>

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

const QString objectPath = QStringLiteral("/");
const QString collectionId = QStringLiteral("masterCollectionKey");

/// The service of all benchmarks: Qt connects to the system bus only once in a process.
class Service : public RecordingService
{
public:
    static Service &instance()
    {
        static PrivateBus bus;
        static Service service(bus);
        return service;
    }

private:
    explicit Service(const PrivateBus &bus) : RecordingService(bus) { start(); }
};

void ignoreLog(QtMsgType, const QMessageLogContext &, const QString &) {}

/// Lets the service answer value to everything, and runs operation again and again.
template<typename Operation>
void run(benchmark::State &state, const QVariant &value, Operation operation)
{
    Service::instance().setAnswer(Answer::value(value));
    for (auto _ : state)
        benchmark::DoNotOptimize(operation());
    Service::instance().takeCalls();
}

void readIntByQDBusInterface(benchmark::State &state)
{
    Service::instance();
    QDBusInterface interface(serviceName, objectPath, serviceName, QDBusConnection::systemBus());
    run(state, 9600, [&] {
        return QDBusReply<int>(interface.call(QStringLiteral("getBaudrate"), collectionId)).value();
    });
}

void readInt(benchmark::State &state)
{
    Service::instance();
    ConfigurationManager manager;
    run(state, 9600, [&] { return manager.getBaudrate(); });
}

void readIntByName(benchmark::State &state)
{
    Service::instance();
    ConfigurationManager manager;
    run(state, 9600, [&] {
        int value = 0;
        QMetaObject::invokeMethod(&manager, "getBaudrate", Q_RETURN_ARG(int, value));
        return value;
    });
}

void write(benchmark::State &state)
{
    Service::instance();
    ConfigurationManager manager;
    run(state, 0, [&] {
        manager.setBaudrate(9600);
        return 0;
    });
}

void readWhileNotConnected(benchmark::State &state)
{
    Service::instance().kill();
    ConfigurationManager manager;
    while (manager.isConnected())
        QCoreApplication::processEvents();
    qInstallMessageHandler(ignoreLog);
    for (auto _ : state)
        benchmark::DoNotOptimize(manager.getBaudrate());
    qInstallMessageHandler(nullptr);
    Service::instance().start();
}

void construct(benchmark::State &state)
{
    Service::instance();
    for (auto _ : state)
        ConfigurationManager();
}

} // namespace

BENCHMARK(readIntByQDBusInterface);
BENCHMARK(readInt);
BENCHMARK(readIntByName);
BENCHMARK(write);
BENCHMARK(readWhileNotConnected);
BENCHMARK(construct)->Iterations(100);

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
