#pragma once

#include <cstdint>

// The colours of the panel, 0xRRGGBB.
namespace palette {

constexpr uint32_t backgroundFrom = 0xCACACA;
constexpr uint32_t backgroundTo = 0xF3F3F3;

constexpr uint32_t ink = 0x19190C; // texts, frames, icon outlines
constexpr uint32_t barOutline = 0x1A1A1B;
constexpr uint32_t tileGrey = 0xCBCED0;

constexpr uint32_t buttonFace = 0x00A1DD; // also channel badges and the inner part of bars
constexpr uint32_t pressedFace = 0x007C9E;
constexpr uint32_t keyShade = 0x0087B8; // background of the keypad's keys

constexpr uint32_t okFace = 0x1DCC37;
constexpr uint32_t okPressedFace = 0x17A72A;

constexpr uint32_t playGreen = 0x1DCC37;
constexpr uint32_t stopRed = 0xC60D0D;
constexpr uint32_t orange = 0xF26421; // spinner, bars of the histogram icon

constexpr uint32_t signGrey = 0xDADADA;
constexpr uint32_t signYellow = 0xFFD013;

} // namespace palette
