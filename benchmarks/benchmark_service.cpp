// SPDX-License-Identifier: MIT

// benchmark-service INTROSPECTION-FILE [MICROSECONDS]: a configuration service that answers at once
// and does nothing else, so that a call's time is that of its caller and of the bus; or that takes
// so long for each answer. It prints a line when it owns the name.

#include <systemd/sd-bus.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <thread>

namespace {

const char *const serviceName = "com.tavelornbraille.ConfigurationManager";

std::string introspection;
std::chrono::microseconds timeOfAnAnswer{0};

void check(int result, const char *what)
{
    if (result >= 0)
        return;
    std::fprintf(stderr, "%s: %s\n", what, std::strerror(-result));
    std::exit(EXIT_FAILURE);
}

int appendMap(sd_bus_message *to, int entries)
{
    sd_bus_message_open_container(to, SD_BUS_TYPE_ARRAY, "{sv}");
    for (int i = 0; i < entries; ++i) {
        std::array<char, 32> key{};
        std::snprintf(key.data(), key.size(), "Setting%d", i);
        sd_bus_message_append(to, "{sv}", key.data(), "i", i);
    }
    return sd_bus_message_close_container(to);
}

int appendNothing(sd_bus_message *, sd_bus_message *)
{
    return 0;
}

int appendTrue(sd_bus_message *, sd_bus_message *to)
{
    return sd_bus_message_append(to, "b", 1);
}

int appendInt(sd_bus_message *, sd_bus_message *to)
{
    return sd_bus_message_append(to, "i", 9600);
}

int appendDouble(sd_bus_message *, sd_bus_message *to)
{
    return sd_bus_message_append(to, "d", 2.5);
}

int appendText(sd_bus_message *, sd_bus_message *to)
{
    return sd_bus_message_append(to, "s", "serial line");
}

int appendIntrospection(sd_bus_message *, sd_bus_message *to)
{
    return sd_bus_message_append(to, "s", introspection.c_str());
}

/// With as many entries as the call's first text says.
int appendMapOfWantedSize(sd_bus_message *call, sd_bus_message *to)
{
    const char *size = "";
    sd_bus_message_read(call, "s", &size);
    return appendMap(to, static_cast<int>(std::strtol(size, nullptr, 10)));
}

/// With as many maps as the call's number says.
int appendListOfWantedSize(sd_bus_message *call, sd_bus_message *to)
{
    int32_t size = 0;
    sd_bus_message_read(call, "i", &size);
    sd_bus_message_open_container(to, SD_BUS_TYPE_ARRAY, "a{sv}");
    for (int i = 0; i < size; ++i)
        sd_bus_message_append(to, "a{sv}", 2, "Name", "s", "choice", "Value", "i", i);
    return sd_bus_message_close_container(to);
}

int appendConfiguration(sd_bus_message *, sd_bus_message *to)
{
    constexpr int sections = 10;
    constexpr int settings = 10;
    sd_bus_message_open_container(to, SD_BUS_TYPE_ARRAY, "(sa{sv})");
    for (int i = 0; i < sections; ++i) {
        sd_bus_message_open_container(to, SD_BUS_TYPE_STRUCT, "sa{sv}");
        sd_bus_message_append(to, "s", "section");
        appendMap(to, settings);
        sd_bus_message_close_container(to);
    }
    return sd_bus_message_close_container(to);
}

struct Method
{
    std::string_view name;
    int (*appendAnswer)(sd_bus_message *call, sd_bus_message *reply);
};

const Method methods[] = {
    {"Introspect", appendIntrospection},
    {"currentConfigurationCmd", appendConfiguration},
    {"getBaudrate", appendInt},
    {"getLineToLine", appendDouble},
    {"getProposition", appendText},
    {"getTableMetadata", appendMapOfWantedSize},
    {"getValueList", appendListOfWantedSize},
    {"isArvo", appendTrue},
    {"processSequence", appendTrue},
    {"setCounter", appendNothing},
    {"setIntValue", appendTrue},
    {"setOddLowPulseTime", appendNothing},
    {"setVersionInt", appendNothing},
};

int answer(sd_bus_message *call, void *, sd_bus_error *)
{
    if (!sd_bus_message_is_method_call(call, nullptr, nullptr))
        return 0;
    const std::string_view name = sd_bus_message_get_member(call);
    const auto *const method = std::find_if(std::begin(methods), std::end(methods),
                                            [&](const Method &each) { return each.name == name; });
    if (method == std::end(methods))
        return 0;
    std::this_thread::sleep_for(timeOfAnAnswer);
    sd_bus_message *reply = nullptr;
    check(sd_bus_message_new_method_return(call, &reply), "no reply");
    check(method->appendAnswer(call, reply), "no answer");
    check(sd_bus_send(nullptr, reply, nullptr), "not sent");
    sd_bus_message_unref(reply);
    return 1;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2 && argc != 3)
        return EXIT_FAILURE;
    if (argc == 3)
        timeOfAnAnswer = std::chrono::microseconds(std::strtol(argv[2], nullptr, 10));
    std::ifstream file(argv[1]);
    introspection.assign(std::istreambuf_iterator<char>(file), {});

    sd_bus *bus = nullptr;
    check(sd_bus_open_system(&bus), "no bus");
    check(sd_bus_add_filter(bus, nullptr, answer, nullptr), "no filter");
    check(sd_bus_request_name(bus, serviceName, 0), "no name");
    std::puts("ready");
    std::fflush(stdout);
    for (;;) {
        const int processed = sd_bus_process(bus, nullptr);
        if (processed == 0)
            sd_bus_wait(bus, UINT64_MAX);
        else if (processed < 0)
            return EXIT_SUCCESS; // the bus has ended
    }
}
