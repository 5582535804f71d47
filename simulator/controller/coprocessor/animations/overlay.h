#pragma once

#include "animation.h"
#include "machine.h"
#include "painter.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace controller {

// What an overlay adds to the list.
class Drawing {
public:
    virtual ~Drawing() = default;
    // A frame has been scanned, and the next one is about to be drawn.
    virtual void frameEnded() {}
    // Words for the frame that is the `frame`th since the drawing began.
    virtual void draw(Words& words, std::uint32_t frame) const = 0;
};

// A drawing behind the list as it stood when it began. It decides what the panel shows.
class Overlay : public Animation {
public:
    // A fault when the drawing does not fit behind the list.
    Overlay(Machine& machine, std::shared_ptr<Drawing> drawing);

    void frameEnded() override;

private:
    Machine& m_machine;
    std::shared_ptr<Drawing> m_drawing;
    DisplayList m_list{};
    std::size_t m_length = 0; // of what stood there
    std::uint32_t m_frame = 0;
};

} // namespace controller
