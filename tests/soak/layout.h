#pragma once

#include <cstdint>
#include <optional>
#include <vector>

// Where what can be touched is, on each screen of the panel, in panel pixels.
namespace soak {

enum class Screen : std::uint8_t { Counter, Histogram, Options, Keypad };
constexpr int screenCount = 4;
const char* nameOf(Screen screen);

struct Pixel {
    int x = 0;
    int y = 0;
};

struct Item {
    int tag = 0;
    Pixel topLeft;
    int width = 0;
    int height = 0;
    Pixel face;                  // a pixel that no icon or text covers
    std::uint32_t color = 0;     // of that pixel, 0xRRGGBB
    std::uint32_t heldColor = 0; // while the item is held
    Pixel centre() const { return {topLeft.x + width / 2, topLeft.y + height / 2}; }
};

namespace tag {
constexpr int none = 0;
// Counter and histogram
constexpr int run = 2;
constexpr int otherScreen = 3;
constexpr int options = 4;
constexpr int mode = 5; // histogram only
// Options and keypad
constexpr int back = 1;
constexpr int timeConst = 2;    // options only
constexpr int firstTrigger = 3; // options only; one for each channel
constexpr int ok = 2;           // keypad only; its other keys have their characters' codes
} // namespace tag

const std::vector<Item>& itemsOf(Screen screen);
const Item& itemOf(Screen screen, int tag); // one that the screen has

// The tag that a touch there gives; nothing so close to an edge of an item that it is open.
std::optional<int> tagAt(Screen screen, Pixel pixel);

} // namespace soak
