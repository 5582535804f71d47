// As in a release build, whatever this test is built as.
#undef NDEBUG
#define NDEBUG
#include "assertionfailure.h"
#include "eveassert.h"

#include <cassert>

namespace {

TEST(EveAssert, LetsATrueConditionPass) {
    EVE_ASSERT(1 + 1 == 2, "text", "file.cpp", 1, "void f()");
}

TEST(EveAssertDeathTest, AbortsWithTheGivenMessageInReleaseBuildsToo) {
    EXPECT_ASSERTION_FAILURE(
        EVE_ASSERT(1 + 1 == 3, "1 && \"a text\"", "folder/file.cpp", 4711, "void f(int)"),
        "folder/file.cpp", 4711, "void f(int)", "1 && \"a text\"");
}

} // namespace
