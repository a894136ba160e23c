// SPDX-License-Identifier: MIT

// On the path of every call: compiled for speed, unlike the rest of the library.

#include "ConfigurationManager_p.h"

#include "Marshallable.h"

#include <QtDBus/QDBusAbstractInterface>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>

#include <algorithm>

namespace libconfigurationmanager {
namespace detail {

namespace {

QVariant variantOf(const Argument &argument)
{
    switch (argument.type) {
    case QMetaType::Int:
        return *static_cast<const int *>(argument.value);
    case QMetaType::Double:
        return *static_cast<const double *>(argument.value);
    case QMetaType::Bool:
        return *static_cast<const bool *>(argument.value);
    case QMetaType::QString:
        return *static_cast<const QString *>(argument.value);
    default:
        return QVariant(argument.type, argument.value);
    }
}

QString remoteMethodOf(Operation operation)
{
    if (const char *name = remoteMethodOfAnotherName(operation.slot()))
        return QLatin1String(name);
    const QByteArray name = operation.metaMethod().name();
    return QString::fromLatin1(name.constData(), name.size());
}

} // namespace

QMetaMethod Operation::metaMethod() const
{
    const QMetaObject &metaObject = ConfigurationManagerPrivate::staticMetaObject;
    return metaObject.method(metaObject.methodOffset() + int(slot()));
}

QDBusMessage ConfigurationManagerPrivate::send(Operation operation,
                                               std::initializer_list<Argument> arguments) const
{
    QVariantList values;
    values.reserve(int(arguments.size()) + 1);
    const auto *const flag = arguments.end() - operation.has(EndsInFlag);
    for (const auto *argument = arguments.begin(); argument != flag; ++argument)
        values.append(variantOf(*argument));
    if (operation.has(SendsCollectionId))
        values.append(collectionId);
    for (const auto *argument = flag; argument != arguments.end(); ++argument)
        values.append(variantOf(*argument));
    if (isLong(collectionId) ||
        std::any_of(arguments.begin(), arguments.end(), [](const Argument &argument) {
            return isInQuestion(argument.type, argument.value);
        })) {
        const QString problem = marshallingProblem(values);
        if (!problem.isEmpty())
            return QDBusMessage::createError(QDBusError::InvalidArgs, problem);
    }
    // Not call(): Qt's blocking calls share the reply, and the error of the connection, with Qt's
    // own D-Bus thread without a lock, so that ordinary errors corrupt the heap.
    QDBusPendingCall call = interface->asyncCallWithArgumentList(remoteMethodOf(operation), values);
    call.waitForFinished();
    return call.reply();
}

} // namespace detail
} // namespace libconfigurationmanager
