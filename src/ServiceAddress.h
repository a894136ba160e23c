// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_SERVICEADDRESS_H
#define LIBCONFIGURATIONMANAGER_SERVICEADDRESS_H

#include <QtCore/QString>

namespace libconfigurationmanager {
namespace detail {

const QString defaultCollectionId = QStringLiteral("masterCollectionKey");
const QString objectPath = QStringLiteral("/");
/// The name on the bus, and that of the interface.
const QString serviceName = QStringLiteral("com.tavelornbraille.ConfigurationManager");

} // namespace detail
} // namespace libconfigurationmanager

#endif
