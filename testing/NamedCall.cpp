// SPDX-License-Identifier: MIT

#include "NamedCall.h"

#include "SampleValues.h"

#include <array>

QVector<QMetaMethod> slotsOf(const QMetaObject &metaObject)
{
    QVector<QMetaMethod> methods;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        const QMetaMethod method = metaObject.method(i);
        if (method.methodType() == QMetaMethod::Slot)
            methods << method;
    }
    return methods;
}

QVariantList sampleArguments(const QMetaMethod &slot, int number)
{
    QVariantList arguments;
    for (const QByteArray &type : slot.parameterTypes())
        arguments << sampleValue(type, number++);
    return arguments;
}

QVariant callByName(QObject &object, const QMetaMethod &slot, const QVariantList &arguments)
{
    // Not the default, which a slot that writes no result would otherwise seem to return.
    QVariant result = sampleValue(slot.typeName(), 0);
    const QGenericReturnArgument returned =
        result.isValid() ? QGenericReturnArgument(slot.typeName(), result.data())
                         : QGenericReturnArgument();

    std::array<QGenericArgument, 8> in;
    const QList<QByteArray> types = slot.parameterTypes();
    for (int i = 0; i < types.size(); ++i)
        in.at(i) = QGenericArgument(types.at(i).constData(), arguments.at(i).constData());

    if (!QMetaObject::invokeMethod(&object, slot.name().constData(), Qt::DirectConnection, returned,
                                   in[0], in[1], in[2], in[3], in[4], in[5], in[6], in[7]))
        qFatal("%s cannot be called by name", slot.methodSignature().constData());
    return result;
}
