// Images: unpacked as a file, and by the coprocessor from its ring and from the media FIFO.
#include "image.h"

#include "imageend.h"
#include "smallpanel.h"

namespace {

using controller::Image;
using controller::ImageResult;

constexpr std::size_t mostPixels = 100'000;
constexpr std::uint32_t address = 0x100;
constexpr std::uint32_t noList = 2;
constexpr std::uint32_t fromMediaFifo = 16;
constexpr std::uint32_t fifoBase = 0x20000;
constexpr std::uint32_t fifoWrite = 0x309018;
constexpr std::size_t fifoSize = 0x4000;

void requireWhole(const ImageResult& result) {
    const Image& image = result.image;
    fuzz::require(!result.error.empty() || image.pixels.size() == std::size_t{image.width} *
                                                                      image.height *
                                                                      image.bytesPerPixel());
}

std::vector<std::uint32_t> loadCommand(const std::vector<std::uint8_t>& file,
                                       std::uint32_t options) {
    std::vector<std::uint32_t> words = {controllertest::cmd::dlStart,
                                        controllertest::cmd::loadImage, address, options};
    fuzz::Input input(file.data(), file.size());
    while (!input.atEnd()) {
        words.push_back(input.number(4));
    }
    return words;
}

// Where the file ends, as a stream has it; 0 if it does not.
std::size_t lengthOf(const std::vector<std::uint8_t>& stream) {
    controller::ImageEnd end;
    for (std::size_t i = 0; i < stream.size(); ++i) {
        if (end.take(stream[i])) {
            return i + 1;
        }
    }
    return 0;
}

void requireStored(const fuzz::SmallPanel& host, const Image& image) {
    for (std::size_t i = 0; i < image.pixels.size(); i += 97) {
        const auto place = static_cast<std::uint32_t>(address + image.palette.size() + i);
        fuzz::require(host.chip.peek8(place) == image.pixels[i]);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const controller::Generation generation = fuzz::generation(input.byte());
    const std::uint32_t options = input.byte() & 0xBFU; // not from flash
    const std::vector<std::uint8_t> stream = input.bytes(size);

    const bool isPng = !stream.empty() && stream[0] == 0x89;
    const bool mono = (options & 1U) != 0;
    const std::size_t length = lengthOf(stream);
    const std::vector<std::uint8_t> file(stream.begin(),
                                         stream.begin() + static_cast<std::ptrdiff_t>(length));
    const ImageResult whole = isPng ? controller::unpackPng(file, mostPixels)
                                    : controller::unpackJpeg(file, mono, mostPixels);
    requireWhole(whole);

    fuzz::SmallPanel host(generation);
    if ((options & fromMediaFifo) && generation != controller::Generation::E1) {
        host.send({controllertest::cmd::mediaFifo, fifoBase, fifoSize});
        host.write(fifoBase, stream);
        host.write32(fifoWrite, static_cast<std::uint32_t>(stream.size()) % fifoSize);
        host.send({controllertest::cmd::loadImage, address, options});
        host.wait(20 * controllertest::ms);
    } else {
        // What stands behind the file would be commands.
        host.feed(loadCommand(length > 0 ? file : stream, options & ~fromMediaFifo));
    }
    const bool known = !isPng || generation != controller::Generation::E1;
    if (length > 0 && whole.error.empty() && known && whole.image.pixels.size() < fifoBase / 2 &&
        (options & noList)) {
        requireStored(host, whole.image);
    }
    host.look();
    return 0;
}
