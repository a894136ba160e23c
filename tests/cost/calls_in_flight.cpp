// SPDX-License-Identifier: MIT

// calls_in_flight WAY CALLS: makes so many calls and nothing else, for a profiler to count: with
// Qt's asyncCall() by hand, of which 64 wait for their answers together ("hand"), the same by the
// library of calls that do not wait ("library"), and all at once by it, so that most wait in its
// queue
// ("queue").

#include "PrivateBus.h"
#include "RecordingService.h"
#include "ServiceName.h"

#include <libconfigurationmanager-async/AsyncConfigurationManager.h>

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingReply>

using libconfigurationmanager::AsyncConfigurationManager;

namespace {

constexpr int onBus = 64;
constexpr int answer = 9600;

void check(bool isRight)
{
    if (!isRight)
        qFatal("a call has failed");
}

template<typename MakeCall>
void makeCalls(int count, int together, MakeCall makeCall)
{
    QVector<decltype(makeCall())> replies;
    replies.reserve(count);
    for (int i = 0; i < count + together; ++i) {
        if (i >= together) {
            auto &reply = replies[i - together];
            reply.waitForFinished();
            check(reply.value() == answer);
        }
        if (i < count)
            replies.append(makeCall());
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QString way = QCoreApplication::arguments().value(1);
    const int calls = QCoreApplication::arguments().value(2).toInt();
    const PrivateBus bus;
    RecordingService service(bus);
    service.start();
    service.setAnswer(Answer::value(answer));
    AsyncConfigurationManager manager;
    const auto byLibrary = [&manager] { return manager.getBaudrate(); };
    const QDBusConnection connection = QDBusConnection::systemBus();
    const QString path = QStringLiteral("/");
    const QString method = QStringLiteral("getBaudrate");
    const QString id = QStringLiteral("masterCollectionKey");
    const auto byHand = [&] {
        QDBusMessage call = QDBusMessage::createMethodCall(serviceName, path, serviceName, method);
        call << id;
        return QDBusPendingReply<int>(connection.asyncCall(call));
    };
    if (way == QLatin1String("library"))
        makeCalls(calls, onBus, byLibrary);
    else if (way == QLatin1String("queue"))
        makeCalls(calls, calls, byLibrary);
    else if (way == QLatin1String("hand"))
        makeCalls(calls, onBus, byHand);
    else
        qFatal("usage: %s hand|library|queue CALLS", argv[0]);
    return EXIT_SUCCESS;
}
