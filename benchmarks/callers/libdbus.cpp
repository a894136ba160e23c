// SPDX-License-Identifier: MIT

#include "Callers.h"

#include <benchmark/benchmark.h>
#include <dbus/dbus.h>

#include <cstdlib>

namespace {

class Appender
{
public:
    explicit Appender(DBusMessageIter *to) : m_to(to) {}

    void operator()(int32_t value) { append(DBUS_TYPE_INT32, &value); }
    void operator()(double value) { append(DBUS_TYPE_DOUBLE, &value); }
    void operator()(bool value)
    {
        const dbus_bool_t number = value;
        append(DBUS_TYPE_BOOLEAN, &number);
    }
    void operator()(const std::string &value)
    {
        const char *const text = value.c_str();
        append(DBUS_TYPE_STRING, &text);
    }
    void operator()(const std::vector<std::string> &list)
    {
        inside(DBUS_TYPE_ARRAY, "s", [&](Appender texts) {
            for (const std::string &text : list)
                texts(text);
        });
    }
    void operator()(const std::map<std::string, int32_t> &map) { appendMap(map, "i"); }
    void operator()(const std::map<std::string, std::vector<std::string>> &map)
    {
        appendMap(map, "as");
    }

private:
    void append(int type, const void *value) { dbus_message_iter_append_basic(m_to, type, value); }

    template<typename Append>
    void inside(int type, const char *signature, Append appendContents)
    {
        DBusMessageIter contents;
        dbus_message_iter_open_container(m_to, type, signature, &contents);
        appendContents(Appender(&contents));
        dbus_message_iter_close_container(m_to, &contents);
    }

    template<typename Map>
    void appendMap(const Map &map, const char *signature)
    {
        inside(DBUS_TYPE_ARRAY, "{sv}", [&](Appender entries) {
            for (const auto &[key, value] : map)
                entries.inside(DBUS_TYPE_DICT_ENTRY, nullptr,
                               [&, &key = key, &value = value](Appender entry) {
                                   entry(key);
                                   entry.inside(DBUS_TYPE_VARIANT, signature,
                                                [&](Appender variant) { variant(value); });
                               });
        });
    }

    DBusMessageIter *m_to;
};

void readAll(DBusMessageIter *from)
{
    int type = DBUS_TYPE_INVALID;
    while ((type = dbus_message_iter_get_arg_type(from)) != DBUS_TYPE_INVALID) {
        if (dbus_type_is_container(type)) {
            DBusMessageIter contents;
            dbus_message_iter_recurse(from, &contents);
            readAll(&contents);
        } else {
            DBusBasicValue value;
            dbus_message_iter_get_basic(from, &value);
            benchmark::DoNotOptimize(value);
        }
        dbus_message_iter_next(from);
    }
}

} // namespace

Caller connectLibdbus()
{
    DBusConnection *const connection = dbus_bus_get_private(DBUS_BUS_SYSTEM, nullptr);
    if (!connection)
        std::abort();
    return [connection](const Call &call) {
        DBusMessage *const message = dbus_message_new_method_call(
            service, objectPath, service, call.method.toLatin1().constData());
        DBusMessageIter to;
        dbus_message_iter_init_append(message, &to);
        for (const Argument &argument : call.arguments)
            std::visit(Appender(&to), argument);
        DBusMessage *const reply = dbus_connection_send_with_reply_and_block(
            connection, message, DBUS_TIMEOUT_USE_DEFAULT, nullptr);
        dbus_message_unref(message);
        if (!reply)
            return false;
        DBusMessageIter from;
        dbus_message_iter_init(reply, &from);
        readAll(&from);
        const bool isAnswer = dbus_message_has_signature(reply, call.resultSignature.c_str());
        dbus_message_unref(reply);
        return isAnswer;
    };
}
