#include "Gpu.h"
#include "assertionfailure.h"
#include "displaysettings.h"

namespace {

void use(DisplaySettings::DisplayGeneration generation) {
    DisplaySettings::getInstance()->setDisplayGeneration(generation);
}

// --- layouts that depend on the generation

TEST(BitmapSource, TakesATwentyBitAddressOnEve1AndATwentyTwoBitOneLater) {
    use(DisplaySettings::EVE_1);
    EXPECT_EQ(BITMAP_SOURCE(0x123456), 0x01023456U);
    use(DisplaySettings::EVE_2);
    EXPECT_EQ(BITMAP_SOURCE(0x123456), 0x01123456U);
    use(DisplaySettings::EVE_3);
    EXPECT_EQ(BITMAP_SOURCE(0x123456), 0x01123456U);
    EXPECT_EQ(BITMAP_SOURCE(0xFFFFFFFF), 0x013FFFFFU);
}

TEST(BitmapSource2, CutsTheAddressButNotTheFlag) {
    use(DisplaySettings::EVE_3);
    EXPECT_EQ(BITMAP_SOURCE2(0, 0xFF800001), 0x01000001U);
    EXPECT_EQ(BITMAP_SOURCE2(1, 0x7FFFFF), 0x01FFFFFFU);
    EXPECT_EQ(BITMAP_SOURCE2(4, 0), 0x03000000U);
}

TEST(ScissorXY, HasNineBitFieldsOnEve1AndElevenBitFieldsLater) {
    use(DisplaySettings::EVE_1);
    EXPECT_EQ(SCISSOR_XY(1, 2), 0x1B000202U);
    EXPECT_EQ(SCISSOR_XY(0xFFFFFFFF, 0xFFFFFFFF), 0x1B03FFFFU);
    use(DisplaySettings::EVE_2);
    EXPECT_EQ(SCISSOR_XY(1, 2), 0x1B000802U);
    use(DisplaySettings::EVE_3);
    EXPECT_EQ(SCISSOR_XY(1, 2), 0x1B000802U);
    EXPECT_EQ(SCISSOR_XY(0xFFFFFFFF, 0xFFFFFFFF), 0x1B3FFFFFU);
}

TEST(ScissorSize, HasTenBitFieldsOnEve1AndTwelveBitFieldsLater) {
    use(DisplaySettings::EVE_1);
    EXPECT_EQ(SCISSOR_SIZE(800, 480), 0x1C0C81E0U);
    EXPECT_EQ(SCISSOR_SIZE(0xFFFFFFFF, 0xFFFFFFFF), 0x1C0FFFFFU);
    use(DisplaySettings::EVE_2);
    EXPECT_EQ(SCISSOR_SIZE(800, 480), 0x1C3201E0U);
    use(DisplaySettings::EVE_3);
    EXPECT_EQ(SCISSOR_SIZE(800, 480), 0x1C3201E0U);
    EXPECT_EQ(SCISSOR_SIZE(0xFFFFFFFF, 0xFFFFFFFF), 0x1CFFFFFFU);
}

// --- instructions of the later generations

void expectEve2Words() {
    EXPECT_EQ(VERTEX_FORMAT(3), 0x27000003U);
    EXPECT_EQ(VERTEX_FORMAT(0xFFFFFFFC), 0x27000004U);
    EXPECT_EQ(BITMAP_LAYOUT_H(1, 2), 0x28000006U);
    EXPECT_EQ(BITMAP_LAYOUT_H(0xFFFFFFFF, 0xFFFFFFFF), 0x2800000FU);
    EXPECT_EQ(BITMAP_SIZE_H(2, 1), 0x29000009U);
    EXPECT_EQ(BITMAP_SIZE_H(0xFFFFFFFF, 0xFFFFFFFF), 0x2900000FU);
    EXPECT_EQ(PALETTE_SOURCE(0x123456), 0x2A123456U);
    EXPECT_EQ(PALETTE_SOURCE(0xFFC00001), 0x2A000001U);
    EXPECT_EQ(VERTEX_TRANSLATE_X(0xFFFFFFF0), 0x2B01FFF0U);
    EXPECT_EQ(VERTEX_TRANSLATE_X(0xFFFFFFFF), 0x2B01FFFFU);
    EXPECT_EQ(VERTEX_TRANSLATE_Y(16), 0x2C000010U);
    EXPECT_EQ(VERTEX_TRANSLATE_Y(0xFFFFFFFF), 0x2C01FFFFU);
    EXPECT_EQ(VERTEX_TRANSLATE_Y(0xFFFFFFF0), 0x2C01FFF0U);
    EXPECT_EQ(NOP(), 0x2D000000U);
}

TEST(EncodersSinceEve2, GiveTheSameWordsOnEve2AndEve3) {
    use(DisplaySettings::EVE_2);
    expectEve2Words();
    use(DisplaySettings::EVE_3);
    expectEve2Words();
}

TEST(EncodersSinceEve3, CutTheirArgumentsToTheFields) {
    use(DisplaySettings::EVE_3);
    EXPECT_EQ(BITMAP_EXT_FORMAT(0x93B0), 0x2E0093B0U);
    EXPECT_EQ(BITMAP_EXT_FORMAT(0xFFFF0001), 0x2E000001U);
    EXPECT_EQ(BITMAP_SWIZZLE(2, 3, 4, 5), 0x2F0004E5U);
    EXPECT_EQ(BITMAP_SWIZZLE(8, 8, 8, 8), 0x2F000000U);
    EXPECT_EQ(BITMAP_SWIZZLE(7, 7, 7, 7), 0x2F000FFFU);
    EXPECT_EQ(INT_FRR(), 0x30000000U);
}

// --- guards

void expectFailure(void (*call)(), int line, const char* function, const char* text) {
    EXPECT_ASSERTION_FAILURE(call(), "eve_layer/Gpu.cpp", line, function, text);
}

TEST(GpuDeathTest, EncodersSinceEve2AbortOnEve1) {
    use(DisplaySettings::EVE_1);
    expectFailure([] { VERTEX_FORMAT(0); }, 31, "uint32_t VERTEX_FORMAT(uint32_t)",
                  R"(!EVE1 && "VERTEX_FORMAT function worked only on EVE_2 or EVE_3")");
    expectFailure([] { BITMAP_LAYOUT_H(0, 0); }, 36, "uint32_t BITMAP_LAYOUT_H(uint32_t, uint32_t)",
                  R"(!EVE1 && "BITMAP_LAYOUT_H function worked only on EVE_2 or EVE_3")");
    expectFailure([] { BITMAP_SIZE_H(0, 0); }, 41, "uint32_t BITMAP_SIZE_H(uint32_t, uint32_t)",
                  R"(!EVE1 && "BITMAP_SIZE_H function worked only on EVE_2 or EVE_3")");
    expectFailure([] { PALETTE_SOURCE(0); }, 46, "uint32_t PALETTE_SOURCE(uint32_t)",
                  R"(!EVE1 && "PALETTE_SOURCE function worked only on EVE_2 or EVE_3")");
    expectFailure([] { VERTEX_TRANSLATE_X(0); }, 51, "uint32_t VERTEX_TRANSLATE_X(uint32_t)",
                  R"(!EVE1 && "VERTEX_TRANSLATE_X function worked only on EVE_2 or EVE_3")");
    expectFailure([] { VERTEX_TRANSLATE_Y(0); }, 56, "uint32_t VERTEX_TRANSLATE_Y(uint32_t)",
                  R"(!EVE1 && "VERTEX_TRANSLATE_Y function worked only on EVE_2 or EVE_3")");
    expectFailure([] { NOP(); }, 61, "uint32_t NOP()",
                  R"(!EVE1 && "NOP function worked only on EVE_2 or EVE_3")");
}

void expectEve3Guards() {
    expectFailure([] { BITMAP_SOURCE2(0, 0); }, 13, "uint32_t BITMAP_SOURCE2(uint32_t, uint32_t)",
                  R"(EVE3 && "BITMAP_SOURCE2 worked only on EVE_3")");
    expectFailure([] { BITMAP_EXT_FORMAT(0); }, 66, "uint32_t BITMAP_EXT_FORMAT(uint32_t)",
                  R"(EVE3 && "BITMAP_EXT_FORMAT function worked only on EVE_3")");
    expectFailure([] { BITMAP_SWIZZLE(2, 3, 4, 5); }, 71,
                  "uint32_t BITMAP_SWIZZLE(uint32_t, uint32_t, uint32_t, uint32_t)",
                  R"(EVE3 && "BITMAP_SWIZZLE function worked only on EVE_3")");
    expectFailure([] { INT_FRR(); }, 76, "uint32_t INT_FRR()",
                  R"(EVE3 && "INT_FRR function worked only on EVE_3")");
}

TEST(GpuDeathTest, EncodersSinceEve3AbortOnEve1AndEve2) {
    use(DisplaySettings::EVE_1);
    expectEve3Guards();
    use(DisplaySettings::EVE_2);
    expectEve3Guards();
}

} // namespace
