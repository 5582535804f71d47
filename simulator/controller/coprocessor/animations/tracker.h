#pragma once

#include "animation.h"
#include "machine.h"
#include "touchengine.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace controller {

// Follows fingers along tracks, each of which belongs to a tag, and says in the finger's tracker
// word where on its track it is: the value in the high half, 65536 for the whole of the track, the
// tag in the low half.
class Tracker : public Animation {
public:
    // A track of 1 x 1 follows turns around its point, any other one moves along its longer side.
    struct Track {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        std::uint32_t tag = 0;

        std::uint32_t valueAt(int x, int y) const;
    };

    explicit Tracker(Machine& machine) : m_machine(machine) {}

    // Replaces the track of its tag; one without extent only ends that.
    void set(const Track& track);
    void reset();
    void frameEnded() override;

private:
    void follow(std::size_t finger);

    Machine& m_machine;
    std::vector<Track> m_tracks;
    std::array<std::uint32_t, mostFingers> m_tags{}; // that each finger's touch began on
};

} // namespace controller
