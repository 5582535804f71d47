#include "imageend.h"

namespace controller {

namespace {

constexpr std::uint32_t jpegStart = 0xFFD8; // its first two bytes
constexpr std::uint32_t jpegEnd = 0xFFD9;
constexpr std::uint32_t pngStart = 0x89504E47;
constexpr std::uint32_t pngEnd = 0x49454E44;   // "IEND", and four bytes of checksum behind it
constexpr std::uint32_t aviStart = 0x52494646; // "RIFF", and a length, the low byte first

std::uint32_t byteSwapped(std::uint32_t word) {
    return word >> 24U | (word >> 8U & 0xFF00U) | (word << 8U & 0xFF0000U) | word << 24U;
}

} // namespace

bool ImageEnd::take(std::uint8_t byte) {
    m_last = m_last << 8U | byte;
    ++m_count;
    if (m_count == 4) {
        m_kind = static_cast<std::uint32_t>(m_last);
    }
    if (m_count >= 4 && (m_kind >> 16U) == jpegStart) {
        return (m_last & 0xFFFFU) == jpegEnd;
    }
    if (m_kind == pngStart) {
        return m_last >> 32U == pngEnd;
    }
    if (m_kind == aviStart && m_count >= 8) {
        if (m_count == 8) {
            m_length = byteSwapped(static_cast<std::uint32_t>(m_last));
        }
        return m_count - 8 >= (std::uint64_t{m_length} + 1) / 2 * 2;
    }
    return false;
}

bool ImageEnd::isKnown() const {
    return m_count < 4 || (m_kind >> 16U) == jpegStart || m_kind == pngStart || m_kind == aviStart;
}

} // namespace controller
