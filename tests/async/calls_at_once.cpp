// SPDX-License-Identifier: MIT

// Makes calls as soon as its event loop runs, and ends with the answer to the last one.

#include <libconfigurationmanager-async/AsyncConfigurationManager.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

using libconfigurationmanager::AsyncConfigurationManager;

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    AsyncConfigurationManager manager;
    // One after the other, so that there is always one being made.
    constexpr int count = 300;
    int callCount = 0;
    int answerCount = 0;
    bool isComplete = true;
    const auto countAnswer = [&](int) {
        if (++answerCount == count)
            QCoreApplication::exit(isComplete ? EXIT_SUCCESS : EXIT_FAILURE);
    };
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (++callCount == count)
            timer.stop();
        manager.getTabSize().then(&manager, countAnswer, [&](const QDBusError &) {
            isComplete = false;
            countAnswer(0);
        });
    });
    timer.start(1);
    return QCoreApplication::exec();
}
