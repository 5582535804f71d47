#include "cgpio.h"
#include "linefailure.h"
#include "program.h"
#include "testbed.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace {

const char* const exportFile = "/sys/class/gpio/export";
const char* const valueFile = "/sys/class/gpio/gpio801/value";
const char* const directionFile = "/sys/class/gpio/gpio801/direction";

// Line 801 of a sysfs whose files are ordinary ones that keep what is written to them.
class GpioTest : public testing::Test {
protected:
    GpioTest() {
        testbed.addFile(exportFile, {});
        testbed.addFile(valueFile, {});
        testbed.addFile(directionFile, "in\n");
    }

    std::string place(const char* file) const { return testbed.root() + file; }

    std::string content(const char* file) const {
        std::ostringstream text;
        text << std::ifstream(place(file)).rdbuf();
        return text.str();
    }

    void remove(const char* file) const { ASSERT_TRUE(std::filesystem::remove(place(file))); }

    bool exists(const char* file) const { return std::filesystem::exists(place(file)); }

    // Whether this process has the file open.
    bool isOpen(const char* file) const {
        const std::filesystem::directory_iterator all("/proc/self/fd");
        return std::any_of(begin(all), end(all), [&](const auto& entry) {
            std::error_code closedMeanwhile;
            return read_symlink(entry.path(), closedMeanwhile) == place(file);
        });
    }

    board::Testbed testbed;
};

TEST_F(GpioTest, ExportsTheLineAndOpensItsValue) {
    const cGPIO line(745, 56);
    EXPECT_EQ(content(exportFile), "801");
    EXPECT_FALSE(isOpen(exportFile));
    EXPECT_TRUE(isOpen(valueFile));
    EXPECT_EQ(content(directionFile), "in\n"); // not touched
    EXPECT_EQ(content(valueFile), "");
}

TEST_F(GpioTest, KeepsBaseAndPin) {
    const cGPIO line(745, 56);
    EXPECT_EQ(line.base(), 745U);
    EXPECT_EQ(line.pin(), 56U);
    EXPECT_EQ(line.parent(), nullptr);
    EXPECT_STREQ(line.metaObject()->className(), "cGPIO");
}

TEST_F(GpioTest, LeavesTheLineExportedWhenDestroyed) {
    { const cGPIO line(745, 56); }
    EXPECT_FALSE(isOpen(valueFile));
    EXPECT_EQ(content(exportFile), "801");
}

TEST_F(GpioTest, TakesALineThatIsExportedAlready) {
    remove(exportFile);
    testbed.addLink(exportFile, "/dev/full"); // refuses every write
    cGPIO line(745, 56);
    line.write(true);
    EXPECT_EQ(content(valueFile), "1");
}

TEST_F(GpioTest, WritesEachLevelAtOnce) {
    cGPIO line(745, 56);
    line.write(true);
    EXPECT_EQ(content(valueFile), "1");
    line.write(false);
    EXPECT_EQ(content(valueFile), "10");
}

TEST_F(GpioTest, WritesOneCharacterAtATimeToAFileThatCannotSeek) {
    remove(valueFile);
    testbed.addFifo(valueFile);
    cGPIO line(745, 56); // does not wait for a reader
    const int reader = open(place(valueFile).c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    const auto waiting = [reader] {
        std::array<char, 16> text{};
        const ssize_t length = ::read(reader, text.data(), text.size());
        return std::string(text.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
    };
    line.write(true);
    EXPECT_EQ(waiting(), "1");
    line.write(false);
    EXPECT_EQ(waiting(), "0");
    close(reader);
}

TEST_F(GpioTest, ReadsHighWhenTheValueContainsAOne) {
    testbed.addFile(valueFile, "1\n");
    EXPECT_TRUE(cGPIO(745, 56).read());
    testbed.addFile(valueFile, "0\n");
    EXPECT_FALSE(cGPIO(745, 56).read());
    testbed.addFile(valueFile, "");
    EXPECT_FALSE(cGPIO(745, 56).read());
}

TEST_F(GpioTest, ReadsOnFromWhereItIs) {
    testbed.addFile(valueFile, "1\n");
    cGPIO line(745, 56);
    EXPECT_TRUE(line.read());
    EXPECT_FALSE(line.read());
}

TEST_F(GpioTest, SetDirectionsWritesInOrOut) {
    cGPIO line(745, 56);
    line.setDirections(cGPIO::Out);
    EXPECT_EQ(content(directionFile), "out");
    EXPECT_FALSE(isOpen(directionFile));
    line.setDirections(cGPIO::In);
    EXPECT_EQ(content(directionFile), "in");
    EXPECT_FALSE(isOpen(directionFile));
}

TEST_F(GpioTest, DirectionIsInWhenTheFileSaysIn) {
    const cGPIO line(745, 56);
    testbed.addFile(directionFile, "in\n");
    EXPECT_EQ(line.directions(), cGPIO::In);
    testbed.addFile(directionFile, "out\n");
    EXPECT_EQ(line.directions(), cGPIO::Out);
    testbed.addFile(directionFile, "");
    EXPECT_EQ(line.directions(), cGPIO::Out);
    EXPECT_FALSE(isOpen(directionFile));
}

// What ends the program, seen from outside

TEST_F(GpioTest, MissingExportFileEndsTheProgram) {
    remove(exportFile);
    EXPECT_EQ(runOnBoard(testbed.environment(), {"setDirections"}),
              lineFailure("Can't open /sys/class/gpio/export file", exportFile));
    EXPECT_FALSE(exists(exportFile));
}

TEST_F(GpioTest, MissingValueFileEndsTheProgram) {
    remove(valueFile);
    EXPECT_EQ(runOnBoard(testbed.environment(), {"setDirections"}),
              lineFailure("Can't open /sys/class/gpio/gpio%1/value", valueFile));
    EXPECT_FALSE(exists(valueFile));
}

TEST_F(GpioTest, MissingDirectionFileEndsTheProgramThatSetsIt) {
    remove(directionFile);
    EXPECT_EQ(runOnBoard(testbed.environment(), {"setDirections"}),
              lineFailure("Can't open /sys/class/gpio/gpio%1/direction", directionFile));
    EXPECT_FALSE(exists(directionFile));
}

TEST_F(GpioTest, MissingDirectionFileEndsTheProgramThatReadsIt) {
    EXPECT_EQ(runOnBoard(testbed.environment(), {"directions"}), "1\n");
    remove(directionFile);
    EXPECT_EQ(runOnBoard(testbed.environment(), {"directions"}),
              lineFailure("Can't open /sys/class/gpio/gpio%1/direction", directionFile));
}

} // namespace
