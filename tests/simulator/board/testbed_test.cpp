#include "testbed.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

using testing::ElementsAre;
using testing::ExitedWithCode;
using testing::HasSubstr;
using testing::Pair;

namespace {

// Ends the process with status 3 and the error's text.
void buildWithTemporaryDirectory(const std::string& directory) {
    setenv("TMPDIR", directory.c_str(), 1);
    try {
        const board::Testbed testbed;
    } catch (const board::BoardError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        std::exit(3);
    }
    std::exit(EXIT_SUCCESS);
}

std::string environmentOf(const std::string& name, const board::Testbed& testbed) {
    for (const auto& [key, value] : testbed.environment()) {
        if (key == name) {
            return value;
        }
    }
    return "no " + name;
}

std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const board::BoardError& error) {
        return error.what();
    }
    return "no error";
}

// umockdev keeps the first temporary directory it sees: each of these begins a process of its own.
class TestbedDeathTest : public testing::Test {
protected:
    TestbedDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(TestbedDeathTest, MissingTemporaryDirectoryIsNamedWithTheMend) {
    EXPECT_EXIT(buildWithTemporaryDirectory("/nowhere/at-all"), ExitedWithCode(3),
                "cannot make a directory in /nowhere/at-all: No such file or directory "
                "\\(make room there, or set TMPDIR to another directory\\)");
}

TEST_F(TestbedDeathTest, TooLongTemporaryDirectoryIsNamedWithTheMend) {
    EXPECT_EXIT(buildWithTemporaryDirectory("/tmp/" + std::string(100, 'x')), ExitedWithCode(3),
                "the path of /tmp/x+ is too long .*TMPDIR");
}

TEST(TestbedTest, ItsDirectoryLastsAsLongAsItDoes) {
    std::string root;
    {
        const board::Testbed testbed;
        root = testbed.root();
        EXPECT_TRUE(std::filesystem::is_directory(root));
    }
    EXPECT_FALSE(std::filesystem::exists(root));
}

TEST(TestbedTest, HoldsFilesFifosAndLinksAtTheirPaths) {
    board::Testbed testbed;
    testbed.addFile("/sys/deep/down/file", "text\n");
    testbed.addFifo("/sys/deep/fifo");
    testbed.addLink("/sys/link", "/dev/full");

    std::string line;
    std::getline(std::ifstream(testbed.root() + "/sys/deep/down/file"), line);
    EXPECT_EQ(line, "text");
    EXPECT_TRUE(std::filesystem::is_fifo(testbed.root() + "/sys/deep/fifo"));
    EXPECT_EQ(std::filesystem::read_symlink(testbed.root() + "/sys/link"), "/dev/full");
}

TEST(TestbedTest, NamesWhatItCannotMake) {
    board::Testbed testbed;
    testbed.addFile("/sys/file", {});
    const std::string file = testbed.root() + "/sys/file";
    EXPECT_THAT(messageOf([&] { testbed.addFile("/sys/file/below", {}); }),
                HasSubstr("directory " + file));
    EXPECT_THAT(messageOf([&] { testbed.addFifo("/sys/file"); }),
                "cannot make the FIFO " + file + ": File exists");
    EXPECT_THAT(messageOf([&] { testbed.addLink("/sys/file", "/"); }),
                "cannot make the link " + file + ": File exists");
    testbed.addLink("/sys/full", "/dev/full");
    EXPECT_THAT(messageOf([&] { testbed.addFile("/sys/full", "text"); }),
                "cannot write " + testbed.root() + "/sys/full: No space left on device");
}

TEST(TestbedTest, EnvironmentNamesTheDirectoryAndThePreloadLibrary) {
    unsetenv("LD_PRELOAD");
    const board::Testbed testbed;
    EXPECT_THAT(testbed.environment(), ElementsAre(Pair("LD_PRELOAD", "libumockdev-preload.so.0"),
                                                   Pair("UMOCKDEV_DIR", testbed.root())));
}

TEST(TestbedTest, EnvironmentKeepsOtherPreloadLibrariesInFront) {
    const board::Testbed testbed;
    setenv("LD_PRELOAD", "libother.so", 1);
    EXPECT_EQ(environmentOf("LD_PRELOAD", testbed), "libother.so:libumockdev-preload.so.0");
    setenv("LD_PRELOAD", "libumockdev-preload.so.0:libother.so", 1);
    EXPECT_EQ(environmentOf("LD_PRELOAD", testbed), "libumockdev-preload.so.0:libother.so");
    unsetenv("LD_PRELOAD");
}

} // namespace
