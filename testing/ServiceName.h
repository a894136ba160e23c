// SPDX-License-Identifier: MIT

#ifndef TESTING_SERVICENAME_H
#define TESTING_SERVICENAME_H

#include <QtCore/QString>

/// The bus name of the configuration service, and the name of its interface.
inline const QString serviceName = QStringLiteral("com.tavelornbraille.ConfigurationManager");

#endif
