// SPDX-License-Identifier: MIT

#ifndef LIBTAVELORN_EXPORT_H
#define LIBTAVELORN_EXPORT_H

#include <QtCore/qglobal.h>

// The libraries are ELF shared objects, where exporting and importing are the same.
#define LIBTAVELORN_EXPORT Q_DECL_EXPORT

#endif
