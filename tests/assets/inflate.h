#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>
#include <zlib.h>

// Inflates a whole zlib stream; fails the test when it is not one, ends early or has bytes behind.
inline std::vector<std::uint8_t> inflated(const std::uint8_t* stream, std::size_t length) {
    std::vector<std::uint8_t> input(stream, stream + length);
    std::vector<std::uint8_t> output(1U << 20U);
    z_stream zlib{};
    EXPECT_EQ(inflateInit(&zlib), Z_OK);
    zlib.next_in = input.data();
    zlib.avail_in = static_cast<uInt>(input.size());
    zlib.next_out = output.data();
    zlib.avail_out = static_cast<uInt>(output.size());
    EXPECT_EQ(inflate(&zlib, Z_FINISH), Z_STREAM_END);
    EXPECT_EQ(zlib.avail_in, 0U);
    output.resize(zlib.total_out);
    inflateEnd(&zlib);
    return output;
}
