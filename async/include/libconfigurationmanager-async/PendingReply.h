// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_ASYNC_PENDINGREPLY_H
#define LIBCONFIGURATIONMANAGER_ASYNC_PENDINGREPLY_H

#include <libconfigurationmanager/export.h>

#include <QtCore/QMetaType>
#include <QtCore/QObject>
#include <QtCore/QSharedData>
#include <QtCore/QVariant>
#include <QtDBus/QDBusError>

#include <functional>
#include <type_traits>
#include <utility>

namespace libconfigurationmanager {

class PendingCallPrivate;

/// A call that may not have been answered yet; copies stand for the same call.
///
/// Until the call has finished, it is used in the thread of its AsyncConfigurationManager; from
/// then on in any thread.
class LIBCONFIGURATIONMANAGER_EXPORT PendingCall
{
public:
    PendingCall(const PendingCall &other);
    PendingCall &operator=(const PendingCall &other);
    ~PendingCall();

    /// Returns whether there is an answer or an error; never waits.
    bool isFinished() const;

    /// Waits until there is an answer or an error.
    ///
    /// Needs no event loop, also when the call is still in the queue: the calls that were made
    /// before it are then sent and waited for first.
    void waitForFinished();

    /// Returns whether the call has finished with an error.
    bool isError() const;

    /// Returns the error with which the call has finished; one that is not valid if there is none.
    ///
    /// Its name says what failed:
    ///
    /// | name | |
    /// |---|---|
    /// | org.freedesktop.DBus.Error.ServiceUnknown | the service is absent; nothing was sent |
    /// | org.freedesktop.DBus.Error.InvalidArgs | what was given cannot be sent, and was not |
    /// | org.freedesktop.DBus.Error.InvalidSignature | the reply is of another type |
    /// | org.freedesktop.DBus.Error.NoReply | no answer within the time-out, or the service ended |
    /// | org.freedesktop.DBus.Error.Disconnected | there is no connection to the bus |
    /// | libconfigurationmanager.Error.Cancelled | the AsyncConfigurationManager was destroyed |
    /// | any other | what the service, or the bus, refused the call with |
    QDBusError error() const;

protected:
    /// Waits for the answer; invalid when there is none.
    QVariant result() const;

    /// Has the event loop of the context's thread call back once the call has finished.
    void whenFinished(const QObject *context, std::function<void()> callback) const;

private:
    friend class AsyncConfigurationManager;
    friend class PendingCallWatcher;

    explicit PendingCall(PendingCallPrivate *call);

    QExplicitlySharedDataPointer<PendingCallPrivate> d;
};

/// The type as which a result of the type T travels.
template<typename T>
using WireType = std::conditional_t<std::is_enum_v<T>, int, T>;

/// The reply to an operation with a result of the type T, with the interface of QDBusPendingReply.
template<typename T>
class PendingReply : public PendingCall
{
public:
    explicit PendingReply(const PendingCall &call) : PendingCall(call) {}

    /// Waits for the answer and returns it; the type's default when the call has failed.
    T value() const
    {
        static_assert(!std::is_void_v<T>, "The operation has no result");
        return static_cast<T>(qvariant_cast<WireType<T>>(result()));
    }

    /// Has onValue(T), or onValue() without a result, or onError(QDBusError) called when the call
    /// has finished.
    ///
    /// They are called by the event loop of the context's thread, also when the call has finished
    /// already; never after the context or the AsyncConfigurationManager is gone. In one context
    /// the calls that a service answers one after the other call back in that order.
    template<typename OnValue, typename OnError>
    void then(const QObject *context, OnValue onValue, OnError onError) const
    {
        whenFinished(context, [reply = *this, onValue = std::move(onValue),
                               onError = std::move(onError)]() mutable {
            if (reply.isError())
                onError(reply.error());
            else if constexpr (std::is_void_v<T>)
                onValue();
            else
                onValue(reply.value());
        });
    }
};

/// Tells by a signal that a call has finished.
class LIBCONFIGURATIONMANAGER_EXPORT PendingCallWatcher : public QObject
{
    Q_OBJECT
public:
    explicit PendingCallWatcher(const PendingCall &call, QObject *parent = nullptr);
    ~PendingCallWatcher() override;

Q_SIGNALS:
    /// The call has finished, or had already; told once, by the event loop of this object's thread.
    void finished();

private:
    friend class PendingCallPrivate;

    PendingCallWatcher();
};

} // namespace libconfigurationmanager

#endif
