#include "registers.h"

#include "memorylayout.h"

#include <algorithm>
#include <iterator>

namespace controller {

namespace {

constexpr std::uint32_t none = 0; // no register has address 0
constexpr Access readWrite = Access::ReadWrite;
constexpr Access readOnly = Access::ReadOnly;

// clang-format off
// What is left out: unpublished registers, second names of one address, and the registers in the
// coprocessor's own memory, which are plain memory there.
constexpr RegisterInfo table[] = {
    {"REG_ID", 0x102400, 0x302000, 0xFF, 0x7C, Register::Id, everyGeneration, readOnly},
    {"REG_FRAMES", 0x102404, 0x302004, 0xFFFFFFFF, 0, Register::Frames, everyGeneration, readOnly},
    {"REG_CLOCK", 0x102408, 0x302008, 0xFFFFFFFF, 0, Register::Clock, everyGeneration, readOnly},
    {"REG_FREQUENCY", 0x10240C, 0x30200C, 0xFFFFFFF, 60000000, Register::Frequency, everyGeneration, readWrite},
    {"REG_RENDERMODE", 0x102410, 0x302010, 0x1, 0, Register::RenderMode, everyGeneration, readWrite},
    {"REG_SNAPY", 0x102414, 0x302014, 0x7FF, 0, Register::SnapY, everyGeneration, readWrite},
    {"REG_SNAPSHOT", 0x102418, 0x302018, 0x1, 0, Register::Snapshot, everyGeneration, readWrite},
    {"REG_SNAPFORMAT", none, 0x30201C, 0x3F, 0x20, Register::SnapFormat, e2AndE3, readWrite},
    {"REG_CPURESET", 0x10241C, 0x302020, 0x7, 0, Register::CpuReset, everyGeneration, readWrite},
    {"REG_TAP_CRC", 0x102420, 0x302024, 0xFFFFFFFF, 0, Register::TapCrc, everyGeneration, readOnly},
    {"REG_TAP_MASK", 0x102424, 0x302028, 0xFFFFFFFF, 0xFFFFFFFF, Register::TapMask, everyGeneration, readWrite},
    {"REG_HCYCLE", 0x102428, 0x30202C, 0xFFF, 548, Register::HCycle, everyGeneration, readWrite},
    {"REG_HOFFSET", 0x10242C, 0x302030, 0xFFF, 43, Register::HOffset, everyGeneration, readWrite},
    {"REG_HSIZE", 0x102430, 0x302034, 0xFFF, 480, Register::HSize, everyGeneration, readWrite},
    {"REG_HSYNC0", 0x102434, 0x302038, 0xFFF, 0, Register::HSync0, everyGeneration, readWrite},
    {"REG_HSYNC1", 0x102438, 0x30203C, 0xFFF, 41, Register::HSync1, everyGeneration, readWrite},
    {"REG_VCYCLE", 0x10243C, 0x302040, 0xFFF, 292, Register::VCycle, everyGeneration, readWrite},
    {"REG_VOFFSET", 0x102440, 0x302044, 0xFFF, 12, Register::VOffset, everyGeneration, readWrite},
    {"REG_VSIZE", 0x102444, 0x302048, 0xFFF, 272, Register::VSize, everyGeneration, readWrite},
    {"REG_VSYNC0", 0x102448, 0x30204C, 0x3FF, 0, Register::VSync0, everyGeneration, readWrite},
    {"REG_VSYNC1", 0x10244C, 0x302050, 0x3FF, 10, Register::VSync1, everyGeneration, readWrite},
    {"REG_DLSWAP", 0x102450, 0x302054, 0x3, 0, Register::DlSwap, everyGeneration, readWrite},
    {"REG_ROTATE", 0x102454, 0x302058, 0x7, 0, Register::Rotate, everyGeneration, readWrite},
    {"REG_OUTBITS", 0x102458, 0x30205C, 0x1FF, 0, Register::OutBits, everyGeneration, readWrite},
    {"REG_DITHER", 0x10245C, 0x302060, 0x1, 1, Register::Dither, everyGeneration, readWrite},
    {"REG_SWIZZLE", 0x102460, 0x302064, 0xF, 0, Register::Swizzle, everyGeneration, readWrite},
    {"REG_CSPREAD", 0x102464, 0x302068, 0x1, 1, Register::CSpread, everyGeneration, readWrite},
    {"REG_PCLK_POL", 0x102468, 0x30206C, 0x1, 0, Register::PclkPol, everyGeneration, readWrite},
    {"REG_PCLK", 0x10246C, 0x302070, 0xFF, 0, Register::Pclk, everyGeneration, readWrite},
    {"REG_TAG_X", 0x102470, 0x302074, 0x7FF, 0, Register::TagX, everyGeneration, readWrite},
    {"REG_TAG_Y", 0x102474, 0x302078, 0x7FF, 0, Register::TagY, everyGeneration, readWrite},
    {"REG_TAG", 0x102478, 0x30207C, 0xFF, 0, Register::Tag, everyGeneration, readOnly},
    {"REG_VOL_PB", 0x10247C, 0x302080, 0xFF, 255, Register::VolPb, everyGeneration, readWrite},
    {"REG_VOL_SOUND", 0x102480, 0x302084, 0xFF, 255, Register::VolSound, everyGeneration, readWrite},
    {"REG_SOUND", 0x102484, 0x302088, 0xFFFF, 0, Register::Sound, everyGeneration, readWrite},
    {"REG_PLAY", 0x102488, 0x30208C, 0x1, 0, Register::Play, everyGeneration, readWrite},
    {"REG_GPIO_DIR", 0x10248C, 0x302090, 0xFF, 0x80, Register::GpioDir, everyGeneration, readWrite},
    {"REG_GPIO", 0x102490, 0x302094, 0xFF, 0, Register::Gpio, everyGeneration, readWrite},
    {"REG_GPIOX_DIR", none, 0x302098, 0xFFFF, 0x8000, Register::GpioxDir, e2AndE3, readWrite},
    {"REG_GPIOX", none, 0x30209C, 0xFFFF, 0x8000, Register::Gpiox, e2AndE3, readWrite},
    {"REG_INT_FLAGS", 0x102498, 0x3020A8, 0xFF, 0, Register::IntFlags, everyGeneration, readOnly},
    {"REG_INT_EN", 0x10249C, 0x3020AC, 0x1, 0, Register::IntEn, everyGeneration, readWrite},
    {"REG_INT_MASK", 0x1024A0, 0x3020B0, 0xFF, 0xFF, Register::IntMask, everyGeneration, readWrite},
    {"REG_PLAYBACK_START", 0x1024A4, 0x3020B4, 0xFFFFF, 0, Register::PlaybackStart, everyGeneration, readWrite},
    {"REG_PLAYBACK_LENGTH", 0x1024A8, 0x3020B8, 0xFFFFF, 0, Register::PlaybackLength, everyGeneration, readWrite},
    {"REG_PLAYBACK_READPTR", 0x1024AC, 0x3020BC, 0xFFFFF, 0, Register::PlaybackReadPtr, everyGeneration, readOnly},
    {"REG_PLAYBACK_FREQ", 0x1024B0, 0x3020C0, 0xFFFF, 8000, Register::PlaybackFreq, everyGeneration, readWrite},
    {"REG_PLAYBACK_FORMAT", 0x1024B4, 0x3020C4, 0x3, 0, Register::PlaybackFormat, everyGeneration, readWrite},
    {"REG_PLAYBACK_LOOP", 0x1024B8, 0x3020C8, 0x1, 0, Register::PlaybackLoop, everyGeneration, readWrite},
    {"REG_PLAYBACK_PLAY", 0x1024BC, 0x3020CC, 0x1, 0, Register::PlaybackPlay, everyGeneration, readWrite},
    {"REG_PWM_HZ", 0x1024C0, 0x3020D0, 0x3FFF, 250, Register::PwmHz, everyGeneration, readWrite},
    {"REG_PWM_DUTY", 0x1024C4, 0x3020D4, 0xFF, 128, Register::PwmDuty, everyGeneration, readWrite},
    {"REG_MACRO_0", 0x1024C8, 0x3020D8, 0xFFFFFFFF, 0, Register::Macro0, everyGeneration, readWrite},
    {"REG_MACRO_1", 0x1024CC, 0x3020DC, 0xFFFFFFFF, 0, Register::Macro1, everyGeneration, readWrite},
    {"REG_CYA0", 0x1024D0, 0x3020E0, 0xFFFFFFFF, 0, Register::Cya0, e1AndE3, readWrite},
    {"REG_CYA1", 0x1024D4, 0x3020E4, 0xFFFFFFFF, 0, Register::Cya1, e1AndE3, readWrite},
    {"REG_BUSYBITS", none, 0x3020E8, 0xFFFFFFFF, 0, Register::BusyBits, e2AndE3, readWrite},
    {"REG_ROMSUB_SEL", 0x1024E0, 0x3020F0, 0xFFFFFFFF, 0, Register::RomSubSel, everyGeneration, readWrite},
    {"REG_RAM_FOLD", none, 0x3020F4, 0xFFFFFFFF, 0, Register::RamFold, e3Only, readWrite},
    {"REG_CMD_READ", 0x1024E4, 0x3020F8, 0xFFF, 0, Register::CmdRead, everyGeneration, readWrite},
    {"REG_CMD_WRITE", 0x1024E8, 0x3020FC, 0xFFF, 0, Register::CmdWrite, everyGeneration, readWrite},
    {"REG_CMD_DL", 0x1024EC, 0x302100, 0x1FFF, 0, Register::CmdDl, everyGeneration, readWrite},
    {"REG_TOUCH_MODE", 0x1024F0, 0x302104, 0x3, 3, Register::TouchMode, everyGeneration, readWrite},
    {"REG_TOUCH_ADC_MODE", 0x1024F4, 0x302108, 0x1, 1, Register::TouchAdcMode, everyGeneration, readWrite},
    {"REG_TOUCH_CHARGE", 0x1024F8, 0x30210C, 0xFFFF, 0, Register::TouchCharge, everyGeneration, readWrite},
    {"REG_TOUCH_SETTLE", 0x1024FC, 0x302110, 0xFFFF, 0, Register::TouchSettle, everyGeneration, readWrite},
    {"REG_TOUCH_OVERSAMPLE", 0x102500, 0x302114, 0xFFFF, 0, Register::TouchOversample, everyGeneration, readWrite},
    {"REG_TOUCH_RZTHRESH", 0x102504, 0x302118, 0xFFFF, 0xFFFF, Register::TouchRzThresh, everyGeneration, readWrite},
    {"REG_TOUCH_RAW_XY", 0x102508, 0x30211C, 0xFFFFFFFF, 0xFFFFFFFF, Register::TouchRawXy, everyGeneration, readOnly},
    {"REG_TOUCH_RZ", 0x10250C, 0x302120, 0xFFFF, 0x7FFF, Register::TouchRz, everyGeneration, readOnly},
    {"REG_TOUCH_SCREEN_XY", 0x102510, 0x302124, 0xFFFFFFFF, 0x80008000, Register::TouchScreenXy, everyGeneration, readOnly},
    {"REG_TOUCH_TAG_XY", 0x102514, 0x302128, 0xFFFFFFFF, 0x80008000, Register::TouchTagXy, everyGeneration, readOnly},
    {"REG_TOUCH_TAG", 0x102518, 0x30212C, 0xFF, 0, Register::TouchTag, everyGeneration, readOnly},
    {"REG_TOUCH_TAG1_XY", none, 0x302130, 0xFFFFFFFF, 0x80008000, Register::TouchTag1Xy, e2AndE3, readOnly},
    {"REG_TOUCH_TAG1", none, 0x302134, 0xFF, 0, Register::TouchTag1, e2AndE3, readOnly},
    {"REG_TOUCH_TAG2_XY", none, 0x302138, 0xFFFFFFFF, 0x80008000, Register::TouchTag2Xy, e2AndE3, readOnly},
    {"REG_TOUCH_TAG2", none, 0x30213C, 0xFF, 0, Register::TouchTag2, e2AndE3, readOnly},
    {"REG_TOUCH_TAG3_XY", none, 0x302140, 0xFFFFFFFF, 0x80008000, Register::TouchTag3Xy, e2AndE3, readOnly},
    {"REG_TOUCH_TAG3", none, 0x302144, 0xFF, 0, Register::TouchTag3, e2AndE3, readOnly},
    {"REG_TOUCH_TAG4_XY", none, 0x302148, 0xFFFFFFFF, 0x80008000, Register::TouchTag4Xy, e2AndE3, readOnly},
    {"REG_TOUCH_TAG4", none, 0x30214C, 0xFF, 0, Register::TouchTag4, e2AndE3, readOnly},
    {"REG_TOUCH_TRANSFORM_A", 0x10251C, 0x302150, 0xFFFFFFFF, 0x10000, Register::TouchTransformA, everyGeneration, readWrite},
    {"REG_TOUCH_TRANSFORM_B", 0x102520, 0x302154, 0xFFFFFFFF, 0, Register::TouchTransformB, everyGeneration, readWrite},
    {"REG_TOUCH_TRANSFORM_C", 0x102524, 0x302158, 0xFFFFFFFF, 0, Register::TouchTransformC, everyGeneration, readWrite},
    {"REG_TOUCH_TRANSFORM_D", 0x102528, 0x30215C, 0xFFFFFFFF, 0, Register::TouchTransformD, everyGeneration, readWrite},
    {"REG_TOUCH_TRANSFORM_E", 0x10252C, 0x302160, 0xFFFFFFFF, 0x10000, Register::TouchTransformE, everyGeneration, readWrite},
    {"REG_TOUCH_TRANSFORM_F", 0x102530, 0x302164, 0xFFFFFFFF, 0, Register::TouchTransformF, everyGeneration, readWrite},
    {"REG_CYA_TOUCH", 0x102534, 0x302168, 0xFFFFFFFF, 0, Register::CyaTouch, everyGeneration, readWrite},
    {"REG_ANALOG", 0x102538, 0x30216C, 0xFFFFFFFF, 0, Register::Analog, everyGeneration, readWrite},
    {"REG_PATCHED_ANALOG", none, 0x302170, 0xFFFFFFFF, 0, Register::PatchedAnalog, e2AndE3, readWrite},
    {"REG_BIST_EN", none, 0x302174, 0x1, 0, Register::BistEn, e2AndE3, readWrite},
    {"REG_CRC", 0x102568, 0x302178, 0xFFFFFFFF, 0, Register::Crc, everyGeneration, readOnly},
    {"REG_SPI_EARLY_TX", none, 0x30217C, 0x1, 0, Register::SpiEarlyTx, e2AndE3, readWrite},
    {"REG_TRIM", 0x10256C, 0x302180, 0xFF, 0, Register::Trim, everyGeneration, readWrite},
    {"REG_ANA_COMP", 0x102570, 0x302184, 0xFF, 0, Register::AnaComp, everyGeneration, readWrite},
    {"REG_SPI_WIDTH", none, 0x302188, 0x7, 0, Register::SpiWidth, e2AndE3, readWrite},
    {"REG_TOUCH_DIRECT_XY", 0x102574, 0x30218C, 0xFFFFFFFF, 0x80000000, Register::TouchDirectXy, everyGeneration, readOnly},
    {"REG_TOUCH_DIRECT_Z1Z2", 0x102578, 0x302190, 0xFFFFFFFF, 0, Register::TouchDirectZ1Z2, everyGeneration, readOnly},
    {"REG_DATESTAMP", 0x10253C, 0x302564, 0xFFFFFFFF, 0, Register::DateStamp, everyGeneration, readOnly},
    {"REG_CMDB_SPACE", none, 0x302574, 0xFFF, 4092, Register::CmdbSpace, e2AndE3, readOnly},
    {"REG_CMDB_WRITE", none, 0x302578, 0xFFFFFFFF, 0, Register::CmdbWrite, e2AndE3, readWrite},
    {"REG_ADAPTIVE_FRAMERATE", none, 0x30257C, 0x1, 1, Register::AdaptiveFramerate, e3Only, readWrite},
    {"REG_PLAYBACK_PAUSE", none, 0x3025EC, 0x1, 0, Register::PlaybackPause, e3Only, readWrite},
    {"REG_FLASH_STATUS", none, 0x3025F0, 0x3, 0, Register::FlashStatus, e3Only, readOnly},
};
// clang-format on

static_assert(sizeof(table) / sizeof(table[0]) == registerCount, "one row for each register");

constexpr std::size_t blockWords = registerBlockSize / 4;
using Index = std::array<const RegisterInfo*, blockWords>;

Index makeIndex(Generation generation) {
    Index index{};
    const std::uint32_t base = memoryLayout(generation).registers.base;
    for (const RegisterInfo& info : table) {
        if (contains(info.generations, generation)) {
            index[(info.address(generation) - base) / 4] = &info;
        }
    }
    return index;
}

const Index& indexFor(Generation generation) {
    static const std::array<Index, 3> indexes = {
        makeIndex(Generation::E1), makeIndex(Generation::E2), makeIndex(Generation::E3)};
    return indexes[static_cast<std::size_t>(generation)];
}

} // namespace

const RegisterInfo* registerAt(Generation generation, std::uint32_t address) {
    const Span block = memoryLayout(generation).registers;
    return block.contains(address) ? indexFor(generation)[(address - block.base) / 4] : nullptr;
}

const RegisterInfo& registerInfo(Register id) {
    return table[static_cast<std::size_t>(id)];
}

std::optional<Register> registerNamed(std::string_view name) {
    const auto found = std::find_if(std::begin(table), std::end(table),
                                    [name](const RegisterInfo& info) { return info.name == name; });
    return found == std::end(table) ? std::nullopt : std::optional(found->id);
}

Registers::Registers(Generation generation) : m_generation(generation) {
    reset();
}

void Registers::reset() {
    for (const RegisterInfo& info : table) {
        m_values[index(info.id)] = info.reset;
    }
    if (m_generation == Generation::E1) {
        m_values[index(Register::Frequency)] = 48'000'000;
    }
}

void Registers::set(Register id, std::uint32_t value) {
    m_values[index(id)] = value & registerInfo(id).mask;
}

} // namespace controller
