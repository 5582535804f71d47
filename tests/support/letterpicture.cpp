#include "letterpicture.h"

#include <algorithm>
#include <cstddef>

namespace letterpicture {

namespace {

constexpr std::uint32_t colorBits = 0x00FFFFFF;

char letterFor(std::uint32_t value, const Legend& legend) {
    const auto found = legend.find(value);
    return found == legend.end() ? '?' : found->second;
}

char letterForBrightness(std::uint32_t pixel) {
    const std::uint32_t green = pixel >> 8 & 0xFF;
    if (green == 0) {
        return '.';
    }
    if (green == 255) {
        return '#';
    }
    return static_cast<char>('0' + std::clamp<std::uint32_t>((green * 10 + 127) / 255, 1, 9));
}

// One letter for each of the picture's pixels, by `letterAt` (index).
template<typename LetterAt>
std::string draw(const controller::Picture& picture, LetterAt letterAt) {
    std::string text;
    std::size_t index = 0;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            text += letterAt(index++);
        }
        text += '\n';
    }
    return text;
}

} // namespace

std::string colors(const controller::Picture& picture, const Legend& legend) {
    return draw(picture,
                [&](std::size_t i) { return letterFor(picture.pixels[i] & colorBits, legend); });
}

std::string tags(const controller::Frame& frame, const Legend& legend) {
    return draw(frame.picture, [&](std::size_t i) { return letterFor(frame.tags[i], legend); });
}

std::string brightness(const controller::Picture& picture) {
    return draw(picture, [&](std::size_t i) { return letterForBrightness(picture.pixels[i]); });
}

std::string rows(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + '\n';
    }
    return text;
}

} // namespace letterpicture
