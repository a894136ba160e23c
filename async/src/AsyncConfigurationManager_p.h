// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_ASYNC_ASYNCCONFIGURATIONMANAGER_P_H
#define LIBCONFIGURATIONMANAGER_ASYNC_ASYNCCONFIGURATIONMANAGER_P_H

#include "CallQueue.h"

#include <QtCore/QSharedData>
#include <QtCore/QString>

namespace libtavelorn {
class DBusService;
}

namespace libconfigurationmanager {

class AsyncConfigurationManagerPrivate : public QSharedData
{
public:
    AsyncConfigurationManagerPrivate(libtavelorn::DBusService *watched, CallQueue *calls);

    libtavelorn::DBusService *const service;
    const QExplicitlySharedDataPointer<CallQueue> queue;
    QString collectionId;
    int timeout = -1;
    bool isRelaying = false;
};

} // namespace libconfigurationmanager

#endif
