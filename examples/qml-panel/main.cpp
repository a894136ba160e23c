// SPDX-License-Identifier: MIT

#include <libconfigurationmanager/ConfigurationManager.h>
#include <libconfigurationmanager/QmlTypes.h>

#include <QtGui/QGuiApplication>
#include <QtQml/QQmlApplicationEngine>

#include <cstdlib>

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    libconfigurationmanager::registerQmlTypes();
    libconfigurationmanager::detail::ConfigurationManager manager;

    QQmlApplicationEngine engine;
    engine.setInitialProperties(
        {{QStringLiteral("embosser"), QVariant::fromValue<QObject *>(&manager)},
         {QStringLiteral("isPresent"), manager.isConnected()}});
    engine.load(QUrl(QStringLiteral("qrc:/Panel.qml")));
    return engine.rootObjects().isEmpty() ? EXIT_FAILURE : QGuiApplication::exec();
}
