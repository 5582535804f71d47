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
    m_walkComplaints.clear();
    m_drawComplaints.clear();
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
        report(m_engine.walk(scene(0, 0)), m_walkComplaints);
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

Display::Size Display::pictureSize() const {
    const int side = largestSide(m_generation);
    int width = std::min(static_cast<int>(m_registers[Register::HSize]), side);
    int height = std::min(static_cast<int>(m_registers[Register::VSize]), side);
    if (turn().portrait) {
        std::swap(width, height);
    }
    return {std::max(width, 0), std::max(height, 0)};
}

PixelHistory Display::historyOf(int x, int y) const {
    const Size size = pictureSize();
    const Pixel at = turn().toPicture({x, y}, size.width, size.height);
    if (at.x < 0 || at.y < 0 || at.x >= size.width || at.y >= size.height) {
        return {};
    }
    return controller::historyOf(m_generation, scene(size.width, size.height), m_engine.handles(),
                                 at.x, at.y);
}

PixelRect Display::areaOf(const std::vector<std::size_t>& words) const {
    const Size size = pictureSize();
    const PixelRect area =
        controller::areaOf(m_generation, scene(size.width, size.height), m_engine.handles(), words);
    if (area.empty()) {
        return area;
    }
    const Pixel a = turn().toPanel({area.left, area.top}, size.width, size.height);
    const Pixel b = turn().toPanel({area.right - 1, area.bottom - 1}, size.width, size.height);
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x) + 1, std::max(a.y, b.y) + 1};
}

const Frame& Display::picture() {
    const Size size = pictureSize();
    const Frame& frame = m_engine.draw(scene(size.width, size.height));
    report(frame.complaints, m_drawComplaints);
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

// Says what is new since the walk and the drawing before, one of which `before` is: drawing finds
// more than a walk, because it may be too much.
void Display::report(const std::vector<std::string>& complaints, std::vector<std::string>& before) {
    m_walked = true;
    const auto has = [](const std::vector<std::string>& texts, const std::string& text) {
        return std::find(texts.begin(), texts.end(), text) != texts.end();
    };
    for (const std::string& complaint : complaints) {
        if (!has(m_walkComplaints, complaint) && !has(m_drawComplaints, complaint)) {
            m_complain(complaint);
        }
    }
    before = complaints;
}

} // namespace controller
