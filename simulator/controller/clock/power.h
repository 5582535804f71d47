#pragma once

#include "generation.h"

#include <cstdint>

namespace controller {

constexpr Nanoseconds millisecond = 1'000'000;
constexpr Nanoseconds never = ~Nanoseconds{0};

// Clock and power: which parts of the chip run, and since when.
//
//   Off (pin low) -> Waiting -> [ACTIVE] -> Starting -> Running <-> Asleep (STANDBY, SLEEP)
//
// The host can read the chip only while it is Running. Its engines start a little later than its
// memory; until then REG_CPURESET shows them in reset.
class Power {
public:
    explicit Power(Generation generation) : m_generation(generation) {}

    // Time from ACTIVE to readable memory, and from there to running engines.
    static constexpr Nanoseconds startTime = 20 * millisecond; // unless told otherwise
    static constexpr Nanoseconds engineTime = 5 * millisecond;

    bool isOff() const { return m_state == State::Off; }
    bool isRunning() const { return m_state == State::Running; }
    bool enginesRun() const { return isRunning() && m_enginesAt == never; }

    void pinLow() { m_state = State::Off; }
    void pinHigh();
    // Of the next start.
    void setStartTime(Nanoseconds time) { m_startTime = time; }
    // Host commands.
    void active(Nanoseconds now);
    void sleep();     // STANDBY and SLEEP: memory keeps its content
    void powerDown(); // PWRDOWN: it does not
    void reset(Nanoseconds now);
    void holdReset();
    void releaseReset(Nanoseconds now);
    void selectClock(std::uint8_t command, std::uint8_t parameter);

    std::uint32_t clockFrequency() const { return m_frequency; } // of the core, Hz
    std::uint64_t clocksSinceStart(Nanoseconds now) const;

    // When something happens next (`never` if nothing does), and to make it happen.
    enum class Event : std::uint8_t { Started, Woken, EnginesRun };
    Nanoseconds nextEvent() const;
    Event takeEvent();

private:
    enum class State : std::uint8_t { Off, Waiting, Held, Starting, Waking, Running, Asleep };
    void start(Nanoseconds now);

    Generation m_generation;
    State m_state = State::Off;
    std::uint32_t m_frequency = 0;
    std::uint32_t m_selectedFrequency = 0; // of the next start; 0: the default
    Nanoseconds m_startTime = startTime;
    Nanoseconds m_readyAt = never;
    Nanoseconds m_enginesAt = never;
    Nanoseconds m_startedAt = 0;
};

} // namespace controller
