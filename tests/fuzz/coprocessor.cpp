// Streams of coprocessor commands.
#include "smallpanel.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t longestStream = 600; // words
    fuzz::Input input(data, size);
    fuzz::SmallPanel host(fuzz::generation(input.byte()));
    std::vector<std::uint32_t> words;
    while (!input.atEnd() && words.size() < longestStream) {
        words.push_back(fuzz::commandWord(input));
    }
    host.feed(words);
    host.look();
    return 0;
}
