#include "pulsesource.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace server {

namespace {

// How likely a pulse is of at most 1, 2, 3... photons: a Poisson distribution of mean 1.5 without
// the pulses of no photon at all, which nobody would see.
constexpr std::array atMostPhotons{0.431, 0.754, 0.916, 0.976, 0.994, 1.0};

} // namespace

PulseSource::PulseSource(std::uint32_t seed) : m_random(seed), m_nextTime(pauseBetweenPulses()) {}

void PulseSource::runTo(double now) {
    const double oldest = now - memory;
    // Pulses have no memory of each other, so nothing is lost by skipping those that would be
    // forgotten at once.
    if (m_nextTime < oldest)
        m_nextTime = oldest + pauseBetweenPulses();
    for (; m_nextTime <= now; m_nextTime += pauseBetweenPulses())
        m_pulses.push_back({m_nextTime, photons() * photonHeight + gaussian() * heightNoise});
    while (!m_pulses.empty() && m_pulses.front().time < oldest)
        m_pulses.pop_front();
}

std::size_t PulseSource::countAbove(double level, double from) const {
    const auto first =
        std::upper_bound(m_pulses.begin(), m_pulses.end(), from,
                         [](double time, const Pulse& pulse) { return time < pulse.time; });
    return static_cast<std::size_t>(std::count_if(
        first, m_pulses.end(), [level](const Pulse& pulse) { return pulse.height > level; }));
}

// Above 0 and below 1. The standard distributions are not used here and below because each
// library computes them in its own way.
double PulseSource::uniform() {
    return (static_cast<double>(m_random()) + 0.5) / 4294967296.0;
}

double PulseSource::pauseBetweenPulses() {
    return -std::log(uniform()) / meanRate;
}

int PulseSource::photons() {
    const auto* const it =
        std::upper_bound(atMostPhotons.begin(), atMostPhotons.end() - 1, uniform());
    return 1 + static_cast<int>(it - atMostPhotons.begin());
}

// Standard normal, by the method of Box and Muller.
double PulseSource::gaussian() {
    constexpr double twoPi = 6.283185307179586;
    const double radius = std::sqrt(-2.0 * std::log(uniform()));
    return radius * std::cos(twoPi * uniform());
}

} // namespace server
