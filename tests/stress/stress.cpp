// SPDX-License-Identifier: MIT

// Puts the library under one kind of load for some seconds:
//
//   stress SHAPE [SECONDS]
//
// It fails when a call returns anything but the answer to its own question or the default. That the
// process ends in order is what the shapes are for: run it with the checks of malloc or a
// sanitizer.

#include "ChildProcess.h"
#include "LogCapture.h"
#include "NamedCall.h"
#include "PrivateBus.h"
#include "SampleValues.h"

#include <libconfigurationmanager/ConfigurationManager.h>
#include <libtavelorn/DBusService.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QThread>
#include <QtCore/QTimer>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <future>
#include <memory>
#include <mutex>
#include <numeric>
#include <thread>
#include <vector>

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

constexpr int threadCount = 8;

std::atomic<bool> isOver{false};
std::atomic<qint64> callCount{0};
std::atomic<qint64> answerCount{0};
std::atomic<qint64> mistakeCount{0};

/// The service, which behaves as its arguments say.
class Service : public ChildProcess
{
public:
    explicit Service(const QStringList &arguments)
        : ChildProcess(QStringLiteral(STRESS_SERVICE_PROGRAM), arguments)
    {
        startAndReadLine();
    }
};

/// Calls until the time is over, and returns how often. The answer to each question is the
/// question.
qint64 ask(const ConfigurationManager &manager)
{
    qint64 number = 0;
    while (!isOver) {
        const QString question =
            QStringLiteral("%1-%2")
                .arg(reinterpret_cast<quintptr>(QThread::currentThreadId()), 0, 16)
                .arg(++number);
        const QString answer = manager.getProposition(question);
        ++callCount;
        if (answer == question)
            ++answerCount;
        else if (!answer.isNull())
            ++mistakeCount;
    }
    return number;
}

/// Threads that call, each over the manager that stands at its place, round by round.
class Callers
{
public:
    Callers(int count, const std::vector<std::unique_ptr<ConfigurationManager>> &managers)
    {
        for (int i = 0; i < count; ++i) {
            m_callers.push_back(
                std::async(std::launch::async, [&manager = *managers.at(i % managers.size())] {
                    return ask(manager);
                }));
        }
    }
    ~Callers() { isOver = true; }
    Q_DISABLE_COPY(Callers)

    /// Ends them, and returns how many calls each of them has made.
    std::vector<qint64> counts()
    {
        isOver = true;
        std::vector<qint64> all;
        for (std::future<qint64> &caller : m_callers)
            all.push_back(caller.get());
        return all;
    }

private:
    std::vector<std::future<qint64>> m_callers;
};

std::vector<std::unique_ptr<ConfigurationManager>> managers(int count)
{
    // As an application does whose threads call while its event loop starts.
    static std::once_flag isBusAskedFor;
    std::call_once(isBusAskedFor, [] { std::thread([] { QDBusConnection::systemBus(); }).join(); });

    std::vector<std::unique_ptr<ConfigurationManager>> all;
    for (int i = 0; i < count; ++i) {
        all.push_back(std::make_unique<ConfigurationManager>(nullptr));
        all.back()->setCheckConnection(false);
    }
    return all;
}

void runEventLoop(int milliseconds)
{
    QTimer::singleShot(milliseconds, QCoreApplication::instance(), &QCoreApplication::quit);
    QCoreApplication::exec();
}

/// One or more threads against one service.
void call(const QStringList &behaviour, int threads, int managerCount, int milliseconds)
{
    const Service service(behaviour);
    const auto all = managers(managerCount);
    const Callers callers(threads, all);
    runEventLoop(milliseconds);
}

/// Threads that share a manager get equal parts of its time.
void share(int milliseconds)
{
    const Service service({QStringLiteral("echo")});
    const auto all = managers(1);
    Callers callers(threadCount, all);
    runEventLoop(milliseconds);
    const std::vector<qint64> counts = callers.counts();
    const qint64 mean = std::accumulate(counts.begin(), counts.end(), qint64(0)) / threadCount;
    const qint64 least = *std::min_element(counts.begin(), counts.end());
    std::printf("calls of a thread: %lld, at least half of the mean of %lld\n", least, mean);
    if (least < mean / 2)
        ++mistakeCount;
}

/// One manager is called in a thread, while the main thread asks the bus for owners.
void askForOwners(int milliseconds)
{
    const Service service({QStringLiteral("error")});
    const auto all = managers(1);
    const Callers callers(1, all);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [] {
        const libtavelorn::DBusService absent(QDBusConnection::systemBus(),
                                              QStringLiteral("com.example.Absent"), nullptr);
    });
    timer.start(0);
    runEventLoop(milliseconds);
}

/// The bus is killed under the load of all threads, once.
void loseTheBus(PrivateBus &bus)
{
    const Service service({QStringLiteral("error")});
    const auto all = managers(threadCount);
    const Callers callers(threadCount, all);
    QTimer::singleShot(100, [&] { bus.kill(); });
    runEventLoop(150);
}

/// A service that answers, and to which something happens every 20 milliseconds.
QStringList echoUntil(const char *event)
{
    return {QStringLiteral("echo"), QStringLiteral("20"), QString::fromLatin1(event)};
}

/// The memory of this process, in KiB: what is its own, not what it shares.
qint64 ownMemory()
{
    QFile file(QStringLiteral("/proc/self/smaps_rollup"));
    if (!file.open(QFile::ReadOnly))
        qFatal("no %s", qPrintable(file.fileName()));
    static const QRegularExpression entry(QStringLiteral("Private_Dirty: *(\\d+) kB"));
    return entry.match(QString::fromLatin1(file.readAll())).captured(1).toLongLong();
}

int openDescriptors()
{
    return int(QDir(QStringLiteral("/proc/self/fd")).count());
}

/// Makes calls of all outcomes for a time, and again for three times as long.
void watchGrowth(int milliseconds)
{
    const auto all = managers(1);
    const ConfigurationManager &manager = *all.front();
    const auto callFor = [&](const char *behaviour, int time) {
        const Service service({QString::fromLatin1(behaviour)});
        QElapsedTimer timer;
        for (timer.start(); timer.elapsed() < time; ++callCount) {
            manager.getProposition(QString::number(callCount));
            manager.getTabSize();
        }
        runEventLoop(1);
    };
    const auto callAllFor = [&](int time) {
        for (const char *behaviour : {"echo", "error", "error-without-body"})
            callFor(behaviour, time / 3);
    };
    callAllFor(milliseconds / 4);
    const qint64 memory = ownMemory();
    const int descriptors = openDescriptors();
    callAllFor(milliseconds * 3 / 4);
    const qint64 growth = ownMemory() - memory;
    std::printf("%lld KiB of memory, %+lld; %d descriptors, %+d\n", memory, growth, descriptors,
                openDescriptors() - descriptors);
    // Some pages are the allocator's; a leak in each call would be hundreds.
    if (growth > std::max<qint64>(memory / 100, 128) || openDescriptors() > descriptors)
        ++mistakeCount;
}

/// Makes and destroys that many facades, whose private objects stay on purpose.
void watchFacades(int count)
{
    constexpr int mostBytes = 6144;
    managers(100);
    const qint64 memory = ownMemory();
    const int descriptors = openDescriptors();
    for (int i = 0; i < count; ++i)
        managers(1);
    runEventLoop(1);
    const qint64 each = (ownMemory() - memory) * 1024 / count;
    std::printf("%lld bytes for each of %d facades, at most %d; %+d descriptors\n", each, count,
                mostBytes, openDescriptors() - descriptors);
    if (each > mostBytes || openDescriptors() > descriptors)
        ++mistakeCount;
}

/// Calls all operations, whatever the service answers: each gives a value without a line, or its
/// default with one.
void callForRandomReplies(int milliseconds)
{
    const Service service({QStringLiteral("random")});
    const auto all = managers(1);
    LogCapture log;
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds) {
        for (const QMetaMethod &operation : slotsOf(ConfigurationManager::staticMetaObject)) {
            const QVariant result = callByName(*all.front(), operation, sampleArguments(operation));
            const int lines = log.takeLines().size();
            ++callCount;
            answerCount += lines == 0;
            if (lines > 1 ||
                (lines == 1 && plain(result) != plain(defaultValue(operation.typeName()))))
                ++mistakeCount;
        }
    }
    // Fewer fit only when the service has gone.
    if (answerCount < callCount / 10)
        ++mistakeCount;
}

int exitCode()
{
    std::printf("%lld calls, %lld answered, %lld mistakes\n", callCount.load(), answerCount.load(),
                mistakeCount.load());
    return mistakeCount == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// The process ends while all threads go on calling.
void leaveThreadsCalling()
{
    // Not destroyed at exit, when the threads still use them.
    static const auto *const all = new auto(managers(threadCount));
    for (const auto &manager : *all)
        std::thread([&manager] { ask(*manager); }).detach();
    runEventLoop(50);
}

/// A message handler ends the process out of a call.
void leaveOutOfACall()
{
    qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &) { exit(EXIT_SUCCESS); });
    ask(*managers(1).front());
}

/// What happens to a process only once is repeated in processes of their own.
int repeat(const QString &shape, int milliseconds)
{
    constexpr int longestCall = 25000;
    int count = 0;
    QElapsedTimer timer;
    for (timer.start(); timer.elapsed() < milliseconds; ++count) {
        ChildProcess child(QCoreApplication::applicationFilePath(), {shape});
        child.setStandardOutputFile(QProcess::nullDevice());
        child.start();
        if (!child.waitForFinished(2 * longestCall) || child.exitStatus() != QProcess::NormalExit ||
            child.exitCode() != EXIT_SUCCESS) {
            std::printf("failed after %d times: %s\n", count, qPrintable(child.errorString()));
            return EXIT_FAILURE;
        }
    }
    std::printf("%d times\n", count);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString shape = arguments.value(1);
    const int milliseconds = arguments.value(2, QStringLiteral("1")).toInt() * 1000;
    if (shape == QStringLiteral("lost-buses"))
        return repeat(QStringLiteral("bus-lost"), milliseconds);

    // Each failed call is a line: thousands of them a second are of no use to anybody.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    if (shape == QStringLiteral("left-by-return")) {
        leaveThreadsCalling();
        return EXIT_SUCCESS;
    }
    if (shape == QStringLiteral("left-by-exit")) {
        leaveThreadsCalling();
        exit(EXIT_SUCCESS);
    }

    if (shape == QStringLiteral("left-out-of-a-call"))
        leaveOutOfACall();

    PrivateBus bus;
    if (shape == QStringLiteral("exits")) {
        const Service service({QStringLiteral("echo")});
        return repeat(QStringLiteral("left-by-return"), milliseconds / 2) |
               repeat(QStringLiteral("left-by-exit"), milliseconds / 2);
    }
    if (shape == QStringLiteral("exits-out-of-a-call")) {
        const Service service({QStringLiteral("error")});
        return repeat(QStringLiteral("left-out-of-a-call"), milliseconds);
    }
    if (shape == QStringLiteral("exits-with-a-silent-service")) {
        const Service service({QStringLiteral("silence")});
        return repeat(QStringLiteral("left-by-exit"), milliseconds);
    }
    if (shape == QStringLiteral("answers"))
        call({QStringLiteral("echo")}, threadCount, 1, milliseconds);
    else if (shape == QStringLiteral("errors-without-body"))
        call({QStringLiteral("error-without-body")}, 1, 1, milliseconds);
    else if (shape == QStringLiteral("errors-of-eight-managers"))
        call({QStringLiteral("error")}, threadCount, threadCount, milliseconds);
    else if (shape == QStringLiteral("errors-of-two-managers"))
        call({QStringLiteral("error")}, 2, 2, milliseconds);
    else if (shape == QStringLiteral("restarts-of-one-manager"))
        call(echoUntil("kill"), threadCount, 1, milliseconds);
    else if (shape == QStringLiteral("restarts-of-eight-managers"))
        call(echoUntil("kill"), threadCount, threadCount, milliseconds);
    else if (shape == QStringLiteral("stops"))
        call(echoUntil("stop"), threadCount, threadCount, milliseconds);
    else if (shape == QStringLiteral("hand-overs"))
        call(echoUntil("replace"), threadCount, threadCount, milliseconds);
    else if (shape == QStringLiteral("queues"))
        call(echoUntil("queue"), threadCount, threadCount, milliseconds);
    else if (shape == QStringLiteral("random-replies"))
        callForRandomReplies(milliseconds);
    else if (shape == QStringLiteral("growth"))
        watchGrowth(milliseconds);
    else if (shape == QStringLiteral("facades"))
        watchFacades(milliseconds);
    else if (shape == QStringLiteral("shares"))
        share(milliseconds);
    else if (shape == QStringLiteral("owners"))
        askForOwners(milliseconds);
    else if (shape == QStringLiteral("bus-lost"))
        loseTheBus(bus);
    else
        return EXIT_FAILURE;
    return exitCode();
}
