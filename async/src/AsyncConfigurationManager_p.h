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

    /// Makes a call. What it consists of is looked into only when it is in question.
    QExplicitlySharedDataPointer<PendingCallPrivate>
    call(const QString &method, const QVariantList &arguments, int resultType,
         const char *notConnectedText, bool isInQuestion) const;

    void relay(AsyncConfigurationManager *manager, void (AsyncConfigurationManager::*signal)());

    libtavelorn::DBusService *const service;
    const QExplicitlySharedDataPointer<CallQueue> queue;
    QString collectionId;
    int timeout = -1;
    bool isRelaying = false;
};

} // namespace libconfigurationmanager

#endif
