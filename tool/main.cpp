// SPDX-License-Identifier: MIT

#include "Program.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTextCodec>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// Opens the standard files that are closed: the next file that is opened, such as the connection
/// to the bus, would take their place. Reading finds nothing, and writing fails as it should.
void openStandardFiles()
{
    for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(file, F_GETFD) == -1)
            open("/dev/null", O_RDONLY);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    openStandardFiles();
    // On a device without a locale, names of files are UTF-8 all the same.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("embosserctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(EMBOSSERCTL_VERSION));
    return tool::runProgram(QVector<QByteArray>(argv, argv + argc));
}
