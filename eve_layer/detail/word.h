#pragma once

#include <cstdint>

// Bytes of a coprocessor command's and of a display list's word; controller memory is aligned to
// it.
constexpr uint32_t wordSize = 4;
