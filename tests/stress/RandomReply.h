// SPDX-License-Identifier: MIT

#ifndef STRESS_RANDOMREPLY_H
#define STRESS_RANDOMREPLY_H

#include <systemd/sd-bus.h>

#include <functional>

/// Ends the process with a line unless the result is one of success.
void check(int result, const char *what);

/// Decides on everything that is random: a number from 0 to end - 1.
using Below = std::function<int(int end)>;

/// Answers a call with an error of a strange text or with values of any types: often those that
/// operations return, now and then all else that D-Bus has.
///
/// Numbers that are all 0 end it soon.
void sendRandomReply(sd_bus_message *call, Below below);

#endif
