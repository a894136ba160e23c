// SPDX-License-Identifier: MIT

// A service between the tool and a simulator on another bus. What it tells of itself deviates as
// its arguments say:
//
//   deviating-service ADDRESS [missing:METHOD | takes:METHOD:TYPE | returns:METHOD:TYPE |
//   opaque]...
//
// It prints a line when it is on the bus.

#include <contract/Interface.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QRegularExpression>
#include <QtCore/QTextStream>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVirtualObject>

namespace {

const contract::Interface &contractInterface()
{
    return contract::Interface::configurationManager();
}

/// The introspection XML with one deviation.
QString deviating(QString xml, const QString &deviation)
{
    const QString kind = deviation.section(QLatin1Char(':'), 0, 0);
    if (kind == QLatin1String("opaque"))
        return {};
    const QString begin =
        QStringLiteral("<method name=\"%1\">").arg(deviation.section(QLatin1Char(':'), 1, 1));
    const QString end = QStringLiteral("</method>");
    const int from = xml.indexOf(begin);
    if (from < 0)
        qFatal("%s: there is no such method", qPrintable(deviation));
    const int length = xml.indexOf(end, from) + end.size() - from;
    QString method = xml.mid(from, length);
    if (kind == QLatin1String("missing")) {
        method.clear();
    } else {
        // Of several arguments, the last.
        const QString direction =
            kind == QLatin1String("takes") ? QStringLiteral("in") : QStringLiteral("out");
        method.replace(QRegularExpression(
                           QStringLiteral("type=\"[^\"]*\" direction=\"%1\"(?!.*direction=\"%1\")")
                               .arg(direction),
                           QRegularExpression::DotMatchesEverythingOption),
                       QStringLiteral("type=\"%1\" direction=\"%2\"")
                           .arg(deviation.section(QLatin1Char(':'), 2), direction));
    }
    return xml.replace(from, length, method);
}

class DeviatingService : public QDBusVirtualObject
{
public:
    DeviatingService(const QDBusConnection &behind, const QString &xml)
        : m_behind(behind), m_xml(xml)
    {
    }

    QString introspect(const QString & /*path*/) const override { return m_xml; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        if (message.interface() != contractInterface().name())
            return false;
        QDBusMessage call = QDBusMessage::createMethodCall(
            contractInterface().name(), message.path(), message.interface(), message.member());
        call.setArguments(message.arguments());
        const QDBusMessage answer = m_behind.call(call);
        connection.send(answer.type() == QDBusMessage::ErrorMessage
                            ? message.createErrorReply(answer.errorName(), answer.errorMessage())
                            : message.createReply(answer.arguments()));
        return true;
    }

private:
    const QDBusConnection m_behind;
    const QString m_xml;
};

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QDBusConnection behind =
        QDBusConnection::connectToBus(arguments.value(1), QStringLiteral("behind"));
    QString xml = contractInterface().xml();
    for (const QString &deviation : arguments.mid(2))
        xml = deviating(xml, deviation);
    DeviatingService service(behind, xml);
    QDBusConnection bus =
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, QStringLiteral("front"));
    if (!behind.isConnected() || !bus.registerVirtualObject(QStringLiteral("/"), &service) ||
        !bus.registerService(contractInterface().name()))
        qFatal("The deviating service does not get onto the bus");
    QTextStream(stdout) << "ready" << Qt::endl;
    return QCoreApplication::exec();
}
