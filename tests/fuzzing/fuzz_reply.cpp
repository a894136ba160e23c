// SPDX-License-Identifier: MIT

// Reads replies of any types as the library does, and sends what has come back again. What the
// library takes for an argument must reach the other side; all else it must have refused before.

#include "Marshallable.h"
#include "RandomReply.h"
#include "WireTypes.h"

#include <QtCore/QTemporaryDir>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusReply>

#include <cstddef>
#include <cstdint>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace libconfigurationmanager;

/// What decides on the next reply: the calls that read it are waited for.
const uint8_t *next = nullptr;
const uint8_t *end = nullptr;

int nextBelow(int limit)
{
    int number = 0;
    for (int reach = 1; reach < limit && next != end; reach *= 256)
        number = number * 256 + *next++;
    return number % limit;
}

int answer(sd_bus_message *call, void *, sd_bus_error *)
{
    if (sd_bus_message_is_method_call(call, nullptr, "ask") > 0)
        sendRandomReply(call, nextBelow);
    else if (sd_bus_message_is_method_call(call, nullptr, "tell") > 0)
        check(sd_bus_reply_method_return(call, nullptr), "no reply");
    return 1;
}

/// The other side, without Qt.
void serve(int listener)
{
    const int client = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    check(client, "nobody has come");
    // Still there when the process ends.
    static sd_bus *bus = nullptr;
    sd_id128_t id;
    check(sd_id128_randomize(&id), "no id");
    check(sd_bus_new(&bus), "no connection");
    check(sd_bus_set_fd(bus, client, client), "no socket");
    check(sd_bus_set_server(bus, 1, id), "no server");
    check(sd_bus_negotiate_fds(bus, 1), "no descriptors");
    check(sd_bus_add_filter(bus, nullptr, answer, nullptr), "no filter");
    check(sd_bus_start(bus), "not started");
    int processed = 0;
    while ((processed = sd_bus_process(bus, nullptr)) >= 0) {
        if (processed == 0)
            sd_bus_wait(bus, UINT64_MAX);
    }
}

QDBusConnection &connection()
{
    static const QTemporaryDir folder;
    static QDBusConnection connection = [] {
        const QByteArray path = folder.filePath(QStringLiteral("socket")).toLocal8Bit();
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
        const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 ||
            listen(listener, 1) != 0)
            qFatal("No socket");
        std::thread(serve, listener).detach();
        detail::registerWireTypes();
        return QDBusConnection::connectToPeer(
            QStringLiteral("unix:path=") + QString::fromLocal8Bit(path), QStringLiteral("fuzzing"));
    }();
    return connection;
}

QDBusMessage call(const QString &method, const QVariantList &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(QString(), QStringLiteral("/"),
                                                          QStringLiteral("tests.fuzzing"), method);
    message.setArguments(arguments);
    QDBusPendingCall pending = connection().asyncCall(message);
    pending.waitForFinished();
    return pending.reply();
}

/// The value after a part of it has been read, as an application may have done.
QVariant partlyRead(const QVariant &value)
{
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return value;
    const auto argument = value.value<QDBusArgument>();
    for (int steps = nextBelow(8); steps > 0 && !argument.atEnd(); --steps) {
        switch (argument.currentType()) {
        case QDBusArgument::ArrayType:
            argument.beginArray();
            break;
        case QDBusArgument::StructureType:
            argument.beginStructure();
            break;
        case QDBusArgument::MapType:
            argument.beginMap();
            break;
        case QDBusArgument::MapEntryType:
            argument.beginMapEntry();
            break;
        default:
            argument.asVariant();
        }
    }
    return QVariant::fromValue(argument);
}

void sendBack(QVariantList arguments)
{
    if (!detail::marshallingProblem(arguments).isEmpty())
        return;
    const QDBusMessage reply = call(QStringLiteral("tell"), arguments);
    if (reply.type() != QDBusMessage::ReplyMessage)
        qFatal("%s: %s", qPrintable(reply.errorName()), qPrintable(reply.errorMessage()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (!connection().isConnected())
        qFatal("%s", qPrintable(connection().lastError().message()));
    next = data;
    end = data + size;
    const QDBusMessage reply = call(QStringLiteral("ask"));
    const int resultTypes[] = {QMetaType::Int,
                               QMetaType::Bool,
                               QMetaType::Double,
                               QMetaType::QString,
                               QMetaType::QVariantMap,
                               detail::propListType(),
                               detail::configurationListType()};
    for (const int type : resultTypes) {
        QDBusError error;
        QVariant value(type, nullptr);
        qDBusReplyFill(reply, error, value);
    }
    if (reply.type() != QDBusMessage::ReplyMessage)
        return 0;
    // As they are, and in a map as an application may have kept them.
    sendBack(reply.arguments());
    QVariantMap map;
    for (const QVariant &argument : reply.arguments())
        map.insert(QString::number(map.size()), partlyRead(argument));
    sendBack({map});
    return 0;
}
