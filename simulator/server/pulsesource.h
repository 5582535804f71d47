#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <random>

namespace server {

// The detector in front of the counters: light pulses that arrive at random, each of one or more
// photons.
//
// Modelled: arrivals as a Poisson process of constant mean rate; a pulse height that grows by one
// step per photon, blurred by amplifier noise, so that the heights have a peak for one photon, a
// lower one for two, and so on. Not modelled: dead time, pile-up and drift; the panel shows counts
// only and could not tell.
//
// Time is an argument, in seconds from an origin of the caller's choice, and never goes back. The
// same seed and the same times give the same pulses on every machine's standard library.
class PulseSource {
public:
    static constexpr double meanRate = 10000.0;  // pulses per second
    static constexpr double photonHeight = 0.1;  // volts per photon
    static constexpr double heightNoise = 0.012; // volts, standard deviation
    static constexpr double memory = 10.0;       // seconds for which pulses are remembered

    explicit PulseSource(std::uint32_t seed);

    // Lets the pulses up to `now` happen, and forgets those that are older than `memory`. How
    // often it is called makes no difference unless a gap is longer than `memory`.
    void runTo(double now);

    // How many of the remembered pulses came after `from` and are higher than `level` volts.
    std::size_t countAbove(double level, double from) const;

private:
    struct Pulse {
        double time;   // seconds
        double height; // volts
    };

    double uniform();
    double pauseBetweenPulses();
    int photons();
    double gaussian();

    std::mt19937 m_random;
    double m_nextTime; // when the next pulse will come, seconds
    std::deque<Pulse> m_pulses;
};

} // namespace server
