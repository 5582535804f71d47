#include "fontrom.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

using namespace controller;

namespace {

constexpr std::array<Generation, 3> generations{Generation::E1, Generation::E2, Generation::E3};
constexpr std::uint32_t formatL1 = 1;
constexpr std::uint32_t formatL4 = 2;

// The chip's documentation, by font from 16 on.
constexpr std::array<std::uint32_t, 19> heights{8,  8,  16, 16, 13, 17, 20, 22, 29, 38,
                                                16, 20, 25, 28, 36, 49, 63, 83, 108};
constexpr std::array<std::uint32_t, 19> widestCharacters{8,  8,  8,  8,  11, 13, 17, 18, 25, 34,
                                                         13, 15, 19, 21, 28, 37, 49, 63, 82};

int lastFont(Generation generation) {
    return generation == Generation::E1 ? 31 : lastRomFont;
}

std::vector<int> fontsOf(Generation generation) {
    std::vector<int> fonts;
    for (int font = firstRomFont; font <= lastFont(generation); ++font) {
        fonts.push_back(font);
    }
    return fonts;
}

const std::uint8_t* at(const RomImage& rom, std::uint32_t address) {
    EXPECT_GE(address, rom.base);
    EXPECT_LT(address - rom.base, rom.size);
    return rom.data + (address - rom.base);
}

std::uint32_t wordAt(const RomImage& rom, std::uint32_t address) {
    const std::uint8_t* bytes = at(rom, address);
    return bytes[0] | std::uint32_t{bytes[1]} << 8U | std::uint32_t{bytes[2]} << 16U |
           std::uint32_t{bytes[3]} << 24U;
}

// Ink of one pixel of a character: 0 to 1 (L1) or 15 (L4).
int inkAt(Generation generation, const RomFont& font, char character, std::uint32_t x,
          std::uint32_t y) {
    const std::uint32_t line =
        font.address + (static_cast<std::uint32_t>(character) * font.height + y) * font.stride;
    const RomImage rom = romImage(generation);
    if (font.format == formatL1) {
        return *at(rom, line + x / 8) >> (7 - x % 8) & 1;
    }
    return *at(rom, line + x / 2) >> (x % 2 == 0 ? 4 : 0) & 15;
}

// First and last line of a character that holds ink.
std::pair<std::uint32_t, std::uint32_t> inkedLines(Generation generation, const RomFont& font,
                                                   char character) {
    std::pair<std::uint32_t, std::uint32_t> lines{font.height, 0};
    for (std::uint32_t y = 0; y < font.height; ++y) {
        for (std::uint32_t x = 0; x < font.width; ++x) {
            if (inkAt(generation, font, character, x, y) != 0) {
                lines = {std::min(lines.first, y), y};
            }
        }
    }
    return lines;
}

} // namespace

TEST(FontRom, LiesWhereEachGenerationHasIt) {
    const RomImage e1 = romImage(Generation::E1);
    EXPECT_EQ(e1.base, 0x0BB23CU);
    EXPECT_EQ(e1.base + e1.size, 0x100000U);
    for (const Generation generation : {Generation::E2, Generation::E3}) {
        const RomImage rom = romImage(generation);
        EXPECT_EQ(rom.base, 0x1E0000U);
        EXPECT_EQ(rom.base + rom.size, 0x300000U);
    }
}

TEST(FontRom, HoldsTheIdentityWordInE1) {
    EXPECT_EQ(wordAt(romImage(Generation::E1), 0x0C0000), 0x00010108U);
}

TEST(FontRom, HasTheDocumentedHeightsAndWidths) {
    for (const Generation generation : generations) {
        for (const int font : fontsOf(generation)) {
            SCOPED_TRACE(font);
            const auto index = static_cast<std::size_t>(font - firstRomFont);
            const RomFont& block = romFont(generation, font);
            EXPECT_EQ(block.height, heights.at(index));
            EXPECT_EQ(block.width, widestCharacters.at(index));
            EXPECT_EQ(*std::max_element(block.widths.begin(), block.widths.end()), block.width);
            EXPECT_EQ(block.format, font <= 25 ? formatL1 : formatL4);
            EXPECT_EQ(block.stride, (block.width * (font <= 25 ? 1 : 4) + 7) / 8);
        }
    }
}

TEST(FontRom, LastWordLeadsToBlocksThatSayTheSame) {
    for (const Generation generation : generations) {
        const RomImage rom = romImage(generation);
        std::uint32_t block = wordAt(rom, static_cast<std::uint32_t>(rom.base + rom.size - 4));
        for (const int number : fontsOf(generation)) {
            SCOPED_TRACE(number);
            const RomFont& font = romFont(generation, number);
            EXPECT_TRUE(std::equal(font.widths.begin(), font.widths.end(), at(rom, block)));
            EXPECT_EQ(wordAt(rom, block + 128), font.format);
            EXPECT_EQ(wordAt(rom, block + 132), font.stride);
            EXPECT_EQ(wordAt(rom, block + 136), font.width);
            EXPECT_EQ(wordAt(rom, block + 140), font.height);
            EXPECT_EQ(wordAt(rom, block + 144), font.address);
            block += 148;
        }
    }
}

TEST(FontRom, DigitsAreEquallyWide) {
    for (const Generation generation : generations) {
        for (const int number : fontsOf(generation)) {
            const RomFont& font = romFont(generation, number);
            for (std::size_t digit = '0'; digit <= '9'; ++digit) {
                EXPECT_EQ(font.widths[digit], font.widths['0']);
            }
        }
    }
}

TEST(FontRom, OnlyPrintableCharactersHaveAWidth) {
    const RomFont& font = romFont(Generation::E3, 30);
    for (std::size_t c = 0; c < font.widths.size(); ++c) {
        EXPECT_EQ(font.widths.at(c) > 0, c >= ' ' && c <= '~') << c;
    }
}

TEST(FontRom, EveryVisibleCharacterHasInkInsideTheRom) {
    for (const Generation generation : generations) {
        for (const int number : fontsOf(generation)) {
            const RomFont& font = romFont(generation, number);
            for (char c = '!'; c <= '~'; ++c) {
                const auto [first, last] = inkedLines(generation, font, c);
                EXPECT_LE(first, last) << "font " << number << " character " << c;
            }
        }
    }
}

TEST(FontRom, SpaceHasNoInk) {
    const auto [first, last] = inkedLines(Generation::E3, romFont(Generation::E3, 31), ' ');
    EXPECT_GT(first, last);
}

TEST(FontRom, CapitalsStandInTheMiddleOfTheCell) {
    for (const int number : fontsOf(Generation::E3)) {
        if (number < 20) {
            continue; // the cells of the fixed-width fonts leave no choice
        }
        SCOPED_TRACE(number);
        const RomFont& font = romFont(Generation::E3, number);
        const auto [first, last] = inkedLines(Generation::E3, font, 'H');
        const auto above = static_cast<int>(first);
        const auto below = static_cast<int>(font.height - 1 - last);
        EXPECT_LE(std::abs(above - below), 1);
    }
}

TEST(FontRom, AnEOfTheFixedFontLooksLikeAnE) {
    const RomFont& font = romFont(Generation::E1, 18);
    std::string drawn;
    for (std::uint32_t y = 0; y < font.height; ++y) {
        for (std::uint32_t x = 0; x < font.width; ++x) {
            drawn += inkAt(Generation::E1, font, 'E', x, y) != 0 ? '#' : '.';
        }
        drawn += '\n';
    }
    EXPECT_EQ(drawn, "........\n"
                     "........\n"
                     "........\n"
                     ".#######\n"
                     ".#......\n"
                     ".#......\n"
                     ".#......\n"
                     ".#######\n"
                     ".#......\n"
                     ".#......\n"
                     ".#......\n"
                     ".#######\n"
                     "........\n"
                     "........\n"
                     "........\n"
                     "........\n");
}

TEST(FontRom, SmoothFontsUseTheirGreys) {
    const RomFont& font = romFont(Generation::E2, 31);
    std::array<bool, 16> seen{};
    for (std::uint32_t y = 0; y < font.height; ++y) {
        for (std::uint32_t x = 0; x < font.width; ++x) {
            seen.at(static_cast<std::size_t>(inkAt(Generation::E2, font, 'O', x, y))) = true;
        }
    }
    EXPECT_GT(std::count(seen.begin(), seen.end(), true), 10);
    EXPECT_TRUE(seen[15]);
}

TEST(FontRom, RampRisesFromBlackToWhiteAndStaysThere) {
    for (const Generation generation : generations) {
        const RomRamp ramp = romRamp(generation);
        ASSERT_EQ(ramp.length, 256U);
        const std::uint8_t* texels = at(romImage(generation), ramp.address);
        for (std::uint32_t i = 0; i < 1023; ++i) {
            EXPECT_EQ(texels[i], std::min(i, 255U));
        }
    }
}
