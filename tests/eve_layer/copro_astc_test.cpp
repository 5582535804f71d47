#include "CoPro_Cmds.h"
#include "displaysettings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>
#include <vector>

static_assert(
    std::is_same_v<decltype(astc_tile2), void(unsigned char*, unsigned short, unsigned short,
                                              unsigned int, unsigned char*)>);

namespace {

using testing::ElementsAre;

TEST(AstcFormat, IsTheNumberOfTheBlockFootprint) {
    DisplaySettings::getInstance()->setDisplayGeneration(DisplaySettings::EVE_3);
    EXPECT_EQ(GET_ASTC_FORMAT(4, 4), 0x93B0U);
    EXPECT_EQ(GET_ASTC_FORMAT(5, 4), 0x93B1U);
    EXPECT_EQ(GET_ASTC_FORMAT(5, 5), 0x93B2U);
    EXPECT_EQ(GET_ASTC_FORMAT(6, 5), 0x93B3U);
    EXPECT_EQ(GET_ASTC_FORMAT(6, 6), 0x93B4U);
    EXPECT_EQ(GET_ASTC_FORMAT(8, 5), 0x93B5U);
    EXPECT_EQ(GET_ASTC_FORMAT(8, 6), 0x93B6U);
    EXPECT_EQ(GET_ASTC_FORMAT(8, 8), 0x93B7U);
    EXPECT_EQ(GET_ASTC_FORMAT(10, 5), 0x93B8U);
    EXPECT_EQ(GET_ASTC_FORMAT(10, 6), 0x93B9U);
    EXPECT_EQ(GET_ASTC_FORMAT(10, 8), 0x93BAU);
    EXPECT_EQ(GET_ASTC_FORMAT(10, 10), 0x93BBU);
    EXPECT_EQ(GET_ASTC_FORMAT(12, 10), 0x93BCU);
    EXPECT_EQ(GET_ASTC_FORMAT(12, 12), 0x93BDU);
}

TEST(AstcFormat, IsZeroForAnyOtherFootprint) {
    DisplaySettings::getInstance()->setDisplayGeneration(DisplaySettings::EVE_3);
    EXPECT_EQ(GET_ASTC_FORMAT(7, 7), 0U);
    EXPECT_EQ(GET_ASTC_FORMAT(4, 5), 0U);
    EXPECT_EQ(GET_ASTC_FORMAT(0, 0), 0U);
}

TEST(AstcFormat, IsZeroForEveryFootprintBeforeEve3) {
    for (const auto generation : {DisplaySettings::EVE_1, DisplaySettings::EVE_2}) {
        DisplaySettings::getInstance()->setDisplayGeneration(generation);
        for (uint16_t w = 0; w <= 12; ++w) {
            for (uint16_t h = 0; h <= 12; ++h) {
                EXPECT_EQ(GET_ASTC_FORMAT(w, h), 0U);
            }
        }
    }
}

// Blocks of 16 bytes, all holding their block's number.
std::vector<uint8_t> numberedBlocks(std::size_t count) {
    std::vector<uint8_t> data;
    for (std::size_t block = 0; block < count; ++block) {
        data.insert(data.end(), 16, static_cast<uint8_t>(block));
    }
    return data;
}

// The order in which astc_tile2() leaves w x h blocks, `count` in all.
std::vector<int> tiledOrder(uint16_t w, uint16_t h, std::size_t count) {
    std::vector<uint8_t> source = numberedBlocks(count);
    std::vector<uint8_t> tiled(source.size(), 0xEE);
    astc_tile2(source.data(), w, h, static_cast<uint32_t>(source.size()), tiled.data());
    std::vector<int> order;
    for (std::size_t at = 0; at < tiled.size(); at += 16) {
        EXPECT_EQ(std::vector<uint8_t>(16, tiled[at]),
                  std::vector<uint8_t>(&tiled[at], &tiled[at] + 16));
        order.push_back(tiled[at]);
    }
    return order;
}

TEST(AstcTiles, GoRoundEachTwoByTwoSquare) {
    EXPECT_THAT(tiledOrder(4, 2, 8), ElementsAre(0, 4, 5, 1, 2, 6, 7, 3));
    EXPECT_THAT(tiledOrder(2, 4, 8), ElementsAre(0, 2, 3, 1, 4, 6, 7, 5));
}

TEST(AstcTiles, AnOddLastColumnGoesDown) {
    EXPECT_THAT(tiledOrder(3, 2, 6), ElementsAre(0, 3, 4, 1, 2, 5));
    EXPECT_THAT(tiledOrder(1, 2, 2), ElementsAre(0, 1));
}

TEST(AstcTiles, AnOddLastRowKeepsItsOrder) {
    EXPECT_THAT(tiledOrder(3, 3, 9), ElementsAre(0, 3, 4, 1, 2, 5, 6, 7, 8));
}

TEST(AstcTiles, ASingleRowKeepsItsOrder) {
    EXPECT_THAT(tiledOrder(3, 1, 3), ElementsAre(0, 1, 2));
}

TEST(AstcTiles, WhatFollowsAnOddLastRowIsCopiedToo) {
    EXPECT_THAT(tiledOrder(2, 1, 3), ElementsAre(0, 1, 2));
}

} // namespace
