#include "registers.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

using namespace controller;

// Where the documentation has them.
constexpr std::uint32_t absent = 0;
struct Place {
    const char* name;
    std::uint32_t e1;
    std::uint32_t e3;
};
// clang-format off
constexpr Place places[] = {
    {"REG_FRAMES", 0x102404, 0x302004},
    {"REG_FREQUENCY", 0x10240C, 0x30200C},
    {"REG_RENDERMODE", 0x102410, 0x302010},
    {"REG_SNAPY", 0x102414, 0x302014},
    {"REG_SNAPSHOT", 0x102418, 0x302018},
    {"REG_SNAPFORMAT", absent, 0x30201C},
    {"REG_TAP_CRC", 0x102420, 0x302024},
    {"REG_TAP_MASK", 0x102424, 0x302028},
    {"REG_OUTBITS", 0x102458, 0x30205C},
    {"REG_TAG_X", 0x102470, 0x302074},
    {"REG_TAG_Y", 0x102474, 0x302078},
    {"REG_TAG", 0x102478, 0x30207C},
    {"REG_VOL_PB", 0x10247C, 0x302080},
    {"REG_INT_FLAGS", 0x102498, 0x3020A8},
    {"REG_INT_EN", 0x10249C, 0x3020AC},
    {"REG_INT_MASK", 0x1024A0, 0x3020B0},
    {"REG_PLAYBACK_START", 0x1024A4, 0x3020B4},
    {"REG_PLAYBACK_LENGTH", 0x1024A8, 0x3020B8},
    {"REG_PLAYBACK_READPTR", 0x1024AC, 0x3020BC},
    {"REG_PLAYBACK_FREQ", 0x1024B0, 0x3020C0},
    {"REG_PLAYBACK_FORMAT", 0x1024B4, 0x3020C4},
    {"REG_PLAYBACK_LOOP", 0x1024B8, 0x3020C8},
    {"REG_PLAYBACK_PLAY", 0x1024BC, 0x3020CC},
    {"REG_PWM_HZ", 0x1024C0, 0x3020D0},
    {"REG_MACRO_0", 0x1024C8, 0x3020D8},
    {"REG_MACRO_1", 0x1024CC, 0x3020DC},
    {"REG_BUSYBITS", absent, 0x3020E8},
    {"REG_ROMSUB_SEL", 0x1024E0, 0x3020F0},
    {"REG_TOUCH_MODE", 0x1024F0, 0x302104},
    {"REG_TOUCH_ADC_MODE", 0x1024F4, 0x302108},
    {"REG_TOUCH_CHARGE", 0x1024F8, 0x30210C},
    {"REG_TOUCH_SETTLE", 0x1024FC, 0x302110},
    {"REG_TOUCH_OVERSAMPLE", 0x102500, 0x302114},
    {"REG_TOUCH_RZTHRESH", 0x102504, 0x302118},
    {"REG_TOUCH_RAW_XY", 0x102508, 0x30211C},
    {"REG_TOUCH_RZ", 0x10250C, 0x302120},
    {"REG_TOUCH_TAG_XY", 0x102514, 0x302128},
    {"REG_TOUCH_TAG1_XY", absent, 0x302130},
    {"REG_TOUCH_TAG1", absent, 0x302134},
    {"REG_TOUCH_TAG2_XY", absent, 0x302138},
    {"REG_TOUCH_TAG2", absent, 0x30213C},
    {"REG_TOUCH_TAG3_XY", absent, 0x302140},
    {"REG_TOUCH_TAG3", absent, 0x302144},
    {"REG_TOUCH_TAG4_XY", absent, 0x302148},
    {"REG_TOUCH_TAG4", absent, 0x30214C},
    {"REG_CYA_TOUCH", 0x102534, 0x302168},
    {"REG_ANALOG", 0x102538, 0x30216C},
    {"REG_PATCHED_ANALOG", absent, 0x302170},
    {"REG_BIST_EN", absent, 0x302174},
    {"REG_CRC", 0x102568, 0x302178},
    {"REG_SPI_EARLY_TX", absent, 0x30217C},
    {"REG_TRIM", 0x10256C, 0x302180},
    {"REG_ANA_COMP", 0x102570, 0x302184},
    {"REG_TOUCH_DIRECT_XY", 0x102574, 0x30218C},
    {"REG_TOUCH_DIRECT_Z1Z2", 0x102578, 0x302190},
    {"REG_DATESTAMP", 0x10253C, 0x302564},
    {"REG_CMDB_SPACE", absent, 0x302574},
    {"REG_CMDB_WRITE", absent, 0x302578},
    {"REG_RAM_FOLD", absent, 0x3020F4},
    {"REG_ADAPTIVE_FRAMERATE", absent, 0x30257C},
    {"REG_PLAYBACK_PAUSE", absent, 0x3025EC},
};
// clang-format on

TEST(Registers, StandWhereTheyAreDocumented) {
    for (const Place& place : places) {
        const std::optional<Register> id = registerNamed(place.name);
        ASSERT_TRUE(id) << place.name;
        const RegisterInfo& info = registerInfo(*id);
        EXPECT_EQ(registerAt(Generation::E3, place.e3), &info) << place.name;
        if (place.e1 != absent) {
            EXPECT_EQ(registerAt(Generation::E1, place.e1), &info) << place.name;
        } else {
            EXPECT_FALSE(contains(info.generations, Generation::E1)) << place.name;
        }
    }
}

TEST(Registers, HaveTheDocumentedValuesAfterReset) {
    const Registers e3(Generation::E3);
    struct Value {
        Register id;
        std::uint32_t value;
    };
    constexpr Value values[] = {
        {Register::Id, 0x7C},
        {Register::HCycle, 548},
        {Register::HOffset, 43},
        {Register::HSize, 480},
        {Register::HSync0, 0},
        {Register::HSync1, 41},
        {Register::VCycle, 292},
        {Register::VOffset, 12},
        {Register::VSize, 272},
        {Register::VSync0, 0},
        {Register::VSync1, 10},
        {Register::Pclk, 0},
        {Register::PclkPol, 0},
        {Register::CSpread, 1},
        {Register::Dither, 1},
        {Register::Rotate, 0},
        {Register::Swizzle, 0},
        {Register::GpioDir, 0x80},
        {Register::Gpio, 0},
        {Register::GpioxDir, 0x8000},
        {Register::Gpiox, 0x8000},
        {Register::VolPb, 255},
        {Register::VolSound, 255},
        {Register::PwmHz, 250},
        {Register::PwmDuty, 128},
        {Register::TouchMode, 3},
        {Register::TouchRzThresh, 0xFFFF},
        {Register::TouchTransformA, 0x10000},
        {Register::TouchTransformB, 0},
        {Register::TouchTransformC, 0},
        {Register::TouchTransformD, 0},
        {Register::TouchTransformE, 0x10000},
        {Register::TouchTransformF, 0},
        {Register::TouchScreenXy, 0x80008000},
        {Register::TouchTag, 0},
        {Register::IntMask, 0xFF},
        {Register::CmdRead, 0},
        {Register::CmdWrite, 0},
        {Register::CmdDl, 0},
        {Register::DlSwap, 0},
    };
    for (const Value& expected : values) {
        EXPECT_EQ(e3[expected.id], expected.value) << registerInfo(expected.id).name;
    }
}

TEST(Registers, HaveTheirResetValues) {
    const Registers e1(Generation::E1);
    EXPECT_EQ(e1[Register::Id], 0x7CU);
    EXPECT_EQ(e1[Register::Frequency], 48'000'000U);
    EXPECT_EQ(e1[Register::HCycle], 548U);
    EXPECT_EQ(e1[Register::VSize], 272U);
    EXPECT_EQ(e1[Register::Pclk], 0U);
    EXPECT_EQ(e1[Register::PwmDuty], 128U);
    EXPECT_EQ(e1[Register::TouchScreenXy], 0x80008000U);
    EXPECT_EQ(e1[Register::TouchTransformE], 0x10000U);

    const Registers e3(Generation::E3);
    EXPECT_EQ(e3[Register::Frequency], 60'000'000U);
    EXPECT_EQ(e3[Register::Gpiox], 0x8000U);
}

TEST(Registers, KeepOnlyTheirOwnBits) {
    Registers registers(Generation::E3);
    registers.set(Register::DlSwap, 0xFFFFFFFF);
    EXPECT_EQ(registers[Register::DlSwap], 3U);
    registers.set(Register::CmdRead, 0x1FFF);
    EXPECT_EQ(registers[Register::CmdRead], 0xFFFU);
    registers.set(Register::TouchTransformC, 0xFFF6F866);
    EXPECT_EQ(registers[Register::TouchTransformC], 0xFFF6F866U);
}

TEST(Registers, ResetRestoresEverything) {
    Registers registers(Generation::E2);
    registers.set(Register::Pclk, 5);
    registers.set(Register::Frequency, 1);
    registers.reset();
    EXPECT_EQ(registers[Register::Pclk], 0U);
    EXPECT_EQ(registers[Register::Frequency], 60'000'000U);
}

TEST(Registers, AreFoundByAddressInTheirGeneration) {
    ASSERT_NE(registerAt(Generation::E1, 0x1024EC), nullptr);
    EXPECT_EQ(registerAt(Generation::E1, 0x1024EC)->id, Register::CmdDl);
    ASSERT_NE(registerAt(Generation::E3, 0x302103), nullptr);
    EXPECT_EQ(registerAt(Generation::E3, 0x302103)->id, Register::CmdDl);
    EXPECT_EQ(registerAt(Generation::E1, 0x302100), nullptr);
    EXPECT_EQ(registerAt(Generation::E3, 0x102400), nullptr);
    EXPECT_EQ(registerAt(Generation::E2, 0x302FFF), nullptr);
    EXPECT_EQ(registerAt(Generation::E2, 0x303000), nullptr);
}

TEST(Registers, AreFoundByName) {
    EXPECT_EQ(registerNamed("REG_TOUCH_TRANSFORM_A"), Register::TouchTransformA);
    EXPECT_EQ(registerNamed("REG_NOTHING"), std::nullopt);
}

TEST(Registers, OnlySomeGenerationsHaveTheLaterOnes) {
    EXPECT_EQ(registerAt(Generation::E2, 0x3025F0), nullptr);
    EXPECT_NE(registerAt(Generation::E3, 0x3025F0), nullptr);
    EXPECT_EQ(registerAt(Generation::E2, 0x3020E0), nullptr); // REG_CYA0: E1 and E3
    EXPECT_NE(registerAt(Generation::E1, 0x1024D0), nullptr);
}

} // namespace
