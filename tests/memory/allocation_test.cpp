// Registry lookups happen at every access to the controller and must not allocate.

#include "displaysettings.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

namespace {

std::size_t allocations = 0;

} // namespace

// The C library's allocator, counted. Qt's strings and the C++ operators use it too.
// NOLINTNEXTLINE(clang-diagnostic-reserved-identifier): glibc's
extern "C" void* __libc_malloc(std::size_t size);

extern "C" void* malloc(std::size_t size) {
    ++allocations;
    return __libc_malloc(size);
}

namespace {

TEST(Allocation, IsCounted) {
    const std::size_t before = allocations;
    const QString text = QString::number(1234567);
    EXPECT_GT(allocations, before);
}

TEST(Allocation, LookupsDoNone) {
    DisplaySettings::getInstance()->setDisplayGeneration(DisplaySettings::EVE_3);
    const std::size_t before = allocations;
    std::uint32_t sum = 0;
    for (int i = 0; i < 1000; ++i) {
        sum += EVE_REG("__REG_CMD_WRITE");
        sum += EVE_REG("__CMD_TEXT");
        sum += EVE_REG("__DispWidth");
    }
    EXPECT_EQ(allocations, before);
    EXPECT_EQ(sum, 1000U * (0x3020FCU + 0xFFFFFF0CU + 480U));
}

} // namespace
