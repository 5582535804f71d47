#include "heldtouch.h"

namespace panel {

namespace {

// The chip notices a finger at the start of a frame and knows the tag under it at its end.
constexpr std::uint32_t framesUntilTag = 2;
// One read to notice, one when what that caused has been drawn, and one more because the keypad
// draws its keys only after its own first read.
constexpr std::uint32_t readsUntilDrawn = 3;

} // namespace

void HeldTouch::touch(int x, int y) {
    m_down = true;
    m_module.touch(x, y);
    startNotice();
}

void HeldTouch::release() {
    m_down = false;
    m_module.release();
    startNotice();
}

void HeldTouch::startNotice() {
    m_framesAtTouch = m_module.counts().frames;
    m_readsFrom.reset();
}

bool HeldTouch::isNoticed() {
    const DisplayModule::Counts counts = m_module.counts();
    if (counts.frames - m_framesAtTouch < framesUntilTag) {
        return false;
    }
    if (!m_readsFrom) {
        m_readsFrom = counts.touchTagReads;
    }
    return counts.touchTagReads - *m_readsFrom >= readsUntilDrawn;
}

bool HeldTouch::isTagRead() {
    if (isNoticed()) {
        return true;
    }
    const DisplayModule::Counts counts = m_module.counts();
    return m_readsFrom && counts.touchTagReads > *m_readsFrom && counts.lastTagRead != 0;
}

} // namespace panel
