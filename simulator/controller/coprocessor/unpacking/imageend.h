#pragma once

#include <cstdint>

namespace controller {

// Finds the end of image or video data, which is not unpacked: JPEG and PNG by their end marks,
// AVI by the length at its head.
class ImageEnd {
public:
    // True when `byte` is the last one.
    bool take(std::uint8_t byte);
    // Whether it may still be one of the three.
    bool isKnown() const;

private:
    std::uint64_t m_last = 0; // the last eight bytes
    std::uint64_t m_count = 0;
    std::uint32_t m_kind = 0; // the first four
    std::uint32_t m_length = 0;
};

} // namespace controller
