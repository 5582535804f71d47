#include "display.h"

#include <algorithm>
#include <utility>

namespace controller {

namespace {

// The largest picture the chip can scan.
int largestSide(Generation generation) {
    return generation == Generation::E1 ? 512 : 2048;
}

} // namespace

Display::Display(Generation generation, Vectors vectors, const MemoryMap& memory,
                 const Registers& registers, Complain complain)
    : m_generation(generation), m_memory(memory), m_registers(registers),
      m_complain(std::move(complain)), m_engine(generation, vectors) {
    reset();
}

void Display::reset() {
    m_engine.reset();
    m_list.fill(0);
    m_walked = false;
    m_reported.clear();
}

void Display::show(const DisplayList& list) {
    if (list == m_list) {
        return;
    }
    m_list = list;
    m_walked = false;
}

Scene Display::scene(int width, int height) const {
    return {m_list,
            m_memory.graphicsView(),
            {m_registers[Register::Macro0], m_registers[Register::Macro1]},
            width,
            height};
}

void Display::scanned() {
    if (!m_walked) {
        report(m_engine.walk(scene(0, 0)));
    }
}

// E1 knows one bit of it.
Turn Display::turn() const {
    const std::uint32_t rotate = m_registers[Register::Rotate];
    return Turn::of(m_generation == Generation::E1 ? rotate & 1U : rotate);
}

const Frame& Display::frame() {
    const Frame& drawn = picture();
    const Turn turning = turn();
    if (turning.isNone()) {
        return drawn;
    }
    m_turned = drawn;
    const int width = drawn.picture.width;
    const int height = drawn.picture.height;
    m_turned.picture.pixels = turning.turned(drawn.picture.pixels, width, height);
    m_turned.tags = turning.turned(drawn.tags, width, height);
    if (turning.portrait) {
        std::swap(m_turned.picture.width, m_turned.picture.height);
    }
    return m_turned;
}

const Frame& Display::picture() {
    const int side = largestSide(m_generation);
    int width = std::min(static_cast<int>(m_registers[Register::HSize]), side);
    int height = std::min(static_cast<int>(m_registers[Register::VSize]), side);
    if (turn().portrait) {
        std::swap(width, height);
    }
    const Frame& frame = m_engine.draw(scene(std::max(width, 0), std::max(height, 0)));
    if (!m_walked) {
        report(frame.complaints);
    }
    return frame;
}

std::uint8_t Display::tagAt(int x, int y) {
    const Frame& drawn = picture();
    if (x < 0 || y < 0 || x >= drawn.picture.width || y >= drawn.picture.height) {
        return 0;
    }
    return drawn.tags[static_cast<std::size_t>(y) * static_cast<std::size_t>(drawn.picture.width) +
                      static_cast<std::size_t>(x)];
}

// Says what is new since the list before.
void Display::report(const std::vector<std::string>& complaints) {
    m_walked = true;
    for (const std::string& complaint : complaints) {
        if (std::find(m_reported.begin(), m_reported.end(), complaint) == m_reported.end()) {
            m_complain(complaint);
        }
    }
    m_reported = complaints;
}

} // namespace controller
