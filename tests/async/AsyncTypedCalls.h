// SPDX-License-Identifier: MIT

#ifndef TESTS_ASYNC_ASYNCTYPEDCALLS_H
#define TESTS_ASYNC_ASYNCTYPEDCALLS_H

#include "SampleValues.h"
#include "TypedCalls.h"

#include <libconfigurationmanager-async/AsyncConfigurationManager.h>

#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <functional>
#include <type_traits>

using Async = libconfigurationmanager::AsyncConfigurationManager;
using libconfigurationmanager::PendingCall;
using libconfigurationmanager::PendingReply;

/// A reply of any type, for those who want to look at all.
class AnyReply : public PendingCall
{
public:
    template<typename T>
    explicit AnyReply(const PendingReply<T> &reply) : PendingCall(reply)
    {
        value = [reply] {
            if constexpr (std::is_void_v<T>)
                return QVariant();
            else
                return plain(reply.value());
        };
        then = [reply](const QObject *context, const std::function<void(QVariant)> &onValue,
                       const std::function<void(QDBusError)> &onError) {
            if constexpr (std::is_void_v<T>) {
                reply.then(
                    context, [onValue] { onValue(QVariant()); }, onError);
            } else {
                reply.then(
                    context, [onValue](const T &got) { onValue(plain(got)); }, onError);
            }
        };
    }

    /// The value; invalid for void, an int for an enumeration.
    std::function<QVariant()> value;
    std::function<void(const QObject *, const std::function<void(QVariant)> &,
                       const std::function<void(QDBusError)> &)>
        then;
};

/// Compiles only when there is a member of exactly this type.
template<typename Function>
constexpr bool isDeclared(Function Async::*)
{
    return true;
}

/// An operation, or its form with a default argument, called as an application's source does.
struct AsyncTypedCall
{
    const char *signature;
    AnyReply (*call)(Async &a, In in);
};

QVector<AsyncTypedCall> asyncTypedCalls();

#endif
