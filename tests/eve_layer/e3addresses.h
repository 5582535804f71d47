#pragma once

#include <cstdint>

// The memory map of generation 3, where most of these tests take place: once more and by hand, so
// that the registry is not compared with itself.
constexpr uint32_t ramDl = 0x300000;
constexpr uint32_t ramCmd = 0x308000;
constexpr uint32_t regDlSwap = 0x302054;
constexpr uint32_t regPwmDuty = 0x3020D4;
constexpr uint32_t regCmdRead = 0x3020F8;
constexpr uint32_t regCmdWrite = 0x3020FC;
constexpr uint32_t regTouchScreenXY = 0x302124;
constexpr uint32_t regTouchTag = 0x30212C;
constexpr uint32_t regSpiWidth = 0x302188;
constexpr uint32_t regFlashStatus = 0x3025F0;
