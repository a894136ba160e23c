// SPDX-License-Identifier: MIT

#include "SettingsWindow.h"

#include <QtWidgets/QApplication>

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    SettingsWindow window;
    window.show();
    return QApplication::exec();
}
