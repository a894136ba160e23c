// SPDX-License-Identifier: MIT

#ifndef FUZZING_INPUTFILE_H
#define FUZZING_INPUTFILE_H

#include <QtCore/QString>

#include <cstddef>
#include <cstdint>

/// Writes a file of that name, in a folder that has nothing else and that goes with the process;
/// returns its path.
QString writeInput(const QString &name, const uint8_t *data, size_t size);

#endif
