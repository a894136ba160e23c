// SPDX-License-Identifier: MIT

#ifndef BENCHMARKS_CALLERS_CALLERS_H
#define BENCHMARKS_CALLERS_CALLERS_H

#include "Call.h"

#include <functional>

/// Makes a call, waits for the reply, reads the whole of it and returns whether it is an answer.
using Caller = std::function<bool(const Call &)>;

// Each connects to the bus and returns what makes calls over that connection.
Caller connectLibrary();
Caller connectLibraryByName();
Caller connectQDBusConnection();
Caller connectQDBusConnectionWithKeptMessages();
Caller connectQDBusAbstractInterface();
Caller connectQDBusInterface();
Caller connectGeneratedProxy();
Caller connectLibdbus();
Caller connectSdBus();
Caller connectSdbusCpp();
Caller connectGDBus();

/// How programs without Qt D-Bus name the service.
inline const char *const service = "com.tavelornbraille.ConfigurationManager";
inline const char *const objectPath = "/";

#endif
