// SPDX-License-Identifier: MIT

// Calls an operation of the library again and again, and the same method by hand with Qt D-Bus, for
// a profiler to look at; says how many allocations the calling thread makes for each.

#include "PrivateBus.h"
#include "RecordingService.h"
#include "ServiceName.h"

#include <libconfigurationmanager/ConfigurationManager.h>
#include <libtavelorn/DBusService.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QScopedPointer>
#include <QtDBus/QDBusAbstractInterface>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusReply>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <sys/mman.h>

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

constexpr int warmUpCalls = 10;
constexpr int calls = 50;

thread_local int allocations = 0;

QVariantMap mapOf(int entries)
{
    QVariantMap map;
    for (int i = 0; i < entries; ++i)
        map.insert(QStringLiteral("Setting%1").arg(i), i);
    return map;
}

} // namespace

// The profiler finds the two by their names.
Q_NEVER_INLINE void callByLibrary(const std::function<void()> &call)
{
    call();
}

Q_NEVER_INLINE void callByHand(const std::function<void()> &call)
{
    call();
}

namespace {

// Of the call in the middle: how the threads meet now and then costs one of them an allocation
// more.
int allocationsOf(void (*how)(const std::function<void()> &), const std::function<void()> &call)
{
    for (int i = 0; i < warmUpCalls; ++i)
        call();
    std::array<int, calls> counts{};
    for (int &count : counts) {
        const int before = allocations;
        how(call);
        count = allocations - before;
    }
    auto *const middle = counts.begin() + calls / 2;
    std::nth_element(counts.begin(), middle, counts.end());
    return *middle;
}

} // namespace

// An allocator of constant cost, so that what the rest costs can be told: nothing is used again.
namespace {

constexpr size_t arenaSize = size_t(1) << 32;
constexpr size_t alignment = 16;

void *allocate(size_t size)
{
    static char *const arena =
        static_cast<char *>(mmap(nullptr, arenaSize, PROT_READ | PROT_WRITE,
                                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
    static std::atomic<size_t> used{0};
    ++allocations;
    const size_t needed = alignment + (size + alignment - 1) / alignment * alignment;
    char *const block = arena + used.fetch_add(needed);
    *reinterpret_cast<size_t *>(block) = size;
    return block + alignment;
}

} // namespace

// The names of the parameters are the C library's own affair.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" void *malloc(size_t size)
{
    return allocate(size);
}

extern "C" void free(void *) {}

extern "C" void *calloc(size_t count, size_t size)
{
    return allocate(count * size); // the arena is zero
}

extern "C" void *realloc(void *old, size_t size)
{
    void *const block = allocate(size);
    if (old)
        memcpy(block, old,
               std::min(size, *reinterpret_cast<size_t *>(static_cast<char *>(old) - alignment)));
    return block;
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const PrivateBus bus;
    RecordingService service(bus);
    service.start();
    ConfigurationManager manager;
    libtavelorn::DBusService watched(QDBusConnection::systemBus(), serviceName, nullptr);
    QDBusAbstractInterface *proxy = watched.interface(QStringLiteral("/"), serviceName);
    const QString id = QStringLiteral("masterCollectionKey");
    const auto byHand = [&](const QString &method, const QVariantList &arguments) {
        QDBusPendingCall call = proxy->asyncCallWithArgumentList(method, arguments);
        call.waitForFinished();
        return call.reply();
    };
    const QVariantMap few = mapOf(4);
    const QVariantMap many = mapOf(104);

    struct Pair
    {
        QVariant answer;
        std::function<void()> library;
        std::function<void()> hand;
    };
    const std::map<QString, Pair> pairs{
        {QStringLiteral("getter"),
         {9600, [&] { manager.getBaudrate(); },
          [&] { QDBusReply<int>(byHand(QStringLiteral("getBaudrate"), {id})).value(); }}},
        {QStringLiteral("setter"),
         {QVariant(), [&] { manager.setOddLowPulseTime(9600); },
          [&] {
              byHand(QStringLiteral("setOddLowPulseTime"), {9600, id, false});
          }}},
        {QStringLiteral("map of 4"),
         {true, [&] { manager.processSequence(few); },
          [&] { QDBusReply<bool>(byHand(QStringLiteral("processSequence"), {few})).value(); }}},
        {QStringLiteral("map of 104"),
         {true, [&] { manager.processSequence(many); },
          [&] { QDBusReply<bool>(byHand(QStringLiteral("processSequence"), {many})).value(); }}},
    };
    const auto pair = pairs.find(QCoreApplication::arguments().value(1));
    if (pair == pairs.end())
        qFatal("usage: %s getter|setter|'map of 4'|'map of 104'", argv[0]);
    service.setAnswer(pair->second.answer.isValid() ? Answer::value(pair->second.answer)
                                                    : Answer());
    std::printf("%d %d\n", allocationsOf(callByLibrary, pair->second.library),
                allocationsOf(callByHand, pair->second.hand));
    return EXIT_SUCCESS;
}
