#include "generationtable.h"

#include <QString>

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

using Values = std::array<std::optional<uint32_t>, 3>;

std::string text(QStringView name) {
    return name.toString().toStdString();
}

// The 32-bit hash of that name.
uint32_t fnv1a(const std::string& bytes) {
    uint32_t hash = 2166136261U;
    for (const char byte : bytes) {
        hash =
            static_cast<uint32_t>((hash ^ static_cast<unsigned char>(byte)) * uint64_t{16777619});
    }
    return hash;
}

bool startsWith(const GenerationRow& row, const char* prefix) {
    return row.name.startsWith(QLatin1String(prefix));
}

Values valuesOf(const char* name) {
    for (const GenerationRow& row : generationTable()) {
        if (row.name == QLatin1String(name)) {
            return row.values;
        }
    }
    ADD_FAILURE() << "no row " << name;
    return {};
}

template<typename Predicate>
auto countRows(Predicate predicate) {
    const auto table = generationTable();
    return std::count_if(table.begin(), table.end(), predicate);
}

auto countNamesOf(std::size_t generation) {
    return countRows(
        [generation](const GenerationRow& row) { return row.values[generation].has_value(); });
}

auto countPrefix(const char* prefix) {
    return countRows([prefix](const GenerationRow& row) { return startsWith(row, prefix); });
}

bool isMemoryMap(const GenerationRow& row) {
    return startsWith(row, "__RAM_") || row.name == QLatin1String("__LOW_FREQ_BOUND") ||
           row.name == QLatin1String("__ROMFONT_TABLEADDRESS");
}

bool isAddressOrClock(const GenerationRow& row) {
    return startsWith(row, "__REG_") || isMemoryMap(row);
}

// Names defined in exactly these generations.
std::set<std::string> namesOf(bool eve1, bool eve2, bool eve3, const char* prefix) {
    std::set<std::string> names;
    for (const GenerationRow& row : generationTable()) {
        if (startsWith(row, prefix) && row.values[0].has_value() == eve1 &&
            row.values[1].has_value() == eve2 && row.values[2].has_value() == eve3) {
            names.insert(text(row.name));
        }
    }
    return names;
}

TEST(GenerationTable, HasAllNames) {
    EXPECT_EQ(countNamesOf(0), 235);
    EXPECT_EQ(countNamesOf(1), 280);
    EXPECT_EQ(countNamesOf(2), 484);
    EXPECT_EQ(countRows([](const GenerationRow&) { return true; }), 491);
}

TEST(GenerationTable, HasEachNameOnceAndNoneForNothing) {
    std::set<std::string> names;
    for (const GenerationRow& row : generationTable()) {
        EXPECT_TRUE(names.insert(text(row.name)).second) << text(row.name);
        EXPECT_TRUE(startsWith(row, "__")) << text(row.name);
        EXPECT_TRUE(row.values[0] || row.values[1] || row.values[2]) << text(row.name);
    }
}

TEST(GenerationTable, HasAllNamesOfEachGroup) {
    EXPECT_EQ(countRows(isMemoryMap), 14);
    EXPECT_EQ(countPrefix("__REG_"), 166);
    EXPECT_EQ(countPrefix("__CMD_"), 98);
    EXPECT_EQ(countPrefix("__OPT_"), 22);
    EXPECT_EQ(countPrefix("__COMPRESSED_"), 14);
    EXPECT_EQ(countPrefix("__JT_"), 57);
    EXPECT_EQ(countPrefix("__SS_"), 28);
    const auto others = 491 - 14 - 166 - 98 - 22 - 14 - 57 - 28;
    EXPECT_EQ(others, 92);
}

struct Documented {
    const char* name;
    Values values;
};
void PrintTo(const Documented& documented, std::ostream* out) {
    *out << documented.name;
}

const Documented documentedValues[] = {
    {"__LOW_FREQ_BOUND", {47040000, 58800000, 58800000}},
    {"__RAM_G_SIZE", {0x40000, 0x100000, 0x100000}},
    {"__RAM_CMD", {0x108000, 0x308000, 0x308000}},
    {"__RAM_DL", {0x100000, 0x300000, 0x300000}},
    {"__RAM_G", {0, 0, 0}},
    {"__RAM_PAL", {0x102000, absent, absent}},
    {"__RAM_REG", {0x102400, 0x302000, 0x302000}},
    {"__ROMFONT_TABLEADDRESS", {0xFFFFC, 0x2FFFFC, 0x2FFFFC}},
    {"__RAM_BIST", {absent, absent, 0x380000}},
    {"__RAM_J1RAM", {absent, absent, 0x309000}},
    {"__RAM_JTBOOT", {absent, absent, 0x30B000}},
    {"__RAM_ROMSUB", {absent, 0x30A000, 0x30A000}},
    {"__RAM_TOP", {absent, absent, 0x304000}},
    {"__RAM_ERR_REPORT", {absent, absent, 0x309800}},
    {"__REG_CLOCK", {0x102408, 0x302008, 0x302008}},
    {"__REG_CMD_DL", {0x1024EC, 0x302100, 0x302100}},
    {"__REG_CMD_READ", {0x1024E4, 0x3020F8, 0x3020F8}},
    {"__REG_CMD_WRITE", {0x1024E8, 0x3020FC, 0x3020FC}},
    {"__REG_CPURESET", {0x10241C, 0x302020, 0x302020}},
    {"__REG_CSPREAD", {0x102464, 0x302068, 0x302068}},
    {"__REG_DITHER", {0x10245C, 0x302060, 0x302060}},
    {"__REG_DLSWAP", {0x102450, 0x302054, 0x302054}},
    {"__REG_GPIO", {0x102490, 0x302094, 0x302094}},
    {"__REG_GPIO_DIR", {0x10248C, 0x302090, 0x302090}},
    {"__REG_HCYCLE", {0x102428, 0x30202C, 0x30202C}},
    {"__REG_HOFFSET", {0x10242C, 0x302030, 0x302030}},
    {"__REG_HSIZE", {0x102430, 0x302034, 0x302034}},
    {"__REG_HSYNC0", {0x102434, 0x302038, 0x302038}},
    {"__REG_HSYNC1", {0x102438, 0x30203C, 0x30203C}},
    {"__REG_ID", {0x102400, 0x302000, 0x302000}},
    {"__REG_PCLK", {0x10246C, 0x302070, 0x302070}},
    {"__REG_PCLK_POL", {0x102468, 0x30206C, 0x30206C}},
    {"__REG_PLAY", {0x102488, 0x30208C, 0x30208C}},
    {"__REG_PWM_DUTY", {0x1024C4, 0x3020D4, 0x3020D4}},
    {"__REG_ROTATE", {0x102454, 0x302058, 0x302058}},
    {"__REG_SOUND", {0x102484, 0x302088, 0x302088}},
    {"__REG_SWIZZLE", {0x102460, 0x302064, 0x302064}},
    {"__REG_TOUCH_SCREEN_XY", {0x102510, 0x302124, 0x302124}},
    {"__REG_TOUCH_TAG", {0x102518, 0x30212C, 0x30212C}},
    {"__REG_TOUCH_TRANSFORM_A", {0x10251C, 0x302150, 0x302150}},
    {"__REG_TOUCH_TRANSFORM_B", {0x102520, 0x302154, 0x302154}},
    {"__REG_TOUCH_TRANSFORM_C", {0x102524, 0x302158, 0x302158}},
    {"__REG_TOUCH_TRANSFORM_D", {0x102528, 0x30215C, 0x30215C}},
    {"__REG_TOUCH_TRANSFORM_E", {0x10252C, 0x302160, 0x302160}},
    {"__REG_TOUCH_TRANSFORM_F", {0x102530, 0x302164, 0x302164}},
    {"__REG_VCYCLE", {0x10243C, 0x302040, 0x302040}},
    {"__REG_VOFFSET", {0x102440, 0x302044, 0x302044}},
    {"__REG_VOL_SOUND", {0x102480, 0x302084, 0x302084}},
    {"__REG_VSIZE", {0x102444, 0x302048, 0x302048}},
    {"__REG_VSYNC0", {0x102448, 0x30204C, 0x30204C}},
    {"__REG_VSYNC1", {0x10244C, 0x302050, 0x302050}},
    {"__REG_FLASH_STATUS", {absent, absent, 0x3025F0}},
    {"__REG_GPIOX", {absent, 0x30209C, 0x30209C}},
    {"__REG_GPIOX_DIR", {absent, 0x302098, 0x302098}},
    {"__REG_SPI_WIDTH", {absent, 0x302188, 0x302188}},
    {"__REG_TRACKER", {0x109000, 0x309000, 0x309000}},
    {"__REG_DATESTAMP", {0x10253C, 0x302564, 0x302564}},
    {"__CMD_TEXT", {0xFFFFFF0C, 0xFFFFFF0C, 0xFFFFFF0C}},
    {"__CMD_DLSTART", {0xFFFFFF00, 0xFFFFFF00, 0xFFFFFF00}},
    {"__CMD_GRADCOLOR", {0xFFFFFF34, 0xFFFFFF34, 0xFFFFFF34}},
    {"__CMD_SETBITMAP", {absent, 0xFFFFFF43, 0xFFFFFF43}},
    {"__CMD_VIDEOSTARTF", {absent, absent, 0xFFFFFF5F}},
    // Commands that were renamed.
    {"__CMD_IDCT", {0xFFFFFF06, absent, absent}},
    {"__CMD_IDCT_DELETED", {absent, 0xFFFFFF06, 0xFFFFFF06}},
    {"__CMD_CSKETCH", {0xFFFFFF35, 0xFFFFFF35, absent}},
    {"__CMD_DEPRECATED_CSKETCH", {absent, absent, 0xFFFFFF35}},
    {"__BITMAPS", {1, 1, 1}},
    {"__FTPOINTS", {2, 2, 2}},
    {"__LINES", {3, 3, 3}},
    {"__LINE_STRIP", {4, 4, 4}},
    {"__EDGE_STRIP_R", {5, 5, 5}},
    {"__EDGE_STRIP_L", {6, 6, 6}},
    {"__EDGE_STRIP_A", {7, 7, 7}},
    {"__EDGE_STRIP_B", {8, 8, 8}},
    {"__RECTS", {9, 9, 9}},
    {"__L4", {2, 2, 2}},
    {"__ARGB4", {6, 6, 6}},
    {"__BILINEAR", {1, 1, 1}},
    {"__BORDER", {0, 0, 0}},
    {"__PALETTED8", {absent, 0x10, 0x10}},
    {"__GLFORMAT", {absent, absent, 0x1F}},
    {"__DLSWAP_DONE", {0, 0, 0}},
    {"__DLSWAP_LINE", {1, 1, 1}},
    {"__DLSWAP_FRAME", {2, 2, 2}},
    {"__FLASH_STATUS_DETACHED", {absent, absent, 1}},
    {"__FLASH_STATUS_FULL", {absent, absent, 3}},
    {"__CMDBUF_SIZE", {4096, 4096, 4096}},
    {"__SS_Q0", {absent, absent, 0}},
    {"__SS_QF", {absent, absent, 15}},
    {"__SS_PAUSE", {absent, absent, 0x12}},
    {"__SS_A7", {absent, absent, 0x1A}},
    {"__SS_QI", {absent, absent, 0x1F}},
};

class DocumentedValue : public testing::TestWithParam<Documented> {};

TEST_P(DocumentedValue, IsInTheTable) {
    EXPECT_EQ(valuesOf(GetParam().name), GetParam().values);
}

INSTANTIATE_TEST_SUITE_P(GenerationTable, DocumentedValue, testing::ValuesIn(documentedValues),
                         [](const auto& instance) { return std::string(instance.param.name + 2); });

struct Equal {
    const char* name;
    const char* other;
};
void PrintTo(const Equal& equal, std::ostream* out) {
    *out << equal.name;
}

class EqualNames : public testing::TestWithParam<Equal> {};

TEST_P(EqualNames, HaveTheSameValuesInEveryGeneration) {
    EXPECT_EQ(valuesOf(GetParam().name), valuesOf(GetParam().other));
}

INSTANTIATE_TEST_SUITE_P(GenerationTable, EqualNames,
                         testing::Values(Equal{"__REG_CTOUCH_EXTENDED", "__REG_TOUCH_ADC_MODE"},
                                         Equal{"__REG_CTOUCH_TOUCH0_XY", "__REG_TOUCH_SCREEN_XY"},
                                         Equal{"__REG_CTOUCH_TOUCH1_XY", "__REG_TOUCH_RAW_XY"},
                                         Equal{"__REG_CTOUCH_TOUCH2_XY", "__REG_TOUCH_DIRECT_XY"},
                                         Equal{"__REG_CTOUCH_TOUCH3_XY", "__REG_TOUCH_DIRECT_Z1Z2"},
                                         Equal{"__REG_CTOUCH_TOUCH4_X", "__REG_ANALOG"},
                                         Equal{"__REG_CTOUCH_TOUCH4_Y", "__REG_TOUCH_RZ"},
                                         Equal{"__REG_ID", "__RAM_REG"},
                                         Equal{"__OPT_NOHM", "__OPT_NOPOINTER"},
                                         Equal{"__OPT_FLAT", "__OPT_SIGNED"}),
                         [](const auto& instance) { return std::string(instance.param.name + 2); });

TEST(GenerationTable, KeepsAddressesInTheWindowOfTheirGeneration) {
    for (const GenerationRow& row : generationTable()) {
        if (!startsWith(row, "__REG_")) {
            continue;
        }
        EXPECT_TRUE(row.values[0].value_or(0x102400) >= 0x102400 &&
                    row.values[0].value_or(0x102400) < 0x110000)
            << text(row.name);
        for (const std::size_t generation : {1U, 2U}) {
            EXPECT_TRUE(row.values[generation].value_or(0x302000) >= 0x302000 &&
                        row.values[generation].value_or(0x302000) < 0x310000)
                << text(row.name);
        }
    }
}

TEST(GenerationTable, GivesTheLaterGenerationsTheSameAddresses) {
    for (const GenerationRow& row : generationTable()) {
        if (row.values[1] && row.values[2]) {
            EXPECT_EQ(row.values[1], row.values[2]) << text(row.name);
        }
    }
}

TEST(GenerationTable, ChangesNothingButAddressesAndTheLowestClock) {
    for (const GenerationRow& row : generationTable()) {
        if (!isAddressOrClock(row) && row.values[0] && row.values[1]) {
            EXPECT_EQ(row.values[0], row.values[1]) << text(row.name);
        }
    }
}

TEST(GenerationTable, NumbersTheCommandsOfEachGenerationWithoutGaps) {
    constexpr std::array<uint32_t, 3> lastCommand = {0x35, 0x43, 0x5F};
    for (std::size_t generation = 0; generation < lastCommand.size(); ++generation) {
        std::set<uint32_t> numbers;
        for (const GenerationRow& row : generationTable()) {
            if (startsWith(row, "__CMD_") && row.values[generation]) {
                EXPECT_EQ(*row.values[generation] >> 8, 0xFFFFFFU) << text(row.name);
                EXPECT_TRUE(numbers.insert(*row.values[generation] & 0xFF).second)
                    << text(row.name);
            }
        }
        EXPECT_EQ(numbers.size(), lastCommand[generation] + 1);
        EXPECT_EQ(*numbers.rbegin(), lastCommand[generation]);
    }
}

TEST(GenerationTable, HasNamesThatOnlyTheFirstGenerationKnows) {
    EXPECT_THAT(namesOf(true, false, false, "__"),
                UnorderedElementsAre("__RAM_PAL", "__CMD_IDCT", "__INCR_WRAP", "__DECR_WRAP",
                                     "__REG_CTOUCH_GESTURE", "__REG_CTOUCH_IDS"));
}

TEST(GenerationTable, HasRegistersThatOnlySomeGenerationsKnow) {
    EXPECT_THAT(namesOf(true, false, true, "__"), UnorderedElementsAre("__REG_CYA0", "__REG_CYA1"));
    EXPECT_EQ(namesOf(true, true, false, "__"), std::set<std::string>{"__CMD_CSKETCH"});
    EXPECT_TRUE(namesOf(false, true, false, "__").empty());
    EXPECT_EQ(namesOf(false, true, true, "__REG_").size(), 26U);
    EXPECT_EQ(namesOf(false, false, true, "__REG_").size(), 48U);
}

TEST(GenerationTable, BuildsOptionsFromEachOther) {
    EXPECT_EQ(*valuesOf("__OPT_CENTER")[0],
              *valuesOf("__OPT_CENTERX")[0] | *valuesOf("__OPT_CENTERY")[0]);
    EXPECT_EQ(*valuesOf("__OPT_NOHANDS")[0],
              *valuesOf("__OPT_NOHM")[0] | *valuesOf("__OPT_NOSECS")[0]);
    EXPECT_EQ(valuesOf("__OPT_NOBACK")[2], valuesOf("__OPT_FORMAT")[2]);
    EXPECT_EQ(valuesOf("__OPT_NOTICKS")[2], valuesOf("__OPT_FILL")[2]);
}

TEST(GenerationTable, NumbersCompressedFormatsByBlockSize) {
    const std::vector<const char*> blockSizes = {"4x4",  "5x4",   "5x5",   "6x5",  "6x6",
                                                 "8x5",  "8x6",   "8x8",   "10x5", "10x6",
                                                 "10x8", "10x10", "12x10", "12x12"};
    uint32_t number = 0x93B0;
    for (const std::string blockSize : blockSizes) {
        const std::string name = "__COMPRESSED_RGBA_ASTC_" + blockSize + "_KHR";
        EXPECT_THAT(valuesOf(name.c_str()), ElementsAre(absent, absent, number)) << name;
        ++number;
    }
}

TEST(GenerationTable, GivesUnpublishedRegistersAnAddressOfTheirOwn) {
    std::map<uint32_t, int> uses;
    for (const GenerationRow& row : generationTable()) {
        if (startsWith(row, "__REG_") && row.values[2]) {
            ++uses[*row.values[2]];
        }
    }
    for (const char* name : {"__REG_CTOUCH_TOUCHA_XY", "__REG_EJPG_ACC", "__REG_ESPIM_WINDOW",
                             "__REG_J1_COLD", "__REG_RASTERY", "__REG_SPIM_DIR"}) {
        EXPECT_EQ(uses[*valuesOf(name)[2]], 1) << name;
    }
}

// Expects the names to have the numbers from `first` on, wherever they are defined.
void expectNumbered(uint32_t first, const std::vector<const char*>& names) {
    uint32_t number = first;
    for (const char* name : names) {
        for (const auto& value : valuesOf(name)) {
            EXPECT_EQ(value.value_or(number), number) << name;
        }
        ++number;
    }
}

TEST(GenerationTable, NumbersEveryBitmapFormat) {
    expectNumbered(0, {"__ARGB1555", "__L1", "__L4", "__L8", "__RGB332", "__ARGB2", "__ARGB4",
                       "__RGB565", "__PALETTED", "__TEXT8X8", "__TEXTVGA", "__BARGRAPH",
                       "__INT_L8C", "__INT_VGA", "__PALETTED565", "__PALETTED4444", "__PALETTED8",
                       "__L2", "__INT_G8"});
}

TEST(GenerationTable, NumbersTheValuesOfTheGraphicsState) {
    expectNumbered(0, {"__NEAREST", "__BILINEAR"});
    expectNumbered(0, {"__BORDER", "__REPEAT"});
    expectNumbered(0, {"__ZERO", "__ONE", "__SRC_ALPHA", "__DST_ALPHA", "__ONE_MINUS_SRC_ALPHA",
                       "__ONE_MINUS_DST_ALPHA"});
    expectNumbered(0, {"__NEVER", "__LESS", "__LEQUAL", "__GREATER", "__GEQUAL", "__EQUAL",
                       "__NOTEQUAL", "__ALWAYS"});
    expectNumbered(
        1, {"__KEEP", "__REPLACE", "__INCR", "__DECR", "__INVERT", "__INCR_WRAP", "__DECR_WRAP"});
    expectNumbered(2, {"__RED", "__GREEN", "__BLUE", "__ALPHA"});
}

TEST(GenerationTable, NumbersModesSamplesAndStates) {
    expectNumbered(0, {"__TOUCHMODE_OFF", "__TOUCHMODE_ONESHOT", "__TOUCHMODE_FRAME",
                       "__TOUCHMODE_CONTINUOUS"});
    expectNumbered(0, {"__CTOUCH_MODE_EXTENDED", "__CTOUCH_MODE_COMPATIBILITY"});
    expectNumbered(0, {"__ADC_SINGLE_ENDED", "__ADC_DIFFERENTIAL"});
    expectNumbered(0, {"__LINEAR_SAMPLES", "__ULAW_SAMPLES", "__ADPCM_SAMPLES"});
    expectNumbered(0, {"__ANIM_ONCE", "__ANIM_LOOP", "__ANIM_HOLD"});
    expectNumbered(0, {"__FLASH_STATUS_INIT", "__FLASH_STATUS_DETACHED", "__FLASH_STATUS_BASIC",
                       "__FLASH_STATUS_FULL"});
}

TEST(GenerationTable, GivesEachInterruptABit) {
    uint32_t bit = 1;
    for (const char* name :
         {"__INT_SWAP", "__INT_TOUCH", "__INT_TAG", "__INT_SOUND", "__INT_PLAYBACK",
          "__INT_CMDEMPTY", "__INT_CMDFLAG", "__INT_CONVCOMPLETE"}) {
        EXPECT_THAT(valuesOf(name), ElementsAre(bit, bit, bit)) << name;
        bit <<= 1;
    }
}

TEST(GenerationTable, PutsRegistersAtWholeWords) {
    for (const GenerationRow& row : generationTable()) {
        if (startsWith(row, "__REG_") && row.name != QLatin1String("__REG_PLAY_CONTROL")) {
            for (const auto& address : row.values) {
                EXPECT_EQ(address.value_or(0) % 4, 0U) << text(row.name);
            }
        }
    }
}

// Of a row that nothing above speaks of, too, no digit changes unnoticed: whoever changes the table
// reads what has changed once more and renews this number.
TEST(GenerationTable, IsAsItWasWhenAllOfItWasLastRead) {
    std::string table;
    for (const GenerationRow& row : generationTable()) {
        table += text(row.name);
        for (const std::optional<uint32_t>& value : row.values) {
            table += value ? ' ' + std::to_string(*value) : " -";
        }
        table += '\n';
    }
    EXPECT_EQ(fnv1a(table), 2067099666U);
}

} // namespace
