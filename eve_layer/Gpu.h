#pragma once

// Words of the display-list instructions whose layout or existence depends on the controller
// generation. Each function returns the instruction's word for the generation in force; sending it
// is up to the caller (App_WrCoCmd_Buffer()). Arguments are cut to the width of their field.
//
// An instruction that the generation lacks ends the process through a failed assertion.
//
// The instructions that are the same in every generation are in displaylistwords.h.

#include <cstdint>

// addr: byte address of the bitmap in controller memory; 20 bits on EVE_1, 22 bits otherwise.
uint32_t BITMAP_SOURCE(uint32_t addr);

// EVE_3 only. flag: 1 when addr counts in flash, 0 in general memory (not cut to its bit);
// addr: 23 bits.
uint32_t BITMAP_SOURCE2(uint32_t flag, uint32_t addr);

// The scissor's top left corner and its size in pixels. On EVE_1 9 bits and 10 bits each,
// otherwise 11 bits and 12 bits.
uint32_t SCISSOR_XY(uint32_t x, uint32_t y);
uint32_t SCISSOR_SIZE(uint32_t width, uint32_t height);

// The instructions below need EVE_2 or EVE_3.

// frac: binary places of VERTEX2F coordinates, 0..4.
uint32_t VERTEX_FORMAT(uint32_t frac);
// The upper bits of BITMAP_LAYOUT's line stride (bits 10..11) and height (bits 9..10).
uint32_t BITMAP_LAYOUT_H(uint32_t linestride, uint32_t height);
// The upper bits of BITMAP_SIZE's width and height (bits 9..10 each).
uint32_t BITMAP_SIZE_H(uint32_t width, uint32_t height);
// addr: byte address of the palette in general memory, 22 bits.
uint32_t PALETTE_SOURCE(uint32_t addr);
// Offset added to every vertex, in 1/16 pixel, 17 bits two's complement.
uint32_t VERTEX_TRANSLATE_X(uint32_t x);
uint32_t VERTEX_TRANSLATE_Y(uint32_t y);
uint32_t NOP();

// The instructions below need EVE_3.

// format: used by bitmaps whose layout has the format "__GLFORMAT", 16 bits.
uint32_t BITMAP_EXT_FORMAT(uint32_t format);
// Where each channel of a bitmap comes from: 0 zero, 1 one, "__RED" .. "__ALPHA".
uint32_t BITMAP_SWIZZLE(uint32_t r, uint32_t g, uint32_t b, uint32_t a);
uint32_t INT_FRR();
