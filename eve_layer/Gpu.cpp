#include "Gpu.h"

#include "generationguard.h"

namespace {

constexpr const char* gpuFile = "eve_layer/Gpu.cpp";

} // namespace

uint32_t BITMAP_SOURCE(uint32_t addr) {
    return 0x01000000U | (addr & (isEve1() ? 0xFFFFFU : 0x3FFFFFU));
}

uint32_t BITMAP_SOURCE2(uint32_t flag, uint32_t addr) {
    NEEDS_EVE3(gpuFile, 13, "BITMAP_SOURCE2 worked only on EVE_3");
    return 0x01000000U | (flag << 23) | (addr & 0x7FFFFFU);
}

uint32_t SCISSOR_XY(uint32_t x, uint32_t y) {
    if (isEve1()) {
        return 0x1B000000U | ((x << 9) & 0x3FE00U) | (y & 0x1FFU);
    }
    return 0x1B000000U | ((x << 11) & 0x3FF800U) | (y & 0x7FFU);
}

uint32_t SCISSOR_SIZE(uint32_t width, uint32_t height) {
    if (isEve1()) {
        return 0x1C000000U | ((width << 10) & 0xFFC00U) | (height & 0x3FFU);
    }
    return 0x1C000000U | ((width << 12) & 0xFFF000U) | (height & 0xFFFU);
}

uint32_t VERTEX_FORMAT(uint32_t frac) {
    NEEDS_EVE2_OR_EVE3(gpuFile, 31, "VERTEX_FORMAT function worked only on EVE_2 or EVE_3");
    return 0x27000000U | (frac & 7U);
}

uint32_t BITMAP_LAYOUT_H(uint32_t linestride, uint32_t height) {
    NEEDS_EVE2_OR_EVE3(gpuFile, 36, "BITMAP_LAYOUT_H function worked only on EVE_2 or EVE_3");
    return 0x28000000U | ((linestride << 2) & 0xCU) | (height & 3U);
}

uint32_t BITMAP_SIZE_H(uint32_t width, uint32_t height) {
    NEEDS_EVE2_OR_EVE3(gpuFile, 41, "BITMAP_SIZE_H function worked only on EVE_2 or EVE_3");
    return 0x29000000U | ((width << 2) & 0xCU) | (height & 3U);
}

uint32_t PALETTE_SOURCE(uint32_t addr) {
    NEEDS_EVE2_OR_EVE3(gpuFile, 46, "PALETTE_SOURCE function worked only on EVE_2 or EVE_3");
    return 0x2A000000U | (addr & 0x3FFFFFU);
}

uint32_t VERTEX_TRANSLATE_X(uint32_t x) {
    NEEDS_EVE2_OR_EVE3(gpuFile, 51, "VERTEX_TRANSLATE_X function worked only on EVE_2 or EVE_3");
    return 0x2B000000U | (x & 0x1FFFFU);
}

uint32_t VERTEX_TRANSLATE_Y(uint32_t y) {
    NEEDS_EVE2_OR_EVE3(gpuFile, 56, "VERTEX_TRANSLATE_Y function worked only on EVE_2 or EVE_3");
    return 0x2C000000U | (y & 0x1FFFFU);
}

uint32_t NOP() {
    NEEDS_EVE2_OR_EVE3(gpuFile, 61, "NOP function worked only on EVE_2 or EVE_3");
    return 0x2D000000U;
}

uint32_t BITMAP_EXT_FORMAT(uint32_t format) {
    NEEDS_EVE3(gpuFile, 66, "BITMAP_EXT_FORMAT function worked only on EVE_3");
    return 0x2E000000U | (format & 0xFFFFU);
}

uint32_t BITMAP_SWIZZLE(uint32_t r, uint32_t g, uint32_t b, uint32_t a) {
    NEEDS_EVE3(gpuFile, 71, "BITMAP_SWIZZLE function worked only on EVE_3");
    return 0x2F000000U | ((r << 9) & 0xE00U) | ((g << 6) & 0x1C0U) | ((b << 3) & 0x38U) | (a & 7U);
}

uint32_t INT_FRR() {
    NEEDS_EVE3(gpuFile, 76, "INT_FRR function worked only on EVE_3");
    return 0x30000000U;
}
