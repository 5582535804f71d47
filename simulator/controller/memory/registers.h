#pragma once

#include "generationset.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace controller {

// The registers in the register block, in the order of their table in registers.cpp.
enum class Register : std::uint8_t {
    Id,
    Frames,
    Clock,
    Frequency,
    RenderMode,
    SnapY,
    Snapshot,
    SnapFormat,
    CpuReset,
    TapCrc,
    TapMask,
    HCycle,
    HOffset,
    HSize,
    HSync0,
    HSync1,
    VCycle,
    VOffset,
    VSize,
    VSync0,
    VSync1,
    DlSwap,
    Rotate,
    OutBits,
    Dither,
    Swizzle,
    CSpread,
    PclkPol,
    Pclk,
    TagX,
    TagY,
    Tag,
    VolPb,
    VolSound,
    Sound,
    Play,
    GpioDir,
    Gpio,
    GpioxDir,
    Gpiox,
    IntFlags,
    IntEn,
    IntMask,
    PlaybackStart,
    PlaybackLength,
    PlaybackReadPtr,
    PlaybackFreq,
    PlaybackFormat,
    PlaybackLoop,
    PlaybackPlay,
    PwmHz,
    PwmDuty,
    Macro0,
    Macro1,
    Cya0,
    Cya1,
    BusyBits,
    RomSubSel,
    RamFold,
    CmdRead,
    CmdWrite,
    CmdDl,
    TouchMode,
    TouchAdcMode,
    TouchCharge,
    TouchSettle,
    TouchOversample,
    TouchRzThresh,
    TouchRawXy,
    TouchRz,
    TouchScreenXy,
    TouchTagXy,
    TouchTag,
    TouchTag1Xy,
    TouchTag1,
    TouchTag2Xy,
    TouchTag2,
    TouchTag3Xy,
    TouchTag3,
    TouchTag4Xy,
    TouchTag4,
    TouchTransformA,
    TouchTransformB,
    TouchTransformC,
    TouchTransformD,
    TouchTransformE,
    TouchTransformF,
    CyaTouch,
    Analog,
    PatchedAnalog,
    BistEn,
    Crc,
    SpiEarlyTx,
    Trim,
    AnaComp,
    SpiWidth,
    TouchDirectXy,
    TouchDirectZ1Z2,
    DateStamp,
    CmdbSpace,
    CmdbWrite,
    AdaptiveFramerate,
    PlaybackPause,
    FlashStatus,
};

constexpr std::size_t registerCount = static_cast<std::size_t>(Register::FlashStatus) + 1;

// Who may change a register: the host, or the chip alone.
enum class Access : std::uint8_t { ReadWrite, ReadOnly };

struct RegisterInfo {
    const char* name;        // "REG_ID"
    std::uint32_t addressE1; // on E1
    std::uint32_t addressE2; // on E2 and E3
    std::uint32_t mask;      // the bits that exist
    std::uint32_t reset;     // value after reset
    Register id;
    GenerationSet generations; // where it exists
    Access access;

    std::uint32_t address(Generation generation) const {
        return generation == Generation::E1 ? addressE1 : addressE2;
    }
};

// The register whose word holds `address`, null when there is none. Registers that only rename
// another one's address (the capacitive-touch names) are known by the first name.
const RegisterInfo* registerAt(Generation generation, std::uint32_t address);
const RegisterInfo& registerInfo(Register id);
std::optional<Register> registerNamed(std::string_view name);

// The values of all registers. What reading or writing one causes is the business of others.
class Registers {
public:
    explicit Registers(Generation generation);

    void reset();
    std::uint32_t operator[](Register id) const { return m_values[index(id)]; }
    // Bits beyond the register's width are dropped.
    void set(Register id, std::uint32_t value);

private:
    static std::size_t index(Register id) { return static_cast<std::size_t>(id); }

    Generation m_generation;
    std::array<std::uint32_t, registerCount> m_values{};
};

} // namespace controller
