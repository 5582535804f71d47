#pragma once

#include "power.h"
#include "registers.h"

namespace controller {

// The scan-out's clockwork: when frames begin and end.
//
// A frame takes PCLK x HCYCLE x VCYCLE core clocks. A changed timing counts from the next frame
// on; while PCLK is 0 nothing is scanned.
class FrameTiming {
public:
    // No panel follows faster than this; it also bounds the work that a host with senseless
    // timings can cause.
    static constexpr Nanoseconds shortestFrame = millisecond;

    // Of one frame with these registers; 0 when they make no scan.
    static Nanoseconds duration(const Registers& registers, std::uint32_t clockFrequency);
    static Nanoseconds lineDuration(const Registers& registers, std::uint32_t clockFrequency);

    bool isScanning() const { return m_frameEnd != never; }
    Nanoseconds frameEnd() const { return m_frameEnd; }

    // Starts or stops the scan, as the registers say.
    void follow(Nanoseconds now, Nanoseconds frameDuration);
    // A frame has ended; the next one takes `frameDuration`.
    void nextFrame(Nanoseconds frameDuration);

private:
    Nanoseconds m_frameEnd = never;
};

} // namespace controller
