#include "host.h"
#include "power.h"

#include <gtest/gtest.h>

namespace {

using namespace controllertest;

class PowerOfEveryGeneration : public testing::TestWithParam<Generation> {};

INSTANTIATE_TEST_SUITE_P(Power, PowerOfEveryGeneration,
                         testing::Values(Generation::E1, Generation::E2, Generation::E3));

std::uint32_t chipIdOf(Generation generation) {
    switch (generation) {
    case Generation::E1:
        return 0x00010108;
    case Generation::E2:
        return 0x00011308;
    case Generation::E3:
        break;
    }
    return 0x00011508;
}

TEST_P(PowerOfEveryGeneration, ItsStateIsSeenFromOutside) {
    Host host(GetParam());
    EXPECT_FALSE(host.chip.panel().powered);
    EXPECT_FALSE(host.chip.panel().awake);
    host.chip.setPowerDown(true, host.now);
    EXPECT_TRUE(host.chip.panel().powered);
    EXPECT_FALSE(host.chip.panel().awake) << "no ACTIVE yet";
    host.boot();
    EXPECT_TRUE(host.chip.panel().awake);
    host.hostCommand(0x41);
    EXPECT_FALSE(host.chip.panel().awake) << "in standby";
    EXPECT_TRUE(host.chip.panel().powered);
}

TEST_P(PowerOfEveryGeneration, ReadsGiveZeroUntilTheChipIsActiveAndStarted) {
    Host host(GetParam());
    EXPECT_EQ(host.read8(host.at.id()), 0);
    host.chip.setPowerDown(true, host.now);
    host.wait(50 * ms);
    EXPECT_EQ(host.read8(host.at.id()), 0) << "no ACTIVE yet";
    host.hostCommand(0x00);
    host.wait(15 * ms);
    EXPECT_EQ(host.read8(host.at.id()), 0) << "still starting";
    host.wait(6 * ms);
    EXPECT_EQ(host.read8(host.at.id()), 0x7C);
}

// The board tells of levels when it gets to it; of bytes at once.
TEST_P(PowerOfEveryGeneration, StartsFromTheBytesOfActiveHoweverLateTheEndOfTheCommandIsHeardOf) {
    Host host(GetParam());
    host.chip.setPowerDown(true, host.now);
    host.chip.setChipSelect(false, host.now);
    for (int i = 0; i < 3; ++i) {
        host.chip.exchange(0, host.now);
    }
    host.wait(300 * ms);
    host.chip.setChipSelect(true, host.now);
    EXPECT_EQ(host.read8(host.at.id()), 0x7C);
}

TEST_P(PowerOfEveryGeneration, EnginesComeUpAfterMemory) {
    Host host(GetParam());
    host.chip.setPowerDown(true, host.now);
    host.hostCommand(0x00);
    host.wait(21 * ms);
    EXPECT_EQ(host.read8(host.at.cpuReset()), 7);
    host.wait(10 * ms);
    EXPECT_EQ(host.read8(host.at.cpuReset()), 0);
}

TEST_P(PowerOfEveryGeneration, TheIdentificationWordTellsTheGeneration) {
    Host host(GetParam());
    host.boot();
    EXPECT_EQ(host.read32(0x0C0000), chipIdOf(GetParam()));
}

TEST_P(PowerOfEveryGeneration, ThePowerDownPinLosesEverything) {
    Host host(GetParam());
    host.boot();
    host.write32(1000, 0x12345678);
    host.write8(host.at.pclk(), 5);
    host.boot();
    EXPECT_EQ(host.read32(1000), 0U);
    EXPECT_EQ(host.read8(host.at.pclk()), 0);
}

TEST_P(PowerOfEveryGeneration, StandbyKeepsMemoryAndStopsTheScan) {
    Host host(GetParam());
    host.bootWithPanel();
    host.write32(1000, 0x12345678);
    host.hostCommand(0x41);
    EXPECT_FALSE(host.chip.panel().scanning);
    EXPECT_EQ(host.read32(1000), 0U) << "not readable while asleep";
    host.hostCommand(0x00);
    host.wait(ms);
    EXPECT_TRUE(host.chip.panel().scanning);
    EXPECT_EQ(host.read32(1000), 0x12345678U);
}

TEST_P(PowerOfEveryGeneration, TheHostCommandForPowerDownLosesEverything) {
    Host host(GetParam());
    host.boot();
    host.write32(1000, 0x12345678);
    host.hostCommand(0x50);
    host.hostCommand(0x00);
    host.wait(30 * ms);
    EXPECT_EQ(host.read8(host.at.id()), 0x7C);
    EXPECT_EQ(host.read32(1000), 0U);
}

TEST_P(PowerOfEveryGeneration, AResetPulseStartsTheChipAgain) {
    Host host(GetParam());
    host.bootWithPanel();
    host.hostCommand(0x68);
    EXPECT_EQ(host.read8(host.at.id()), 0);
    host.wait(30 * ms);
    EXPECT_EQ(host.read8(host.at.id()), 0x7C);
    EXPECT_EQ(host.read8(host.at.pclk()), 0);
}

TEST(Power, ResetCanBeHeldAndReleased) {
    Host host(Generation::E3);
    host.boot();
    host.hostCommand(0x68, 0x02);
    host.wait(100 * ms);
    EXPECT_EQ(host.read8(host.at.id()), 0);
    host.hostCommand(0x68, 0x20);
    host.wait(30 * ms);
    EXPECT_EQ(host.read8(host.at.id()), 0x7C);
}

TEST(Power, TheIdentificationWordCanBeOverwrittenWhereItStandsInRam) {
    Host e3(Generation::E3);
    e3.boot();
    e3.write32(0x0C0000, 1);
    EXPECT_EQ(e3.read32(0x0C0000), 1U);
    Host e1(Generation::E1);
    e1.boot();
    e1.write32(0x0C0000, 1);
    EXPECT_EQ(e1.read32(0x0C0000), 0x00010108U);
}

TEST(Power, ClockCommandsSelectTheCoreFrequency) {
    controller::Power e1(Generation::E1);
    e1.pinHigh();
    e1.selectClock(0x61, 0);
    e1.active(0);
    EXPECT_EQ(e1.clockFrequency(), 36'000'000U);

    controller::Power e3(Generation::E3);
    e3.pinHigh();
    e3.selectClock(0x62, 0);
    e3.active(0);
    EXPECT_EQ(e3.clockFrequency(), 60'000'000U);

    controller::Power fast(Generation::E2);
    fast.pinHigh();
    fast.selectClock(0x61, 0x46);
    fast.active(0);
    EXPECT_EQ(fast.clockFrequency(), 72'000'000U);
}

TEST(Power, TheClockRegisterCountsCoreClocks) {
    Host host(Generation::E3);
    host.boot();
    const std::uint32_t before = host.read32(host.at.clock());
    host.wait(1000 * ms);
    const std::uint32_t after = host.read32(host.at.clock());
    EXPECT_NEAR(static_cast<double>(after - before), 60e6, 1e4);
}

TEST(Power, UnknownHostCommandsAreComplainedAbout) {
    Host host(Generation::E3);
    host.boot();
    host.hostCommand(0x4F);
    EXPECT_TRUE(host.seen.complainedAbout("0x4F"));
}

TEST(Power, AChipWithAnotherIdentityOrNone) {
    Host host(Generation::E3);
    host.chip.setIdentity(0xDEADBEEF);
    host.boot();
    EXPECT_EQ(host.read32(0x0C0000), 0xDEADBEEFU);
    host.chip.setAnswering(false);
    EXPECT_EQ(host.read32(0x0C0000), 0U);
    EXPECT_EQ(host.read8(host.at.id()), 0);
    host.chip.setAnswering(true);
    EXPECT_EQ(host.read8(host.at.id()), 0x7C);
}

} // namespace
