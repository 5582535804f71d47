#include "sketch.h"

#include "fixedmath.h"
#include "touchengine.h"

namespace controller {

void Sketch::frameEnded() {
    const std::uint32_t screen = m_machine.registers[Register::TouchScreenXy];
    if (screen == untouchedScreenXy) {
        return;
    }
    const int x = highHalf(screen) - m_pad.x;
    const int y = lowHalf(screen) - m_pad.y;
    if (x < 0 || y < 0 || x >= m_pad.width || y >= m_pad.height) {
        return;
    }
    const int stride = m_pad.oneBit ? (m_pad.width + 7) / 8 : m_pad.width;
    const int offset = y * stride + (m_pad.oneBit ? x / 8 : x);
    const std::uint32_t address =
        (m_pad.address + static_cast<std::uint32_t>(offset)) & addressMask;
    const std::uint32_t mark =
        m_pad.oneBit ? m_machine.memory.read8(address) | 0x80U >> static_cast<unsigned>(x % 8)
                     : 0xFFU;
    const auto byte = static_cast<std::uint8_t>(mark);
    m_machine.bus.writeBytes(address, &byte, 1);
}

} // namespace controller
