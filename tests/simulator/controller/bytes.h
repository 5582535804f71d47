#pragma once

#include <cstdint>
#include <vector>

namespace controllertest {

using Bytes = std::vector<std::uint8_t>;

// As a zlib stream.
Bytes compressed(const Bytes& bytes);

} // namespace controllertest
