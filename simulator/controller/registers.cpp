#include "registers.h"

#include "memorylayout.h"

namespace controller {

namespace {

constexpr std::uint32_t none = 0; // no register has address 0
constexpr Access readWrite = Access::ReadWrite;
constexpr Access readOnly = Access::ReadOnly;

// clang-format off
// What is left out: unpublished registers, second names of one address, and the registers in the
// coprocessor's own memory, which are plain memory there.
constexpr RegisterInfo table[] = {
    {Register::Id, "REG_ID", 0x102400, 0x302000, everyGeneration, 0xFF, 0x7C, readOnly},
    {Register::Frames, "REG_FRAMES", 0x102404, 0x302004, everyGeneration, 0xFFFFFFFF, 0, readOnly},
    {Register::Clock, "REG_CLOCK", 0x102408, 0x302008, everyGeneration, 0xFFFFFFFF, 0, readOnly},
    {Register::Frequency, "REG_FREQUENCY", 0x10240C, 0x30200C, everyGeneration, 0xFFFFFFF, 60000000, readWrite},
    {Register::RenderMode, "REG_RENDERMODE", 0x102410, 0x302010, everyGeneration, 0x1, 0, readWrite},
    {Register::SnapY, "REG_SNAPY", 0x102414, 0x302014, everyGeneration, 0x7FF, 0, readWrite},
    {Register::Snapshot, "REG_SNAPSHOT", 0x102418, 0x302018, everyGeneration, 0x1, 0, readWrite},
    {Register::SnapFormat, "REG_SNAPFORMAT", none, 0x30201C, e2AndE3, 0x3F, 0x20, readWrite},
    {Register::CpuReset, "REG_CPURESET", 0x10241C, 0x302020, everyGeneration, 0x7, 0, readWrite},
    {Register::TapCrc, "REG_TAP_CRC", 0x102420, 0x302024, everyGeneration, 0xFFFFFFFF, 0, readOnly},
    {Register::TapMask, "REG_TAP_MASK", 0x102424, 0x302028, everyGeneration, 0xFFFFFFFF, 0xFFFFFFFF, readWrite},
    {Register::HCycle, "REG_HCYCLE", 0x102428, 0x30202C, everyGeneration, 0xFFF, 548, readWrite},
    {Register::HOffset, "REG_HOFFSET", 0x10242C, 0x302030, everyGeneration, 0xFFF, 43, readWrite},
    {Register::HSize, "REG_HSIZE", 0x102430, 0x302034, everyGeneration, 0xFFF, 480, readWrite},
    {Register::HSync0, "REG_HSYNC0", 0x102434, 0x302038, everyGeneration, 0xFFF, 0, readWrite},
    {Register::HSync1, "REG_HSYNC1", 0x102438, 0x30203C, everyGeneration, 0xFFF, 41, readWrite},
    {Register::VCycle, "REG_VCYCLE", 0x10243C, 0x302040, everyGeneration, 0xFFF, 292, readWrite},
    {Register::VOffset, "REG_VOFFSET", 0x102440, 0x302044, everyGeneration, 0xFFF, 12, readWrite},
    {Register::VSize, "REG_VSIZE", 0x102444, 0x302048, everyGeneration, 0xFFF, 272, readWrite},
    {Register::VSync0, "REG_VSYNC0", 0x102448, 0x30204C, everyGeneration, 0x3FF, 0, readWrite},
    {Register::VSync1, "REG_VSYNC1", 0x10244C, 0x302050, everyGeneration, 0x3FF, 10, readWrite},
    {Register::DlSwap, "REG_DLSWAP", 0x102450, 0x302054, everyGeneration, 0x3, 0, readWrite},
    {Register::Rotate, "REG_ROTATE", 0x102454, 0x302058, everyGeneration, 0x7, 0, readWrite},
    {Register::OutBits, "REG_OUTBITS", 0x102458, 0x30205C, everyGeneration, 0x1FF, 0, readWrite},
    {Register::Dither, "REG_DITHER", 0x10245C, 0x302060, everyGeneration, 0x1, 1, readWrite},
    {Register::Swizzle, "REG_SWIZZLE", 0x102460, 0x302064, everyGeneration, 0xF, 0, readWrite},
    {Register::CSpread, "REG_CSPREAD", 0x102464, 0x302068, everyGeneration, 0x1, 1, readWrite},
    {Register::PclkPol, "REG_PCLK_POL", 0x102468, 0x30206C, everyGeneration, 0x1, 0, readWrite},
    {Register::Pclk, "REG_PCLK", 0x10246C, 0x302070, everyGeneration, 0xFF, 0, readWrite},
    {Register::TagX, "REG_TAG_X", 0x102470, 0x302074, everyGeneration, 0x7FF, 0, readWrite},
    {Register::TagY, "REG_TAG_Y", 0x102474, 0x302078, everyGeneration, 0x7FF, 0, readWrite},
    {Register::Tag, "REG_TAG", 0x102478, 0x30207C, everyGeneration, 0xFF, 0, readOnly},
    {Register::VolPb, "REG_VOL_PB", 0x10247C, 0x302080, everyGeneration, 0xFF, 255, readWrite},
    {Register::VolSound, "REG_VOL_SOUND", 0x102480, 0x302084, everyGeneration, 0xFF, 255, readWrite},
    {Register::Sound, "REG_SOUND", 0x102484, 0x302088, everyGeneration, 0xFFFF, 0, readWrite},
    {Register::Play, "REG_PLAY", 0x102488, 0x30208C, everyGeneration, 0x1, 0, readWrite},
    {Register::GpioDir, "REG_GPIO_DIR", 0x10248C, 0x302090, everyGeneration, 0xFF, 0x80, readWrite},
    {Register::Gpio, "REG_GPIO", 0x102490, 0x302094, everyGeneration, 0xFF, 0, readWrite},
    {Register::GpioxDir, "REG_GPIOX_DIR", none, 0x302098, e2AndE3, 0xFFFF, 0x8000, readWrite},
    {Register::Gpiox, "REG_GPIOX", none, 0x30209C, e2AndE3, 0xFFFF, 0x8000, readWrite},
    {Register::IntFlags, "REG_INT_FLAGS", 0x102498, 0x3020A8, everyGeneration, 0xFF, 0, readOnly},
    {Register::IntEn, "REG_INT_EN", 0x10249C, 0x3020AC, everyGeneration, 0x1, 0, readWrite},
    {Register::IntMask, "REG_INT_MASK", 0x1024A0, 0x3020B0, everyGeneration, 0xFF, 0xFF, readWrite},
    {Register::PlaybackStart, "REG_PLAYBACK_START", 0x1024A4, 0x3020B4, everyGeneration, 0xFFFFF, 0, readWrite},
    {Register::PlaybackLength, "REG_PLAYBACK_LENGTH", 0x1024A8, 0x3020B8, everyGeneration, 0xFFFFF, 0, readWrite},
    {Register::PlaybackReadPtr, "REG_PLAYBACK_READPTR", 0x1024AC, 0x3020BC, everyGeneration, 0xFFFFF, 0, readOnly},
    {Register::PlaybackFreq, "REG_PLAYBACK_FREQ", 0x1024B0, 0x3020C0, everyGeneration, 0xFFFF, 8000, readWrite},
    {Register::PlaybackFormat, "REG_PLAYBACK_FORMAT", 0x1024B4, 0x3020C4, everyGeneration, 0x3, 0, readWrite},
    {Register::PlaybackLoop, "REG_PLAYBACK_LOOP", 0x1024B8, 0x3020C8, everyGeneration, 0x1, 0, readWrite},
    {Register::PlaybackPlay, "REG_PLAYBACK_PLAY", 0x1024BC, 0x3020CC, everyGeneration, 0x1, 0, readWrite},
    {Register::PwmHz, "REG_PWM_HZ", 0x1024C0, 0x3020D0, everyGeneration, 0x3FFF, 250, readWrite},
    {Register::PwmDuty, "REG_PWM_DUTY", 0x1024C4, 0x3020D4, everyGeneration, 0xFF, 128, readWrite},
    {Register::Macro0, "REG_MACRO_0", 0x1024C8, 0x3020D8, everyGeneration, 0xFFFFFFFF, 0, readWrite},
    {Register::Macro1, "REG_MACRO_1", 0x1024CC, 0x3020DC, everyGeneration, 0xFFFFFFFF, 0, readWrite},
    {Register::Cya0, "REG_CYA0", 0x1024D0, 0x3020E0, e1AndE3, 0xFFFFFFFF, 0, readWrite},
    {Register::Cya1, "REG_CYA1", 0x1024D4, 0x3020E4, e1AndE3, 0xFFFFFFFF, 0, readWrite},
    {Register::BusyBits, "REG_BUSYBITS", none, 0x3020E8, e2AndE3, 0xFFFFFFFF, 0, readWrite},
    {Register::RomSubSel, "REG_ROMSUB_SEL", 0x1024E0, 0x3020F0, everyGeneration, 0xFFFFFFFF, 0, readWrite},
    {Register::RamFold, "REG_RAM_FOLD", none, 0x3020F4, e3Only, 0xFFFFFFFF, 0, readWrite},
    {Register::CmdRead, "REG_CMD_READ", 0x1024E4, 0x3020F8, everyGeneration, 0xFFF, 0, readWrite},
    {Register::CmdWrite, "REG_CMD_WRITE", 0x1024E8, 0x3020FC, everyGeneration, 0xFFF, 0, readWrite},
    {Register::CmdDl, "REG_CMD_DL", 0x1024EC, 0x302100, everyGeneration, 0x1FFF, 0, readWrite},
    {Register::TouchMode, "REG_TOUCH_MODE", 0x1024F0, 0x302104, everyGeneration, 0x3, 3, readWrite},
    {Register::TouchAdcMode, "REG_TOUCH_ADC_MODE", 0x1024F4, 0x302108, everyGeneration, 0x1, 1, readWrite},
    {Register::TouchCharge, "REG_TOUCH_CHARGE", 0x1024F8, 0x30210C, everyGeneration, 0xFFFF, 0, readWrite},
    {Register::TouchSettle, "REG_TOUCH_SETTLE", 0x1024FC, 0x302110, everyGeneration, 0xFFFF, 0, readWrite},
    {Register::TouchOversample, "REG_TOUCH_OVERSAMPLE", 0x102500, 0x302114, everyGeneration, 0xFFFF, 0, readWrite},
    {Register::TouchRzThresh, "REG_TOUCH_RZTHRESH", 0x102504, 0x302118, everyGeneration, 0xFFFF, 0xFFFF, readWrite},
    {Register::TouchRawXy, "REG_TOUCH_RAW_XY", 0x102508, 0x30211C, everyGeneration, 0xFFFFFFFF, 0xFFFFFFFF, readOnly},
    {Register::TouchRz, "REG_TOUCH_RZ", 0x10250C, 0x302120, everyGeneration, 0xFFFF, 0x7FFF, readOnly},
    {Register::TouchScreenXy, "REG_TOUCH_SCREEN_XY", 0x102510, 0x302124, everyGeneration, 0xFFFFFFFF, 0x80008000, readOnly},
    {Register::TouchTagXy, "REG_TOUCH_TAG_XY", 0x102514, 0x302128, everyGeneration, 0xFFFFFFFF, 0x80008000, readOnly},
    {Register::TouchTag, "REG_TOUCH_TAG", 0x102518, 0x30212C, everyGeneration, 0xFF, 0, readOnly},
    {Register::TouchTag1Xy, "REG_TOUCH_TAG1_XY", none, 0x302130, e2AndE3, 0xFFFFFFFF, 0x80008000, readOnly},
    {Register::TouchTag1, "REG_TOUCH_TAG1", none, 0x302134, e2AndE3, 0xFF, 0, readOnly},
    {Register::TouchTag2Xy, "REG_TOUCH_TAG2_XY", none, 0x302138, e2AndE3, 0xFFFFFFFF, 0x80008000, readOnly},
    {Register::TouchTag2, "REG_TOUCH_TAG2", none, 0x30213C, e2AndE3, 0xFF, 0, readOnly},
    {Register::TouchTag3Xy, "REG_TOUCH_TAG3_XY", none, 0x302140, e2AndE3, 0xFFFFFFFF, 0x80008000, readOnly},
    {Register::TouchTag3, "REG_TOUCH_TAG3", none, 0x302144, e2AndE3, 0xFF, 0, readOnly},
    {Register::TouchTag4Xy, "REG_TOUCH_TAG4_XY", none, 0x302148, e2AndE3, 0xFFFFFFFF, 0x80008000, readOnly},
    {Register::TouchTag4, "REG_TOUCH_TAG4", none, 0x30214C, e2AndE3, 0xFF, 0, readOnly},
    {Register::TouchTransformA, "REG_TOUCH_TRANSFORM_A", 0x10251C, 0x302150, everyGeneration, 0xFFFFFFFF, 0x10000, readWrite},
    {Register::TouchTransformB, "REG_TOUCH_TRANSFORM_B", 0x102520, 0x302154, everyGeneration, 0xFFFFFFFF, 0, readWrite},
    {Register::TouchTransformC, "REG_TOUCH_TRANSFORM_C", 0x102524, 0x302158, everyGeneration, 0xFFFFFFFF, 0, readWrite},
    {Register::TouchTransformD, "REG_TOUCH_TRANSFORM_D", 0x102528, 0x30215C, everyGeneration, 0xFFFFFFFF, 0, readWrite},
    {Register::TouchTransformE, "REG_TOUCH_TRANSFORM_E", 0x10252C, 0x302160, everyGeneration, 0xFFFFFFFF, 0x10000, readWrite},
    {Register::TouchTransformF, "REG_TOUCH_TRANSFORM_F", 0x102530, 0x302164, everyGeneration, 0xFFFFFFFF, 0, readWrite},
    {Register::CyaTouch, "REG_CYA_TOUCH", 0x102534, 0x302168, everyGeneration, 0xFFFFFFFF, 0, readWrite},
    {Register::Analog, "REG_ANALOG", 0x102538, 0x30216C, everyGeneration, 0xFFFFFFFF, 0, readWrite},
    {Register::PatchedAnalog, "REG_PATCHED_ANALOG", none, 0x302170, e2AndE3, 0xFFFFFFFF, 0, readWrite},
    {Register::BistEn, "REG_BIST_EN", none, 0x302174, e2AndE3, 0x1, 0, readWrite},
    {Register::Crc, "REG_CRC", 0x102568, 0x302178, everyGeneration, 0xFFFFFFFF, 0, readOnly},
    {Register::SpiEarlyTx, "REG_SPI_EARLY_TX", none, 0x30217C, e2AndE3, 0x1, 0, readWrite},
    {Register::Trim, "REG_TRIM", 0x10256C, 0x302180, everyGeneration, 0xFF, 0, readWrite},
    {Register::AnaComp, "REG_ANA_COMP", 0x102570, 0x302184, everyGeneration, 0xFF, 0, readWrite},
    {Register::SpiWidth, "REG_SPI_WIDTH", none, 0x302188, e2AndE3, 0x7, 0, readWrite},
    {Register::TouchDirectXy, "REG_TOUCH_DIRECT_XY", 0x102574, 0x30218C, everyGeneration, 0xFFFFFFFF, 0x80000000, readOnly},
    {Register::TouchDirectZ1Z2, "REG_TOUCH_DIRECT_Z1Z2", 0x102578, 0x302190, everyGeneration, 0xFFFFFFFF, 0, readOnly},
    {Register::DateStamp, "REG_DATESTAMP", 0x10253C, 0x302564, everyGeneration, 0xFFFFFFFF, 0, readOnly},
    {Register::CmdbSpace, "REG_CMDB_SPACE", none, 0x302574, e2AndE3, 0xFFF, 4092, readOnly},
    {Register::CmdbWrite, "REG_CMDB_WRITE", none, 0x302578, e2AndE3, 0xFFFFFFFF, 0, readWrite},
    {Register::AdaptiveFramerate, "REG_ADAPTIVE_FRAMERATE", none, 0x30257C, e3Only, 0x1, 1, readWrite},
    {Register::PlaybackPause, "REG_PLAYBACK_PAUSE", none, 0x3025EC, e3Only, 0x1, 0, readWrite},
    {Register::FlashStatus, "REG_FLASH_STATUS", none, 0x3025F0, e3Only, 0x3, 0, readOnly},
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
