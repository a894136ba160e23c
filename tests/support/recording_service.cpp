// SPDX-License-Identifier: MIT

// The program behind the class RecordingService. It prints the bus name under which it takes what
// the test tells it, once it is ready.

#include "Recorder.h"
#include "ServiceName.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTextStream>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusError>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    registerRecordingTypes();

    Recorder recorder;
    QDBusConnection control =
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, QStringLiteral("control"));
    QDBusConnection recorded = QDBusConnection::systemBus();
    if (!control.registerObject(recordingPath, &recorder, QDBusConnection::ExportAllSlots) ||
        !recorded.registerVirtualObject(QStringLiteral("/"), &recorder, QDBusConnection::SubPath) ||
        !recorded.registerService(serviceName))
        qFatal("%s", qPrintable(recorded.lastError().message()));

    QTextStream(stdout) << control.baseService() << Qt::endl;
    return QCoreApplication::exec();
}
