// SPDX-License-Identifier: MIT

#include "Callers.h"

#include <benchmark/benchmark.h>
#include <gio/gio.h>

#include <cstdlib>

namespace {

struct ToVariant
{
    GVariant *operator()(int32_t value) const { return g_variant_new_int32(value); }
    GVariant *operator()(double value) const { return g_variant_new_double(value); }
    GVariant *operator()(bool value) const { return g_variant_new_boolean(value); }
    GVariant *operator()(const std::string &value) const
    {
        return g_variant_new_string(value.c_str());
    }
    GVariant *operator()(const std::vector<std::string> &list) const
    {
        GVariantBuilder builder;
        g_variant_builder_init(&builder, G_VARIANT_TYPE_STRING_ARRAY);
        for (const std::string &text : list)
            g_variant_builder_add_value(&builder, (*this)(text));
        return g_variant_builder_end(&builder);
    }
    template<typename Value>
    GVariant *operator()(const std::map<std::string, Value> &map) const
    {
        GVariantBuilder builder;
        g_variant_builder_init(&builder, G_VARIANT_TYPE_VARDICT);
        for (const auto &[key, value] : map)
            g_variant_builder_add(&builder, "{sv}", key.c_str(), (*this)(value));
        return g_variant_builder_end(&builder);
    }
};

void readAll(GVariant *value)
{
    if (!g_variant_is_container(value)) {
        benchmark::DoNotOptimize(g_variant_get_data(value));
        return;
    }
    GVariantIter children;
    g_variant_iter_init(&children, value);
    while (GVariant *const child = g_variant_iter_next_value(&children)) {
        readAll(child);
        g_variant_unref(child);
    }
}

} // namespace

Caller connectGDBus()
{
    GDBusConnection *const connection = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
    if (!connection)
        std::abort();
    return [connection](const Call &call) {
        GVariantBuilder arguments;
        g_variant_builder_init(&arguments, G_VARIANT_TYPE_TUPLE);
        for (const Argument &argument : call.arguments)
            g_variant_builder_add_value(&arguments, std::visit(ToVariant(), argument));
        GVariant *const reply = g_dbus_connection_call_sync(
            connection, service, objectPath, service, call.method.toLatin1().constData(),
            g_variant_builder_end(&arguments), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
            nullptr);
        if (!reply)
            return false;
        readAll(reply);
        const bool isAnswer = g_variant_get_type_string(reply) == '(' + call.resultSignature + ')';
        g_variant_unref(reply);
        return isAnswer;
    };
}
