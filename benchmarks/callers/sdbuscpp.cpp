// SPDX-License-Identifier: MIT

#include "Callers.h"

#include <benchmark/benchmark.h>
#include <sdbus-c++/sdbus-c++.h>

#include <memory>

namespace {

class Appender
{
public:
    explicit Appender(sdbus::MethodCall &to) : m_to(to) {}

    template<typename Value>
    void operator()(const Value &value)
    {
        m_to << value;
    }
    template<typename Value>
    void operator()(const std::map<std::string, Value> &map)
    {
        m_to << std::map<std::string, sdbus::Variant>(map.begin(), map.end());
    }

private:
    sdbus::MethodCall &m_to;
};

using Map = std::map<std::string, sdbus::Variant>;

template<typename Value>
void read(sdbus::MethodReply &from)
{
    Value value;
    from >> value;
    benchmark::DoNotOptimize(value);
}

const std::map<std::string, void (*)(sdbus::MethodReply &)> readers{
    {"", [](sdbus::MethodReply &) {}},
    {"b", read<bool>},
    {"d", read<double>},
    {"i", read<int32_t>},
    {"s", read<std::string>},
    {"a{sv}", read<Map>},
    {"aa{sv}", read<std::vector<Map>>},
    {"a(sa{sv})", read<std::vector<sdbus::Struct<std::string, Map>>>},
};

} // namespace

Caller connectSdbusCpp()
{
    static const std::unique_ptr<sdbus::IConnection> connection =
        sdbus::createSystemBusConnection();
    const std::shared_ptr<sdbus::IProxy> proxy =
        sdbus::createProxy(*connection, service, objectPath);
    return [proxy](const Call &call) {
        sdbus::MethodCall message =
            proxy->createMethodCall(service, call.method.toLatin1().constData());
        for (const Argument &argument : call.arguments)
            std::visit(Appender(message), argument);
        sdbus::MethodReply reply = proxy->callMethod(message); // throws on an error
        readers.at(call.resultSignature)(reply);
        return true;
    };
}
