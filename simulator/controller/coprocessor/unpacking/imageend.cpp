#include "imageend.h"

namespace controller {

namespace {

constexpr std::uint32_t jpegStart = 0xFFD8; // its first two bytes
constexpr std::uint32_t pngStart = 0x89504E47;
constexpr std::uint32_t aviStart = 0x52494646; // "RIFF"
constexpr std::uint64_t signatureBytes = 8;    // of a PNG, and of an AVI with its length
constexpr std::uint64_t chunkHeadBytes = 8;    // length and name
constexpr std::uint64_t checksumBytes = 4;
constexpr std::uint32_t lastChunkName = 0x49454E44; // "IEND"

std::uint32_t byteSwapped(std::uint32_t word) {
    return word >> 24U | (word >> 8U & 0xFF00U) | (word << 8U & 0xFF0000U) | word << 24U;
}

// Markers of a JPEG that no length follows.
bool standsAlone(std::uint8_t marker) {
    return marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
}

} // namespace

bool ImageEnd::take(std::uint8_t byte) {
    m_last = m_last << 8U | byte;
    ++m_count;
    if (m_count == 4) {
        m_kind = m_last >> 16U == jpegStart ? Kind::Jpeg
                 : m_last == pngStart       ? Kind::Png
                 : m_last == aviStart       ? Kind::Avi
                                            : Kind::None;
        // The fourth byte of a JPEG is its first marker's.
        m_inMarker = (m_last >> 8U & 0xFFU) == 0xFF;
        return m_kind == Kind::Jpeg && takeJpeg(byte);
    }
    switch (m_kind) {
    case Kind::Png:
        return takePng(byte);
    case Kind::Jpeg:
        return takeJpeg(byte);
    case Kind::Avi:
        return takeAvi(byte);
    default:
        return false;
    }
}

bool ImageEnd::takePng(std::uint8_t) {
    if (m_count <= signatureBytes) {
        return false;
    }
    if (m_skip > 0) {
        return --m_skip == 0 && m_lastChunk;
    }
    ++m_head;
    if (m_head == chunkHeadBytes / 2) {
        m_length = m_last;
    } else if (m_head == chunkHeadBytes) {
        m_lastChunk = m_last == lastChunkName;
        m_skip = m_length + checksumBytes;
        m_head = 0;
    }
    return false;
}

// Outside of segments a byte of 255 begins a marker; in the data of a scan 0 takes that back.
bool ImageEnd::takeJpeg(std::uint8_t byte) {
    constexpr std::uint8_t endOfImage = 0xD9;
    if (m_skip > 0) {
        --m_skip;
        return false;
    }
    if (m_head > 0) { // the two bytes of a length, which counts them too
        if (++m_head == 3) {
            const std::uint32_t length = m_last & 0xFFFFU;
            m_skip = length > 2 ? length - 2 : 0;
            m_head = 0;
        }
        return false;
    }
    if (!m_inMarker) {
        m_inMarker = byte == 0xFF;
        return false;
    }
    if (byte == 0xFF) {
        return false; // padding
    }
    m_inMarker = false;
    if (byte == endOfImage) {
        return true;
    }
    m_head = byte == 0 || standsAlone(byte) ? 0 : 1;
    return false;
}

bool ImageEnd::takeAvi(std::uint8_t) {
    if (m_count < signatureBytes) {
        return false;
    }
    if (m_count == signatureBytes) {
        m_length = byteSwapped(m_last);
    }
    return m_count - signatureBytes >= (std::uint64_t{m_length} + 1) / 2 * 2;
}

} // namespace controller
