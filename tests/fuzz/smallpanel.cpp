#include "smallpanel.h"

#include <algorithm>
#include <iterator>

namespace fuzz {

using namespace controllertest;

namespace {

constexpr std::uint32_t width = 64;
constexpr std::uint32_t height = 48;
constexpr std::uint32_t commandBase = 0xFFFFFF00;
constexpr std::size_t ringWords = 1000; // a little less than it holds

// Horizontal registers follow each other: cycle, offset, size; so do the vertical ones.
std::uint32_t hSize(const Addresses& at) {
    return at.hCycle() + 8;
}
std::uint32_t vSize(const Addresses& at) {
    return at.hCycle() + 28;
}

} // namespace

Generation generation(std::uint8_t choice) {
    constexpr Generation all[] = {Generation::E1, Generation::E2, Generation::E3};
    return all[choice % std::size(all)];
}

SmallPanel::SmallPanel(Generation generation, const controller::Options& options)
    : Host(generation, options) {
    chip.setObserver(nullptr); // nobody reads what would be kept of every byte
    boot();
    write32(hSize(at), width);
    write32(vSize(at), height);
    startPanel();
}

bool SmallPanel::isSmall() const {
    const std::uint64_t columns = chip.peek32(hSize(at));
    return columns * chip.peek32(vSize(at)) <= width * height;
}

void SmallPanel::look() const {
    if (isSmall()) {
        chip.frame();
        chip.textOnPanel();
    }
}

void SmallPanel::feed(const std::vector<std::uint32_t>& words) {
    constexpr int patience = 20;
    for (std::size_t start = 0; start < words.size(); start += ringWords) {
        const auto first = words.begin() + static_cast<std::ptrdiff_t>(start);
        const auto count = std::min(ringWords, words.size() - start);
        send({first, first + static_cast<std::ptrdiff_t>(count)});
        for (int i = 0; i < patience && !hasTakenAll(); ++i) {
            wait(ms);
        }
        if (!hasTakenAll()) {
            return; // a fault, or a command that waits for something
        }
    }
}

// Without the bus, which would be an eighth of all that the fuzzers do.
bool SmallPanel::hasTakenAll() const {
    return chip.peek32(at.cmdRead()) == chip.peek32(at.cmdWrite());
}

void SmallPanel::requireWorking() {
    chip.setChipSelect(true, now);
    chip.release();
    boot();
    write32(hSize(at), 4);
    write32(vSize(at), 4);
    startPanel();
    send({cmd::dlStart, 0x02FF0000, 0x26000007, 0, cmd::swap});
    waitFrames(2);
    require(chip.frame().picture.at(1, 1) == 0xFFFF0000);
}

std::uint32_t commandWord(Input& input) {
    switch (input.byte() % 5) {
    case 0:
        return commandBase | input.byte();
    case 1:
        return input.byte();
    case 2: {
        const int low = input.byte();
        return pair(low, input.byte());
    }
    case 3:
        return input.number(3);
    default:
        return input.number(4);
    }
}

} // namespace fuzz
