// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_EXPORT_H
#define LIBCONFIGURATIONMANAGER_EXPORT_H

#include <QtCore/qglobal.h>

// The libraries are ELF shared objects, where exporting and importing are the same.
#define LIBCONFIGURATIONMANAGER_EXPORT Q_DECL_EXPORT

#endif
