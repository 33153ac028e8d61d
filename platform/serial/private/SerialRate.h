#pragma once

#include <cstdint>

// The speed of an open terminal, in bits a second. It may be one that termios.h has no name for.
// Returns 0 if the descriptor is no terminal.
std::int64_t SerialRate(int descriptor);

// Sets the speed of both directions. Returns false if the driver takes neither this speed nor one
// within 5 %.
bool SetSerialRate(int descriptor, std::int64_t rate);
