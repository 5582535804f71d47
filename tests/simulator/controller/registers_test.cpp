#include "registers.h"

#include <gtest/gtest.h>

namespace {

using namespace controller;

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
