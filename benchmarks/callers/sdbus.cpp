// SPDX-License-Identifier: MIT

#include "Callers.h"

#include <benchmark/benchmark.h>
#include <systemd/sd-bus.h>

#include <cstdlib>
#include <cstring>

namespace {

class Appender
{
public:
    explicit Appender(sd_bus_message *to) : m_to(to) {}

    void operator()(int32_t value) { append(SD_BUS_TYPE_INT32, &value); }
    void operator()(double value) { append(SD_BUS_TYPE_DOUBLE, &value); }
    void operator()(bool value)
    {
        const int number = value;
        append(SD_BUS_TYPE_BOOLEAN, &number);
    }
    void operator()(const std::string &value) { append(SD_BUS_TYPE_STRING, value.c_str()); }
    void operator()(const std::vector<std::string> &list)
    {
        sd_bus_message_open_container(m_to, SD_BUS_TYPE_ARRAY, "s");
        for (const std::string &text : list)
            (*this)(text);
        sd_bus_message_close_container(m_to);
    }
    void operator()(const std::map<std::string, int32_t> &map) { appendMap(map, "i"); }
    void operator()(const std::map<std::string, std::vector<std::string>> &map)
    {
        appendMap(map, "as");
    }

private:
    void append(char type, const void *value) { sd_bus_message_append_basic(m_to, type, value); }

    template<typename Map>
    void appendMap(const Map &map, const char *signature)
    {
        sd_bus_message_open_container(m_to, SD_BUS_TYPE_ARRAY, "{sv}");
        for (const auto &[key, value] : map) {
            sd_bus_message_open_container(m_to, SD_BUS_TYPE_DICT_ENTRY, "sv");
            (*this)(key);
            sd_bus_message_open_container(m_to, SD_BUS_TYPE_VARIANT, signature);
            (*this)(value);
            sd_bus_message_close_container(m_to);
            sd_bus_message_close_container(m_to);
        }
        sd_bus_message_close_container(m_to);
    }

    sd_bus_message *m_to;
};

void readAll(sd_bus_message *from)
{
    char type = 0;
    const char *contents = nullptr;
    while (sd_bus_message_peek_type(from, &type, &contents) > 0) {
        if (contents) {
            sd_bus_message_enter_container(from, type, contents);
            readAll(from);
            sd_bus_message_exit_container(from);
        } else {
            uint64_t value = 0;
            sd_bus_message_read_basic(from, type, &value);
            benchmark::DoNotOptimize(value);
        }
    }
}

} // namespace

Caller connectSdBus()
{
    sd_bus *bus = nullptr;
    if (sd_bus_open_system(&bus) < 0)
        std::abort();
    return [bus](const Call &call) {
        sd_bus_message *message = nullptr;
        sd_bus_message_new_method_call(bus, &message, service, objectPath, service,
                                       call.method.toLatin1().constData());
        for (const Argument &argument : call.arguments)
            std::visit(Appender(message), argument);
        sd_bus_message *reply = nullptr;
        sd_bus_call(bus, message, 0, nullptr, &reply);
        sd_bus_message_unref(message);
        if (!reply)
            return false;
        readAll(reply);
        const bool isAnswer = call.resultSignature == sd_bus_message_get_signature(reply, true);
        sd_bus_message_unref(reply);
        return isAnswer;
    };
}
