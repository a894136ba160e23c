// SPDX-License-Identifier: MIT

// A program that is connected to the bus, to compare start_manager.cpp with.

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusConnection>

#include <cstdio>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QDBusConnection bus = QDBusConnection::systemBus();
    std::puts(bus.isConnected() ? "connected" : "no bus");
    std::fflush(stdout);
    std::getchar();
    return EXIT_SUCCESS;
}
