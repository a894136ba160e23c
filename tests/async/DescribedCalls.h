// SPDX-License-Identifier: MIT

#ifndef TESTS_ASYNC_DESCRIBEDCALLS_H
#define TESTS_ASYNC_DESCRIBEDCALLS_H

#include <libconfigurationmanager-async/AsyncConfigurationManager.h>

#include <QtCore/QMetaMethod>
#include <QtCore/QVariant>

/// Calls an operation as a program does that knows it by the introspection XML: by the name of its
/// remote method, with the collection id and the default where the XML has them.
libconfigurationmanager::PendingReply<QVariant>
callByDescription(const libconfigurationmanager::AsyncConfigurationManager &manager,
                  const QMetaMethod &slot, const QVariantList &given);

#endif
