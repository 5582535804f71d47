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

Display::Display(Generation generation, const MemoryMap& memory, const Registers& registers,
                 Complain complain)
    : m_generation(generation), m_memory(memory), m_registers(registers),
      m_complain(std::move(complain)), m_engine(generation) {
    reset();
}

void Display::reset() {
    m_engine.reset();
    m_list.fill(0);
    m_walked = false;
    m_drawn = false;
    m_reported.clear();
}

void Display::show(const DisplayList& list) {
    if (list == m_list) {
        return;
    }
    m_list = list;
    m_walked = false;
    m_drawn = false;
}

std::array<std::uint32_t, 2> Display::macros() const {
    return {m_registers[Register::Macro0], m_registers[Register::Macro1]};
}

void Display::scan(int width, int height, Frame& frame) {
    m_engine.scan(m_list.data(), m_memory.graphicsView(), macros(), width, height, frame);
    if (!m_walked) {
        m_walked = true;
        report(frame);
    }
}

void Display::scanned() {
    if (!m_walked) {
        scan(0, 0, m_unseen);
    }
}

const Frame& Display::frame() {
    const int side = largestSide(m_generation);
    const int width = std::min(static_cast<int>(m_registers[Register::HSize]), side);
    const int height = std::min(static_cast<int>(m_registers[Register::VSize]), side);
    const bool current = m_drawn && m_drawnMemory == m_memory.pictureChanges() &&
                         m_drawnMacros == macros() && m_frame.picture.width == width &&
                         m_frame.picture.height == height;
    if (!current) {
        scan(width, height, m_frame);
        m_drawn = true;
        m_drawnMemory = m_memory.pictureChanges();
        m_drawnMacros = macros();
    }
    return m_frame;
}

std::uint8_t Display::tagAt(int x, int y) {
    const Frame& drawn = frame();
    if (x < 0 || y < 0 || x >= drawn.picture.width || y >= drawn.picture.height) {
        return 0;
    }
    return drawn.tags[static_cast<std::size_t>(y) * static_cast<std::size_t>(drawn.picture.width) +
                      static_cast<std::size_t>(x)];
}

void Display::report(const Frame& frame) {
    for (const std::string& complaint : frame.complaints) {
        if (std::find(m_reported.begin(), m_reported.end(), complaint) == m_reported.end()) {
            m_complain(complaint);
        }
    }
    m_reported = frame.complaints;
}

} // namespace controller
