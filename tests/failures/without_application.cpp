// SPDX-License-Identifier: MIT

// A program that makes no application object first. It is expected to be stopped.

#include <libconfigurationmanager/ConfigurationManager.h>

int main()
{
    const libconfigurationmanager::detail::ConfigurationManager manager(nullptr);
    return EXIT_SUCCESS;
}
