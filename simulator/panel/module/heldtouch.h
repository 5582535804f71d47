#pragma once

#include "displaymodule.h"

#include <optional>

namespace panel {

// The finger on the panel, and whether the application knows of it.
class HeldTouch {
public:
    explicit HeldTouch(DisplayModule& module) : m_module(module) {}

    void touch(int x, int y); // down at, or moved to, this panel pixel
    void release();
    bool isDown() const { return m_down; }

    // Whether the application has read what the finger is on, since it is there. Where that is
    // nothing, there is nothing to know, and it has had its time.
    bool isTagRead();
    // Whether the application has read the tag, and drawn what that caused, since the finger was
    // last touched down, moved or lifted.
    bool isNoticed();

private:
    void startNotice();

    DisplayModule& m_module;
    bool m_down = false;
    std::uint32_t m_framesAtTouch = 0;
    std::optional<std::uint32_t> m_readsFrom;
};

} // namespace panel
