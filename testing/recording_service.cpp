// SPDX-License-Identifier: MIT

// The program behind the class RecordingService. It prints the bus name under which it takes what
// the test tells it, once it is ready.

#include "Recorder.h"
#include "ServiceName.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTextStream>
#include <QtDBus/QDBusConnection>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    registerRecordingTypes();

    Recorder recorder;
    QDBusConnection control =
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, QStringLiteral("control"));
    if (!control.registerObject(recordingPath, &recorder, QDBusConnection::ExportAllSlots) ||
        !recorder.join())
        qFatal("The recording service does not get onto the bus");

    QTextStream(stdout) << control.baseService() << Qt::endl;
    return QCoreApplication::exec();
}
