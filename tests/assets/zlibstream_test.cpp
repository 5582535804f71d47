#include "inflate.h"
#include "zlibstream.h"

#include <stdexcept>

namespace {

const std::vector<std::uint8_t> data = {'p', 'u', 'l', 's', 'e', 's'};

TEST(ZlibStream, EveryLengthFromTwentyBytesOfPaddingOnIsReachedExactly) {
    for (std::size_t length = 44; length < 144; ++length) {
        const auto stream = zlibStreamOfLength(data, length);
        EXPECT_EQ(stream.size(), length);
        EXPECT_EQ(inflated(stream.data(), stream.size()), data);
    }
}

TEST(ZlibStream, NoDataIsAStreamToo) {
    const auto stream = zlibStreamOfLength({}, 64);
    EXPECT_EQ(stream.size(), 64U);
    EXPECT_TRUE(inflated(stream.data(), stream.size()).empty());
}

TEST(ZlibStream, ALengthTooShortForTheDataIsRefused) {
    EXPECT_THROW(zlibStreamOfLength(data, 10), std::runtime_error);
}

} // namespace
