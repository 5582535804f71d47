#include "tracker.h"

#include "fixedmath.h"

#include <algorithm>

namespace controller {

std::uint32_t Tracker::Track::valueAt(int atX, int atY) const {
    if (width == 1 && height == 1) {
        return (angleOf(atX - x, atY - y) + 0x8000U) & 0xFFFFU; // as DIAL: 0 straight down
    }
    const bool upright = height > width;
    const std::int64_t position = upright ? atY - y : atX - x;
    const std::int64_t length = upright ? height : width;
    return static_cast<std::uint32_t>(clampTo<std::int64_t>(position * 65536 / length, 0, 0xFFFF));
}

void Tracker::set(const Track& track) {
    m_tracks.erase(std::remove_if(m_tracks.begin(), m_tracks.end(),
                                  [&track](const Track& known) { return known.tag == track.tag; }),
                   m_tracks.end());
    if (track.width > 0 && track.height > 0) {
        m_tracks.push_back(track);
    }
}

void Tracker::reset() {
    m_tracks.clear();
    m_tags.fill(0);
}

void Tracker::frameEnded() {
    const std::size_t fingers = m_machine.generation == Generation::E1 ? 1 : mostFingers;
    for (std::size_t i = 0; i < fingers; ++i) {
        follow(i);
    }
}

void Tracker::follow(std::size_t finger) {
    const std::uint32_t word =
        m_machine.memory.layout().tracker + 4 * static_cast<std::uint32_t>(finger);
    const std::uint32_t place = m_machine.registers[tagPlaceRegisters[finger]];
    std::uint32_t& tag = m_tags[finger];
    if (place == untouchedScreenXy) {
        tag = 0;
        if (!m_tracks.empty()) {
            m_machine.memory.write32(word, 0);
        }
        return;
    }
    if (tag == 0) {
        tag = m_machine.registers[tagRegisters[finger]];
    }
    const auto track = std::find_if(m_tracks.begin(), m_tracks.end(),
                                    [tag](const Track& known) { return known.tag == tag; });
    if (track != m_tracks.end()) {
        m_machine.memory.write32(word, track->valueAt(highHalf(place), lowHalf(place)) << 16U |
                                           track->tag);
    }
}

} // namespace controller
