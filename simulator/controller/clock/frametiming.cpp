#include "frametiming.h"

#include <algorithm>

namespace controller {

namespace {

Nanoseconds clocksToTime(std::uint64_t clocks, std::uint32_t frequency) {
    constexpr std::uint64_t second = 1000 * millisecond;
    return frequency == 0 ? 0 : clocks * second / frequency; // below 2^32 clocks: no overflow
}

std::uint64_t clocksPerLine(const Registers& registers) {
    return std::uint64_t{registers[Register::Pclk]} * registers[Register::HCycle];
}

} // namespace

Nanoseconds FrameTiming::duration(const Registers& registers, std::uint32_t clockFrequency) {
    const std::uint64_t clocks = clocksPerLine(registers) * registers[Register::VCycle];
    return clocks == 0 ? 0 : std::max(clocksToTime(clocks, clockFrequency), shortestFrame);
}

Nanoseconds FrameTiming::lineDuration(const Registers& registers, std::uint32_t clockFrequency) {
    return clocksToTime(clocksPerLine(registers), clockFrequency);
}

void FrameTiming::follow(Nanoseconds now, Nanoseconds frameDuration) {
    if (frameDuration == 0) {
        m_frameEnd = never;
    } else if (!isScanning()) {
        m_frameEnd = now + frameDuration;
    }
}

void FrameTiming::nextFrame(Nanoseconds frameDuration) {
    m_frameEnd = frameDuration == 0 ? never : m_frameEnd + frameDuration;
}

} // namespace controller
