#pragma once

#include <cstdint>

namespace controller {

// Controller generations, which differ in memory map and command set.
enum class Generation : std::uint8_t { E1, E2, E3 };

// Simulated time in nanoseconds since an arbitrary origin. It is always given by the caller and
// never runs backwards; the model has no clock of its own.
using Nanoseconds = std::uint64_t;

} // namespace controller
