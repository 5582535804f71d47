#pragma once

#include <cstdint>

namespace controller {

// Finds the end of an image or a video in a stream of bytes without unpacking it: the last chunk of
// a PNG, the end mark of a JPEG outside of its segments, the length at the head of an AVI.
class ImageEnd {
public:
    enum class Kind : std::uint8_t { Unsettled, Png, Jpeg, Avi, None };

    // True when `byte` is the last one.
    bool take(std::uint8_t byte);
    // Settled after four bytes.
    Kind kind() const { return m_kind; }

private:
    bool takePng(std::uint8_t byte);
    bool takeJpeg(std::uint8_t byte);
    bool takeAvi(std::uint8_t byte);

    Kind m_kind = Kind::Unsettled;
    std::uint64_t m_count = 0; // bytes so far
    std::uint32_t m_last = 0;  // the last four
    std::uint64_t m_skip = 0;  // bytes that belong to a chunk or a segment
    std::uint64_t m_head = 0;  // bytes of the head that is being read
    std::uint32_t m_length = 0;
    bool m_lastChunk = false;
    bool m_inMarker = false;
};

} // namespace controller
