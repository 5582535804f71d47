#include "program.h"
#include "recordingwires.h"
#include "virtualboard.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

using Steps = std::vector<std::string>;

class VirtualBoardTest : public testing::Test {
protected:
    void build(const board::Options& options = {}) {
        m_board = std::make_unique<board::VirtualBoard>(wires, options);
    }

    board::VirtualBoard& virtualBoard() {
        if (!m_board) {
            build();
        }
        return *m_board;
    }

    std::string run(const Steps& steps) { return runOnBoard(virtualBoard().environment(), steps); }

    std::vector<std::string> log() {
        virtualBoard().sync();
        return wires.log();
    }

    void removeFile(const std::string& path) {
        ASSERT_TRUE(std::filesystem::remove(virtualBoard().root() + path));
    }

    RecordingWires wires;

private:
    std::unique_ptr<board::VirtualBoard> m_board;
};

TEST_F(VirtualBoardTest, ShowsTheWiresWhatTheProgramDoesInOrder) {
    EXPECT_EQ(run({"init", "PD0", "PD1", "open", "CS0", "send=abc", "byte=d", "CS1", "CS0",
                   "receive=2", "CS1"}),
              "5a\n5a5a\n");
    EXPECT_THAT(log(), ElementsAre("CS 1", "PD 0", "PD 1", "CS 0", "sends 616263", "exchanges 64",
                                   "CS 1", "CS 0", "receives 2", "CS 1"));
}

TEST_F(VirtualBoardTest, KeepsTheOrderOfLevelsOfDifferentLines) {
    Steps steps{"init", "open"};
    std::vector<std::string> expected{"CS 1"};
    for (int i = 0; i < 200; ++i) {
        steps.insert(steps.end(), {"CS1", "PD0", "PD1", "CS0", "send=x"});
        expected.insert(expected.end(), {"CS 1", "PD 0", "PD 1", "CS 0", "sends 78"});
    }
    EXPECT_EQ(run(steps), "");
    EXPECT_EQ(log(), expected);
}

TEST_F(VirtualBoardTest, LevelsArriveWithoutAMessageBehindThem) {
    Program program(BOARD_PROGRAM, {"init", "PD1", "PD0", "hang"}, virtualBoard().environment());
    EXPECT_TRUE(wires.waitFor("PD 0"));
}

TEST_F(VirtualBoardTest, MessagesOfNoBytesArrive) {
    EXPECT_EQ(run({"init", "open", "send=", "receive=0"}), "\n");
    EXPECT_THAT(log(), ElementsAre("CS 1", "sends ", "receives 0"));
}

TEST_F(VirtualBoardTest, CountsMessagesAndBytes) {
    EXPECT_EQ(run({"init", "open", "send=abc", "byte=d", "receive=5"}), "5a\n5a5a5a5a5a\n");
    EXPECT_EQ(virtualBoard().traffic().messages, 3U);
    EXPECT_EQ(virtualBoard().traffic().bytes, 9U);
}

TEST_F(VirtualBoardTest, OutlivesAProgramKilledInATransaction) {
    {
        Program program(BOARD_PROGRAM, {"init", "open", "CS0", "send=a", "hang"},
                        virtualBoard().environment());
        ASSERT_TRUE(wires.waitFor("sends 61"));
        program.kill();
    }
    EXPECT_EQ(run({"init", "open", "CS0", "byte=b", "CS1"}), "5a\n");
    EXPECT_THAT(log(), ElementsAre("CS 1", "CS 0", "sends 61", //
                                   "CS 1", "CS 0", "exchanges 62", "CS 1"));
}

TEST_F(VirtualBoardTest, OutlivesAProgramKilledInAMessage) {
    wires.holdTransfers(true);
    {
        Program program(BOARD_PROGRAM, {"init", "open", "CS0", "byte=a"},
                        virtualBoard().environment());
        ASSERT_TRUE(wires.waitFor("exchanges 61"));
        program.kill();
    }
    wires.holdTransfers(false);
    EXPECT_EQ(run({"init", "open", "CS0", "byte=b", "CS1"}), "5a\n");
    EXPECT_THAT(log(), ElementsAre("CS 1", "CS 0", "exchanges 61", //
                                   "CS 1", "CS 0", "exchanges 62", "CS 1"));
}

TEST_F(VirtualBoardTest, SaysNothingOfProgramsThatEndInAMessage) {
    testing::internal::CaptureStderr();
    wires.holdTransfers(true);
    {
        Program program(BOARD_PROGRAM, {"init", "open", "CS0", "byte=a"},
                        virtualBoard().environment());
        EXPECT_TRUE(wires.waitFor("exchanges 61"));
        program.kill();
    }
    wires.holdTransfers(false);
    run({"raw=badaddress"}); // umockdev ends it
    build();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(VirtualBoardTest, LeavesNothingBehind) {
    std::string root;
    {
        const board::VirtualBoard shortLived(wires);
        root = shortLived.root();
        EXPECT_TRUE(std::filesystem::exists(root));
    }
    EXPECT_FALSE(std::filesystem::exists(root));
}

TEST_F(VirtualBoardTest, CanBeBuiltAgain) {
    for (int i = 0; i < 3; ++i) {
        build();
        EXPECT_EQ(run({"init", "open", "byte=x"}), "5a\n");
    }
}

// Faults

// The message, a line that begins with the file and the reason, and failure.
auto endedBecauseOf(const std::string& message, const std::string& reason) {
    return AllOf(StartsWith(message + '\n' + reason), EndsWith("\nstatus 1"));
}

TEST_F(VirtualBoardTest, WithoutASpiNodeTheProgramEnds) {
    board::Options options;
    options.spiNode = false;
    build(options);
    EXPECT_THAT(run({"init", "open"}),
                endedBecauseOf("can't open device", "/dev/spidev2.0: No such file or directory"));
    EXPECT_FALSE(std::filesystem::exists(virtualBoard().root() + "/dev/spidev2.0"));
}

TEST_F(VirtualBoardTest, WithoutGpioExportTheProgramEnds) {
    board::Options options;
    options.gpioExport = false;
    build(options);
    EXPECT_THAT(run({"init"}), endedBecauseOf("Can't open /sys/class/gpio/export file",
                                              "/sys/class/gpio/export: No such file"));
}

TEST_F(VirtualBoardTest, WithoutALinesFilesTheProgramEnds) {
    removeFile("/sys/class/gpio/gpio801/direction");
    EXPECT_THAT(run({"init"}), endedBecauseOf("Can't open /sys/class/gpio/gpio%1/direction",
                                              "/sys/class/gpio/gpio801/direction: No such file"));
    removeFile("/sys/class/gpio/gpio800/value");
    EXPECT_THAT(run({"init"}), endedBecauseOf("Can't open /sys/class/gpio/gpio%1/value",
                                              "/sys/class/gpio/gpio800/value: No such file"));
}

TEST_F(VirtualBoardTest, WithLinesExportedAlreadyTheProgramRuns) {
    board::Options options;
    options.linesAlreadyExported = true;
    build(options);
    EXPECT_EQ(run({"init", "open", "byte=x"}), "5a\n");
}

TEST_F(VirtualBoardTest, TransfersFailOnRequest) {
    virtualBoard().setTransfersFail(true);
    EXPECT_EQ(run({"init", "open", "byte=x", "send=y"}), "00\n");
    EXPECT_THAT(log(), ElementsAre("CS 1"));
    EXPECT_EQ(virtualBoard().traffic().messages, 2U);
    virtualBoard().setTransfersFail(false);
    EXPECT_EQ(run({"init", "open", "byte=x"}), "5a\n");
}

// What only another program would ask

TEST_F(VirtualBoardTest, TakesAMessageOfSeveralRecords) {
    EXPECT_EQ(run({"raw=two"}), "5\n");
    EXPECT_THAT(log(), ElementsAre("sends 6162", "sends 636465"));
    EXPECT_EQ(virtualBoard().traffic().messages, 1U);
}

TEST_F(VirtualBoardTest, RefusesWhatTheDriverRefuses) {
    EXPECT_EQ(run({"raw=unknown"}), std::strerror(ENOTTY) + std::string("\n"));
    EXPECT_EQ(run({"raw=toolong"}), std::strerror(EMSGSIZE) + std::string("\n"));
    EXPECT_THAT(log(), IsEmpty());
}

// umockdev ends such a program.
TEST_F(VirtualBoardTest, OutlivesAProgramThatPassesAddressesItDoesNotHave) {
    EXPECT_THAT(run({"raw=badaddress"}), EndsWith("status -1"));
    EXPECT_THAT(run({"raw=badrecord"}), EndsWith("status -1"));
    EXPECT_EQ(run({"raw=two"}), "5\n");
}

} // namespace
