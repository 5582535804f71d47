// Display lists of any words, drawn on a small panel.
#include "scanner.h"
#include "smallpanel.h"

namespace {

constexpr int width = 48;
constexpr int height = 32;
constexpr std::size_t longestList = 300; // words

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    controller::Scanner scanner(fuzz::generation(input.byte()));
    // Something to be seen in bitmaps, and a small window, so that a list can't cost much.
    for (std::size_t i = 0; i < 4096; ++i) {
        scanner.store(i, {static_cast<int>(i * 37 % 256)});
    }
    scanner.macros() = {input.number(4), input.number(4)};
    std::vector<std::uint32_t> list;
    while (!input.atEnd() && list.size() < longestList) {
        list.push_back(input.number(4));
    }
    const controller::Frame& frame = scanner.scan(width, height, list);
    fuzz::require(frame.tags.size() == static_cast<std::size_t>(width) * height);
    return 0;
}
