#include "App_Common.h"
#include "drawingtest.h"

#include <algorithm>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr uint32_t regIdEve3 = 0x302000;
constexpr uint32_t regCpuResetEve3 = 0x302020;

class BringupTest : public DrawingTest {
protected:
    // A controller that is there and running.
    void answerAtOnce() {
        board.poke(0x102400, 0x7C);
        board.poke(regIdEve3, 0x7C);
    }
};

// What the board is asked for besides bus traffic.
std::vector<std::string> pinsAndSleeps() {
    std::vector<std::string> events = board.eventsBesidesMessages();
    events.erase(std::remove_if(events.begin(), events.end(),
                                [](const std::string& each) { return each.rfind("CS", 0) == 0; }),
                 events.end());
    return events;
}

TEST_F(BringupTest, Eve3IsBroughtUpByteForByte) {
    answerAtOnce();
    App_Common_Init(&host);
    const std::vector<Transaction> expected = {
        Transaction::write8(0x302188, 0x00), // SPI width
        Transaction::hostCommand(0x44),
        Transaction::hostCommand(0x62),
        Transaction::hostCommand(0x00),
        Transaction::read8(0x302000, 0x7C),
        Transaction::read8(0x302020, 0),
        Transaction::write16(0x30202C, 548), // HCYCLE
        Transaction::write16(0x302030, 43),
        Transaction::write16(0x302038, 0),
        Transaction::write16(0x30203C, 41),
        Transaction::write16(0x302040, 292), // VCYCLE
        Transaction::write16(0x302044, 12),
        Transaction::write16(0x30204C, 0),
        Transaction::write16(0x302050, 10),
        Transaction::write8(0x302064, 0), // SWIZZLE
        Transaction::write8(0x30206C, 1), // PCLK_POL
        Transaction::write16(0x302034, 480),
        Transaction::write16(0x302048, 272),
        Transaction::write16(0x302068, 0), // CSPREAD
        Transaction::write16(0x302060, 1), // DITHER
        Transaction::write16(0x302058, 0), // ROTATE
        Transaction::write16(0x302098, 0xFFFF),
        Transaction::write16(0x30209C, 0xFFFF),
        Transaction::write(0x300000, {0, 0, 0, 0x02, 7, 0, 0, 0x26, 0, 0, 0, 0}),
        Transaction::write8(0x302054, 2), // DLSWAP
        Transaction::write8(0x302070, 5), // PCLK
        Transaction::read16(0x3020FC, 0),
    };
    EXPECT_THAT(board.transactions(), ElementsAreArray(expected));
}

TEST_F(BringupTest, Eve1IsBroughtUpByteForByteWithoutAnSpiModeAndWith8BitGpio) {
    use(DisplaySettings::EVE_1);
    answerAtOnce();
    App_Common_Init(&host);
    const std::vector<Transaction> expected = {
        Transaction::hostCommand(0x44),
        Transaction::hostCommand(0x62),
        Transaction::hostCommand(0x00),
        Transaction::read8(0x102400, 0x7C),
        Transaction::read8(0x10241C, 0),
        Transaction::write16(0x102428, 548), // HCYCLE
        Transaction::write16(0x10242C, 43),
        Transaction::write16(0x102434, 0),
        Transaction::write16(0x102438, 41),
        Transaction::write16(0x10243C, 292), // VCYCLE
        Transaction::write16(0x102440, 12),
        Transaction::write16(0x102448, 0),
        Transaction::write16(0x10244C, 10),
        Transaction::write8(0x102460, 0), // SWIZZLE
        Transaction::write8(0x102468, 1), // PCLK_POL
        Transaction::write16(0x102430, 480),
        Transaction::write16(0x102444, 272),
        Transaction::write16(0x102464, 0), // CSPREAD
        Transaction::write16(0x10245C, 1), // DITHER
        Transaction::write16(0x102454, 0), // ROTATE
        Transaction::write8(0x10248C, 0xFF),
        Transaction::write8(0x102490, 0xFF),
        Transaction::write(0x100000, {0, 0, 0, 0x02, 7, 0, 0, 0x26, 0, 0, 0, 0}),
        Transaction::write8(0x102450, 2), // DLSWAP
        Transaction::write8(0x10246C, 5), // PCLK
        Transaction::read16(0x1024E8, 0),
    };
    EXPECT_THAT(board.transactions(), ElementsAreArray(expected));
}

TEST_F(BringupTest, Eve2IsBroughtUpLikeEve3) {
    answerAtOnce();
    App_Common_Init(&host);
    const std::vector<Transaction> eve3 = board.transactions();
    board.clearRecord();
    use(DisplaySettings::EVE_2);
    App_Common_Init(&host);
    EXPECT_THAT(board.transactions(), ElementsAreArray(eve3));
}

TEST_F(BringupTest, PowerIsCycledAndAControllerThatAnswersAtOnceCostsOnlyTheBootTime) {
    answerAtOnce();
    App_Common_Init(&host);
    EXPECT_THAT(pinsAndSleeps(), ElementsAre("init", "PD high", "open", "PD low", "sleep 20",
                                             "PD high", "sleep 20", "sleep 300"));
}

TEST_F(BringupTest, TheBootTimePassesBetweenTheHostCommandsAndTheFirstRead) {
    answerAtOnce();
    std::size_t transactionsBefore = 0;
    board.onSleep([&](unsigned ms) {
        if (ms == 300) {
            transactionsBefore = board.transactions().size();
        }
    });
    App_Common_Init(&host);
    EXPECT_EQ(transactionsBefore, 4U); // SPI width and three host commands
}

TEST_F(BringupTest, TheIdentificationIsReadAgainEvery100MsUntilItIsThere) {
    board.queueReads(regIdEve3, {0x00, 0xFF, 0x7D});
    answerAtOnce();
    App_Common_Init(&host);
    EXPECT_EQ(board.transactions(Transaction::Read, regIdEve3).size(), 4U);
    EXPECT_EQ(board.sleptMs(), 20U + 20 + 300 + 3 * 100);
}

TEST_F(BringupTest, ResetThatReads1TwiceTakesThreeReadsAndTwoSleeps) {
    answerAtOnce();
    board.queueReads(regCpuResetEve3, {1, 1, 0});
    App_Common_Init(&host);
    EXPECT_EQ(board.transactions(Transaction::Read, regCpuResetEve3).size(), 3U);
    EXPECT_EQ(board.sleptMs(), 20U + 20 + 300 + 2 * 100);
}

TEST_F(BringupTest, AnyEngineStillInResetIsWaitedFor) {
    answerAtOnce();
    board.queueReads(regCpuResetEve3, {4, 0});
    App_Common_Init(&host);
    EXPECT_EQ(board.transactions(Transaction::Read, regCpuResetEve3).size(), 2U);
}

TEST_F(BringupTest, ThePixelClockIsTheLastRegisterWritten) {
    answerAtOnce();
    App_Common_Init(&host);
    EXPECT_EQ(board.transactions(Transaction::Write).back(), Transaction::write8(0x302070, 5));
    EXPECT_EQ(board.transactions().back().kind, Transaction::Read);
}

TEST_F(BringupTest, TheCommandFifoIsTakenOverWhereTheControllerIs) {
    answerAtOnce();
    board.poke(0x3020FC, 0x123);
    App_Common_Init(&host);
    EXPECT_EQ(host.cmd_write_offset, 0x123);
}

TEST_F(BringupTest, ClosingClosesTheBusAndWritesNothing) {
    App_Common_Close(&host);
    EXPECT_THAT(board.events(), ElementsAre("close"));
    EXPECT_EQ(host.transfer_state, GPU_TRANSFER_CLOSED);
}

TEST_F(BringupTest, CalibrationShowsItsRequestAndWaitsForTheCoprocessor) {
    App_Calibrate_Screen(&host);
    EXPECT_THAT(board.commandWords(),
                ElementsAre(0xFFFFFF00, 0x26000007, 0x04FFFFFF, 0xFFFFFF0C, 0x008800F0, 0x0600001A,
                            0x61656C50, 0x74206573, 0x6F207061, 0x2061206E, 0x00746F64, 0xFFFFFF15,
                            0));
    EXPECT_EQ(board.transactions().back(), Transaction::read16(0x3020FC, 52));
    EXPECT_EQ(board.transactions(Transaction::Read, 0x3020FC).size(), 2U)
        << "flushed, then drained";
    EXPECT_EQ(CmdBuffer_Index, 0U);
}

using BringupDeathTest = BringupTest;

// Only the 4.3-inch panel has all of the timings.
TEST_F(BringupDeathTest, APanelWithoutDitherAndRotateEndsTheBringup) {
    EXPECT_EXIT(
        {
            answerAtOnce();
            DisplaySettings::getInstance()->setDisplaySize(DisplaySettings::Size_70);
            App_Common_Init(&host);
        },
        testing::KilledBySignal(SIGABRT), "displaysettings.cpp:1119");
}

} // namespace
