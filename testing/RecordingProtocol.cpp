// SPDX-License-Identifier: MIT

#include "RecordingProtocol.h"

#include <QtDBus/QDBusMetaType>

QDBusArgument &operator<<(QDBusArgument &argument, const RecordedCall &call)
{
    argument.beginStructure();
    argument << call.path << call.interface << call.member << call.signature << call.arguments;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, RecordedCall &call)
{
    argument.beginStructure();
    argument >> call.path >> call.interface >> call.member >> call.signature >> call.arguments;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const Answer &answer)
{
    argument.beginStructure();
    argument << answer.kind << answer.values << answer.delayInMilliseconds;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Answer &answer)
{
    argument.beginStructure();
    argument >> answer.kind >> answer.values >> answer.delayInMilliseconds;
    argument.endStructure();
    return argument;
}

void registerRecordingTypes()
{
    qDBusRegisterMetaType<RecordedCall>();
    qDBusRegisterMetaType<QVector<RecordedCall>>();
    qDBusRegisterMetaType<Answer>();
}
