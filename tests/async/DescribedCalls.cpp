// SPDX-License-Identifier: MIT

#include "DescribedCalls.h"

#include "SampleValues.h"

#include <contract/Interface.h>

#include <QtCore/QHash>
#include <QtDBus/QDBusMetaType>

using contract::Method;
using contract::Role;

namespace {

const Method &described(QMetaMethod slot)
{
    static const QHash<QByteArray, const Method *> methods = [] {
        QHash<QByteArray, const Method *> bySignature;
        for (const Method &method : contract::Interface::configurationManager().methods()) {
            bySignature.insert(QMetaObject::normalizedSignature(qPrintable(method.operation)),
                               &method);
        }
        return bySignature;
    }();
    // A variant without the last parameter follows its method.
    if (slot.attributes() & QMetaMethod::Cloned)
        slot = slot.enclosingMetaObject()->method(slot.methodIndex() - 1);
    return *methods.value(slot.methodSignature());
}

} // namespace

libconfigurationmanager::PendingReply<QVariant>
callByDescription(const libconfigurationmanager::AsyncConfigurationManager &manager,
                  const QMetaMethod &slot, const QVariantList &given)
{
    const Method &method = described(slot);
    QVariantList arguments;
    int next = 0;
    for (const contract::Argument &argument : method.arguments) {
        if (argument.role == Role::CollectionId) {
            arguments.append(manager.catalogsCollectionId());
        } else if (next < given.size()) {
            arguments.append(given.at(next++));
        } else {
            QVariant value(argument.defaultValue);
            value.convert(QDBusMetaType::signatureToType(argument.type.toLatin1().constData()));
            arguments.append(value);
        }
    }
    const QVariant result = sampleValue(slot.typeName(), 0);
    return manager.callMethod(method.name, arguments,
                              result.isValid() ? result.userType() : int(QMetaType::Void));
}
