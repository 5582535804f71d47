// Compressed streams: unpacked in pieces as in one, and by the coprocessor.
#include "inflater.h"
#include "smallpanel.h"

namespace {

using controller::Inflater;
using State = Inflater::State;

// What is compared; less than the memory of any controller, so that nothing is overwritten.
constexpr std::size_t mostUnpacked = 200'000;

struct Unpacked {
    State state = State::Hungry;
    std::vector<std::uint8_t> bytes;
};

Unpacked unpack(const std::vector<std::uint8_t>& stream, std::size_t piece) {
    Unpacked result;
    Inflater inflater([&result](const std::uint8_t* bytes, std::size_t count) {
        const std::size_t kept = std::min(count, mostUnpacked - result.bytes.size());
        result.bytes.insert(result.bytes.end(), bytes, bytes + kept);
    });
    for (std::size_t i = 0; i < stream.size() && result.state == State::Hungry; i += piece) {
        result.state = inflater.take(stream.data() + i, std::min(piece, stream.size() - i));
    }
    return result;
}

std::vector<std::uint32_t> inflateCommand(const std::vector<std::uint8_t>& stream) {
    std::vector<std::uint32_t> words = {controllertest::cmd::inflate, 0x100};
    fuzz::Input input(stream.data(), stream.size());
    while (!input.atEnd()) {
        words.push_back(input.number(4));
    }
    return words;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const controller::Generation generation = fuzz::generation(input.byte());
    const std::size_t piece = 1U + input.byte();
    const std::vector<std::uint8_t> stream = input.bytes(size);

    const Unpacked whole = unpack(stream, stream.size() + 1);
    const Unpacked pieces = unpack(stream, piece);
    fuzz::require(whole.state == pieces.state);
    fuzz::require(whole.state == State::Corrupt || whole.bytes == pieces.bytes);

    fuzz::SmallPanel host(generation);
    host.feed(inflateCommand(stream));
    for (std::size_t i = 0; whole.state == State::Finished && whole.bytes.size() < mostUnpacked &&
                            i < std::min<std::size_t>(whole.bytes.size(), 64);
         ++i) {
        fuzz::require(host.chip.peek8(0x100 + static_cast<std::uint32_t>(i)) == whole.bytes[i]);
    }
    return 0;
}
