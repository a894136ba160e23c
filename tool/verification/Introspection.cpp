// SPDX-License-Identifier: MIT

#include "verification/Introspection.h"

#include "common/Failure.h"

#include <contract/Interface.h>

#include <QtCore/QXmlStreamReader>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>

namespace tool {

namespace {

Signature readMethod(QXmlStreamReader *xml)
{
    Signature signature;
    while (xml->readNextStartElement()) {
        const QXmlStreamAttributes attributes = xml->attributes();
        const bool isResult = attributes.value(QLatin1String("direction")) == QLatin1String("out");
        if (xml->name() == QLatin1String("arg"))
            (isResult ? signature.results : signature.arguments) +=
                attributes.value(QLatin1String("type"));
        xml->skipCurrentElement();
    }
    return signature;
}

QHash<QString, Signature> readInterface(QXmlStreamReader *xml)
{
    QHash<QString, Signature> methods;
    while (xml->readNextStartElement()) {
        const QString name = xml->attributes().value(QLatin1String("name")).toString();
        if (xml->name() == QLatin1String("method"))
            methods.insert(name, readMethod(xml));
        else
            xml->skipCurrentElement();
    }
    return methods;
}

} // namespace

std::optional<QHash<QString, Signature>> introspect(std::chrono::milliseconds timeout)
{
    const QString service = contract::Interface::configurationManager().name();
    QDBusMessage message = QDBusMessage::createMethodCall(
        service, QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.Introspectable"),
        QStringLiteral("Introspect"));
    message.setAutoStartService(false);
    QDBusPendingCall answer = QDBusConnection::systemBus().asyncCall(
        message, timeout.count() > 0 ? int(timeout.count()) : -1);
    answer.waitForFinished();
    if (answer.error().type() == QDBusError::NoReply)
        throw Failure(ExitStatus::NoAnswer,
                      QStringLiteral("the configuration service does not answer"));
    // Of any other error, the first call of a method tells whether it is one of the service.
    QXmlStreamReader xml(answer.reply().arguments().value(0).toString());
    while (!answer.isError() && !xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement &&
            xml.name() == QLatin1String("interface") &&
            xml.attributes().value(QLatin1String("name")) == service)
            return readInterface(&xml);
    }
    return {};
}

} // namespace tool
