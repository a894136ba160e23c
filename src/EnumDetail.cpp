// SPDX-License-Identifier: MIT

#include <libconfigurationmanager/lcm.h>

lcm::EnumDetail::~EnumDetail() = default;
