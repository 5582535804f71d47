#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// Compresses `data` to a zlib stream of exactly `length` bytes: as small as zlib makes it, then
// padded with empty blocks, which any inflater skips. Throws std::runtime_error, saying how many
// bytes are needed, when `length` is too short.
std::vector<std::uint8_t> zlibStreamOfLength(const std::vector<std::uint8_t>& data,
                                             std::size_t length);
