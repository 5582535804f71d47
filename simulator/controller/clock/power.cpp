#include "power.h"

namespace controller {

namespace {

constexpr std::uint32_t megahertz = 1'000'000;
constexpr std::uint32_t multipliedCrystal = 12 * megahertz;
constexpr Nanoseconds second = 1000 * millisecond;

} // namespace

void Power::pinHigh() {
    if (m_state == State::Off) {
        powerDown();
    }
}

void Power::powerDown() {
    m_state = State::Waiting;
    m_selectedFrequency = 0;
    m_readyAt = never;
    m_enginesAt = never;
}

void Power::start(Nanoseconds now) {
    const std::uint32_t byDefault = (m_generation == Generation::E1 ? 48 : 60) * megahertz;
    m_frequency = m_selectedFrequency ? m_selectedFrequency : byDefault;
    m_state = State::Starting;
    m_readyAt = now + m_startTime;
    m_enginesAt = never;
}

void Power::active(Nanoseconds now) {
    if (m_state == State::Waiting) {
        start(now);
    } else if (m_state == State::Asleep) {
        m_state = State::Waking;
        m_readyAt = now;
    }
}

void Power::sleep() {
    if (m_state == State::Running) {
        m_state = State::Asleep;
    }
}

void Power::reset(Nanoseconds now) {
    if (m_state != State::Off && m_state != State::Waiting) {
        start(now);
    }
}

void Power::holdReset() {
    if (m_state != State::Off && m_state != State::Waiting) {
        m_state = State::Held;
    }
}

void Power::releaseReset(Nanoseconds now) {
    if (m_state == State::Held) {
        start(now);
    }
}

void Power::selectClock(std::uint8_t command, std::uint8_t parameter) {
    if (m_generation == Generation::E1) {
        m_selectedFrequency = (command == 0x61 ? 36 : 48) * megahertz;
        return;
    }
    const std::uint32_t multiplier = parameter & 0x3FU;
    m_selectedFrequency = multiplier >= 2 && multiplier <= 6 ? multiplier * multipliedCrystal : 0;
}

std::uint64_t Power::clocksSinceStart(Nanoseconds now) const {
    const Nanoseconds elapsed = now > m_startedAt ? now - m_startedAt : 0;
    return elapsed / second * m_frequency + elapsed % second * m_frequency / second;
}

Nanoseconds Power::nextEvent() const {
    switch (m_state) {
    case State::Starting:
    case State::Waking:
        return m_readyAt;
    case State::Running:
        return m_enginesAt;
    default:
        return never;
    }
}

Power::Event Power::takeEvent() {
    if (m_state == State::Running) {
        m_enginesAt = never;
        return Event::EnginesRun;
    }
    const bool woken = m_state == State::Waking;
    m_state = State::Running;
    if (woken) {
        return Event::Woken;
    }
    m_startedAt = m_readyAt;
    m_enginesAt = m_readyAt + engineTime;
    return Event::Started;
}

} // namespace controller
