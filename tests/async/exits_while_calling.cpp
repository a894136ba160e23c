// SPDX-License-Identifier: MIT

// Ends while its threads make calls and wait for them.

#include <libconfigurationmanager-async/AsyncConfigurationManager.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

#include <atomic>
#include <cstdlib>

using libconfigurationmanager::AsyncConfigurationManager;

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    std::atomic<int> answers{0};
    for (int i = 0; i < 4; ++i) {
        // Not destroyed at exit, when the threads still use them.
        QThread::create([&answers] {
            auto *manager = new AsyncConfigurationManager;
            for (;;) {
                for (int unasked = 0; unasked < 100; ++unasked)
                    manager->getTabSize();
                manager->getTabSize().waitForFinished();
                ++answers;
            }
        })->start();
    }
    while (answers < 20)
        QThread::msleep(1);
    std::exit(EXIT_SUCCESS);
}
