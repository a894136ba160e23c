// SPDX-License-Identifier: MIT

#include <QtCore/QCoreApplication>

/// What libFuzzer calls first.
// NOLINTNEXTLINE(readability-non-const-parameter)
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static const QCoreApplication application(*argc, *argv);
    return 0;
}
