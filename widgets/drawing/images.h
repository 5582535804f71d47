#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

struct Gpu_Hal_Context_t;

// Has the controller inflate a zlib stream of `size` bytes to `address` of its general memory. The
// stream goes straight into the command FIFO, ahead of what is still in the command buffer. Blocks
// until the coprocessor has done it.
void inflateImage(Gpu_Hal_Context_t* host, uint32_t address, const unsigned char* stream,
                  std::size_t size);

template<std::size_t Size>
void inflateImage(Gpu_Hal_Context_t* host, uint32_t address,
                  const std::array<unsigned char, Size>& stream) {
    inflateImage(host, address, stream.data(), stream.size());
}
