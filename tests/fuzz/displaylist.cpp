// Display lists of any words, drawn on a small panel.
#include "scanner.h"
#include "smallpanel.h"

#include <map>
#include <memory>

namespace {

constexpr int width = 48;
constexpr int height = 32;
constexpr std::size_t longestList = 300; // words
// Loops would take most of the time, and show nothing new.
constexpr std::int64_t mostWork = 200'000;

// Something to be seen in bitmaps.
std::unique_ptr<controller::Scanner> filledScanner(controller::Generation generation) {
    auto scanner = std::make_unique<controller::Scanner>(generation);
    for (std::size_t i = 0; i < 4096; ++i) {
        scanner->store(i, {static_cast<int>(i * 37 % 256)});
    }
    scanner->engine().limitWork(mostWork);
    return scanner;
}

// One of each generation does for all inputs: its memory stays as it is, and nothing else outlives
// reset().
controller::Scanner& scannerOf(controller::Generation generation) {
    static std::map<controller::Generation, std::unique_ptr<controller::Scanner>> all;
    std::unique_ptr<controller::Scanner>& scanner = all[generation];
    if (scanner == nullptr) {
        scanner = filledScanner(generation);
    }
    scanner->engine().reset();
    return *scanner;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    controller::Scanner& scanner = scannerOf(fuzz::generation(input.byte()));
    scanner.macros() = {input.number(4), input.number(4)};
    std::vector<std::uint32_t> list;
    while (!input.atEnd() && list.size() < longestList) {
        list.push_back(input.number(4));
    }
    const controller::Frame& frame = scanner.scan(width, height, list);
    fuzz::require(frame.tags.size() == static_cast<std::size_t>(width) * height);
    return 0;
}
