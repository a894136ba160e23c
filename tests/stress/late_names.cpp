// SPDX-License-Identifier: MIT

// Preloaded into a program, this has Qt's D-Bus thread stop whenever it has made room for one more
// element of a list and not yet put it there. Among the lists are the names of the connection,
// which Qt adds to without a lock while calls look into them: what crashes once in some thousand
// starts does so in most.

#include <atomic>
#include <chrono>
#include <cstring>
#include <dlfcn.h>
#include <pthread.h>
#include <thread>

// QListData::detach_grow(int *, int)
// NOLINTNEXTLINE(bugprone-reserved-identifier): as the compiler names it
extern "C" void *_ZN9QListData11detach_growEPii(void *list, int *index, int count)
{
    using Original = void *(*)(void *, int *, int);
    static const auto original =
        reinterpret_cast<Original>(dlsym(RTLD_NEXT, "_ZN9QListData11detach_growEPii"));
    // The names are there soon, and then there is no end of other lists.
    static std::atomic<int> listCount{0};
    void *const shared = original(list, index, count);
    char name[16];
    if (pthread_getname_np(pthread_self(), name, sizeof name) == 0 &&
        std::strcmp(name, "QDBusConnection") == 0 && ++listCount <= 50)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return shared;
}
