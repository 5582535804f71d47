#include "layout.h"

#include <algorithm>
#include <stdexcept>

namespace soak {

namespace {

constexpr std::uint32_t face = 0x00A1DD;
constexpr std::uint32_t heldFace = 0x007C9E;
constexpr std::uint32_t okFace = 0x1DCC37;
constexpr std::uint32_t heldOkFace = 0x17A72A;
constexpr std::uint32_t heldKeyFace = 0x0087B8;

// Corners are round, and the touch transform is exact to a pixel or two.
constexpr int edge = 5;

Item iconButton(int tag, Pixel topLeft, Pixel facePixel) {
    return {tag, topLeft, 40, 40, facePixel, face, heldFace};
}

std::vector<Item> buttonRow() {
    return {iconButton(tag::run, {319, 8}, {323, 28}),
            iconButton(tag::otherScreen, {374, 8}, {382, 11}),
            iconButton(tag::options, {429, 8}, {449, 12})};
}

std::vector<Item> histogramItems() {
    std::vector<Item> items = buttonRow();
    items.push_back(iconButton(tag::mode, {10, 8}, {14, 28}));
    return items;
}

Item backButton() {
    return iconButton(tag::back, {9, 8}, {44, 40});
}

std::vector<Item> optionsItems() {
    std::vector<Item> items{backButton()};
    for (int row = 0; row < 5; ++row) {
        const int top = 65 + 40 * row;
        items.push_back(
            {tag::timeConst + row, {400, top}, 60, 30, {406, top + 15}, face, heldFace});
    }
    return items;
}

void addKeys(std::vector<Item>& items, int top, int width, const char* labels, int count) {
    constexpr int gap = 3;
    for (int i = 0; i < count; ++i) {
        const int left = 10 + (width + gap) * i / count;
        const int right = 10 + (width + gap) * (i + 1) / count - gap;
        items.push_back(
            {labels[i], {left, top}, right - left, 40, {left + 12, top + 20}, face, heldKeyFace});
    }
}

std::vector<Item> keypadItems() {
    std::vector<Item> items{backButton(),
                            {tag::ok, {288, 217}, 182, 40, {296, 237}, okFace, heldOkFace}};
    addKeys(items, 122, 460, "12345", 5);
    addKeys(items, 170, 460, "67890", 5);
    addKeys(items, 217, 274, "<.-", 3);
    return items;
}

// How far inside (positive) the item the pixel is.
int depth(const Item& item, Pixel pixel) {
    return std::min({pixel.x - item.topLeft.x, item.topLeft.x + item.width - pixel.x,
                     pixel.y - item.topLeft.y, item.topLeft.y + item.height - pixel.y});
}

} // namespace

const char* nameOf(Screen screen) {
    static const char* const names[] = {"counter", "histogram", "options", "keypad"};
    return names[static_cast<int>(screen)];
}

const std::vector<Item>& itemsOf(Screen screen) {
    static const std::vector<Item> items[] = {buttonRow(), histogramItems(), optionsItems(),
                                              keypadItems()};
    return items[static_cast<int>(screen)];
}

const Item& itemOf(Screen screen, int tag) {
    for (const Item& item : itemsOf(screen)) {
        if (item.tag == tag) {
            return item;
        }
    }
    throw std::out_of_range("no such item");
}

std::optional<int> tagAt(Screen screen, Pixel pixel) {
    for (const Item& item : itemsOf(screen)) {
        const int inside = depth(item, pixel);
        if (inside >= edge) {
            return item.tag;
        }
        if (inside > -edge) {
            return std::nullopt;
        }
    }
    return tag::none;
}

} // namespace soak
