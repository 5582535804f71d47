#pragma once

#include "frame.h"
#include "generation.h"
#include "graphicsengine.h"
#include "memorymap.h"
#include "pixelhistory.h"
#include "registers.h"
#include "turn.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace controller {

// What the panel shows: the list in force and the picture it draws.
//
// The picture is drawn only when somebody looks, and then only what the engine has not drawn
// before. A list that is scanned without anybody looking is only walked, for what it
// leaves behind: bitmap handles outlive the list that set them.
class Display {
public:
    using Complain = std::function<void(const std::string&)>;

    Display(Generation generation, Vectors vectors, const MemoryMap& memory,
            const Registers& registers, Complain complain);

    void reset(); // an empty list, handles as after power-on
    void show(const DisplayList& list);
    const DisplayList& list() const { return m_list; }

    // A frame of the list has been scanned.
    void scanned();
    // The picture as the list draws it.
    const Frame& picture();
    // The same as it stands on the panel, which may be turned (REG_ROTATE). Characters keep their
    // places in the picture.
    const Frame& frame();
    // Which words of the list a pixel of the panel comes from; nothing outside of the panel.
    PixelHistory historyOf(int x, int y) const;
    // The pixels of the panel that these words reach, in one rectangle.
    PixelRect areaOf(const std::vector<std::size_t>& words) const;
    // The tag at a pixel of the picture; 0 outside of it.
    std::uint8_t tagAt(int x, int y);

private:
    Turn turn() const;
    struct Size {
        int width;
        int height;
    };
    Size pictureSize() const;
    Scene scene(int width, int height) const;
    void report(const std::vector<std::string>& complaints, std::vector<std::string>& before);

    Generation m_generation;
    const MemoryMap& m_memory;
    const Registers& m_registers;
    Complain m_complain;
    GraphicsEngine m_engine;

    DisplayList m_list{};
    bool m_walked = false; // by the engine, whether it drew or not
    Frame m_turned;
    // Of the last list that was walked, and of the last that was drawn
    std::vector<std::string> m_walkComplaints;
    std::vector<std::string> m_drawComplaints;
};

} // namespace controller
