#pragma once

#include "animation.h"
#include "machine.h"

#include <cstdint>
#include <vector>

namespace controller {

// Follows touches along tracks, each of which belongs to a tag, and says in the tracker word where
// on its track the touch is: the value in the high half, 65536 for the whole of the track, the tag
// in the low half.
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
    Machine& m_machine;
    std::vector<Track> m_tracks;
    std::uint32_t m_tag = 0; // that the touch began on
};

} // namespace controller
