// The coprocessor's flash commands, and what is read from the flash chip.
#include "smallpanel.h"

#include <array>

namespace {

using namespace controllertest;

constexpr std::size_t flashSize = 64 * 1024;
constexpr std::size_t longestStream = 600; // words
constexpr std::uint32_t mostRead = 2 * flashSize;

constexpr std::array<std::uint32_t, 14> commands = {
    cmd::flashErase,  cmd::flashWrite, cmd::flashRead,  cmd::flashUpdate, cmd::flashDetach,
    cmd::flashAttach, cmd::flashFast,  cmd::flashSpiTx, cmd::flashSpiRx,  cmd::flashSpiDesel,
    cmd::flashSource, cmd::inflate2,   cmd::appendF,    cmd::animDraw};

std::uint32_t word(fuzz::Input& input) {
    constexpr std::uint32_t command = 0x80;
    const std::uint8_t kind = input.byte();
    if (kind >= command) {
        return commands[kind % commands.size()];
    }
    // Aligned numbers within general memory and the chip are the ones that get far.
    switch (kind % 4) {
    case 0:
        return input.byte();
    case 1:
        return input.byte() * 4U;
    case 2:
        return input.byte() * 4096U;
    default:
        return input.number(4);
    }
}

// Where `words` end with a command that reads from the chip, up to its count of bytes: most counts
// are those of all memory, which would take nine tenths of the time and show nothing new.
bool isCountNext(const std::vector<std::uint32_t>& words) {
    const auto isBack = [&words](std::size_t places, std::uint32_t command) {
        return words.size() >= places && words[words.size() - places] == command;
    };
    return isBack(2, cmd::flashSpiRx) || isBack(3, cmd::flashRead);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    controller::Options options;
    options.flashSize = flashSize;
    fuzz::SmallPanel host(Generation::E3, options);
    fuzz::Input input(data, size);
    const std::vector<std::uint8_t> content = input.bytes(input.byte());
    std::copy(content.begin(), content.end(), host.chip.flash().begin() + 4096);
    std::vector<std::uint32_t> words;
    while (!input.atEnd() && words.size() < longestStream) {
        const std::uint32_t value = word(input);
        words.push_back(isCountNext(words) ? value % mostRead : value);
    }
    host.feed(words);
    host.look();
    fuzz::require(host.chip.flash().size() == flashSize);
    return 0;
}
