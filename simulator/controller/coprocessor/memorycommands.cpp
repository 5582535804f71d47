#include "coprocessor.h"
#include "dlwords.h"
#include "fixedmath.h"

#include <algorithm>
#include <array>

// The coprocessor's commands that move data.

namespace controller {

namespace {

constexpr std::uint32_t optionFlash = 0x40;
constexpr std::uint32_t optionMediaFifo = 0x10;
// What SNAPSHOT and SNAPSHOT2 store besides the bitmap formats.
constexpr std::uint32_t formatArgb8 = 0x20;

// A pixel, 0xFFRRGGBB, as SNAPSHOT stores it: bytes, low one first.
std::uint32_t storedPixel(std::uint32_t format, std::uint32_t pixel) {
    const std::uint32_t r = pixel >> 16U & 0xFFU;
    const std::uint32_t g = pixel >> 8U & 0xFFU;
    const std::uint32_t b = pixel & 0xFFU;
    switch (format) {
    case format::Argb4:
        return 0xF000U | r >> 4U << 8U | g >> 4U << 4U | b >> 4U;
    case format::Rgb565:
        return r >> 3U << 11U | g >> 2U << 5U | b >> 3U;
    default:
        return pixel | 0xFF000000U;
    }
}

// Finds the end of image or video data, which is not unpacked: JPEG and PNG by their end marks,
// AVI by the length at its head.
class ImageEnd {
public:
    // True when `byte` is the last one. Throws what is neither at its third byte.
    bool take(std::uint8_t byte) {
        m_last = m_last << 8U | byte;
        ++m_count;
        if (m_count == 4) {
            m_kind = static_cast<std::uint32_t>(m_last);
        }
        if (m_count >= 4 && (m_kind >> 16U) == 0xFFD8) {
            return (m_last & 0xFFFFU) == 0xFFD9; // end of image
        }
        if (m_kind == 0x89504E47) {
            return m_last >> 32U == 0x49454E44; // "IEND" and its checksum
        }
        if (m_kind == 0x52494646 && m_count >= 8) { // "RIFF", little-endian length
            if (m_count == 8) {
                m_length = byteSwapped(static_cast<std::uint32_t>(m_last));
            }
            return m_count - 8 >= (std::uint64_t{m_length} + 1) / 2 * 2;
        }
        return false;
    }
    bool isKnown() const {
        return m_count < 4 || (m_kind >> 16U) == 0xFFD8 || m_kind == 0x89504E47 ||
               m_kind == 0x52494646;
    }

private:
    static std::uint32_t byteSwapped(std::uint32_t word) {
        return word >> 24U | (word >> 8U & 0xFF00U) | (word << 8U & 0xFF0000U) | word << 24U;
    }
    std::uint64_t m_last = 0; // the last eight bytes
    std::uint64_t m_count = 0;
    std::uint32_t m_kind = 0; // the first four
    std::uint32_t m_length = 0;
};

} // namespace

void Coprocessor::appendBytes(const std::function<std::uint8_t(std::uint32_t)>& read,
                              std::uint32_t count) {
    const std::uint32_t words = count / 4;
    if (words > displayListWords - listLength()) {
        fault("display list overflow");
    }
    for (std::uint32_t i = 0; i < words; ++i) {
        std::uint32_t word = 0;
        for (std::uint32_t byte = 0; byte < 4; ++byte) {
            word |= static_cast<std::uint32_t>(read(i * 4 + byte)) << 8 * byte;
        }
        putWord(word);
    }
}

Coprocessor::Outcome Coprocessor::append() {
    const std::uint32_t source = argument(0);
    appendBytes([&](std::uint32_t i) { return m_memory.read8((source + i) & addressMask); },
                argument(1));
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::memWrite() {
    m_sink = [this, address = argument(0)](const std::uint8_t* bytes, std::size_t count) mutable {
        m_bus.writeBytes(address, bytes, count);
        address += static_cast<std::uint32_t>(count);
        return false;
    };
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::memSet() {
    m_bus.fill(argument(0), static_cast<std::uint8_t>(argument(1)), argument(2));
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::memZero() {
    m_bus.fill(argument(0), 0, argument(1));
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::memCpy() {
    m_bus.copy(argument(0), argument(1), argument(2));
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::memCrc() {
    putResult(2, m_bus.crc32(argument(0), argument(1)));
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::regRead() {
    putResult(1, m_bus.read32(argument(0)));
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::getPtr() {
    putResult(0, m_pointer);
    return Outcome::Done;
}

// Properties of the last image loaded; as images are not modelled, there is none.
Coprocessor::Outcome Coprocessor::getProps() {
    for (std::size_t i = 0; i < 3; ++i) {
        putResult(i, 0);
    }
    return Outcome::Done;
}

Coprocessor::DataSink Coprocessor::inflateSink(std::uint32_t destination) {
    m_pointer = destination;
    auto inflater =
        std::make_shared<Inflater>([this](const std::uint8_t* bytes, std::size_t count) {
            m_bus.writeBytes(m_pointer, bytes, count);
            m_pointer = (m_pointer + static_cast<std::uint32_t>(count)) & addressMask;
        });
    return [inflater](const std::uint8_t* bytes, std::size_t count) {
        const Inflater::State state = inflater->take(bytes, count);
        if (state == Inflater::State::Corrupt) {
            fault("corrupt zlib stream");
        }
        return state == Inflater::State::Finished;
    };
}

Coprocessor::Outcome Coprocessor::inflate() {
    m_sink = inflateSink(argument(0));
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::inflate2() {
    if (hasOption(optionMediaFifo, 1)) {
        m_port.complain("INFLATE2: the media FIFO is not modelled");
        return Outcome::Done;
    }
    const DataSink sink = inflateSink(argument(0));
    if (!hasOption(optionFlash, 1)) {
        m_sink = sink;
        return Outcome::Done;
    }
    if (!requireAttached()) {
        return Outcome::Done;
    }
    for (std::size_t address = m_flashSource; address < m_flash.size(); ++address) {
        const std::uint8_t byte = m_flash.read(address);
        if (sink(&byte, 1)) {
            return Outcome::Done;
        }
    }
    fault("zlib stream runs beyond the flash");
}

// Images and video are taken from the ring, not unpacked.
Coprocessor::Outcome Coprocessor::image() {
    notModelled();
    if (hasOption(optionMediaFifo | optionFlash, m_command->words - 1U)) {
        return Outcome::Done;
    }
    m_sink = [end = ImageEnd()](const std::uint8_t* bytes, std::size_t count) mutable {
        bool done = false;
        for (std::size_t i = 0; i < count && !done; ++i) {
            done = end.take(bytes[i]);
        }
        if (!end.isKnown()) {
            fault("neither JPEG, PNG nor AVI");
        }
        return done;
    };
    return Outcome::Done;
}

void Coprocessor::storePicture(std::uint32_t format, std::uint32_t destination, int x, int y,
                               int width, int height) {
    const Picture& picture = m_port.frameOnPanel().picture;
    const std::size_t pixelBytes = format == formatArgb8 ? 4 : 2;
    for (int row = std::max(y, 0); row < std::min(y + height, picture.height); ++row) {
        for (int column = std::max(x, 0); column < std::min(x + width, picture.width); ++column) {
            const std::uint32_t pixel = storedPixel(format, picture.at(column, row));
            const std::array<std::uint8_t, 4> bytes = {
                static_cast<std::uint8_t>(pixel), static_cast<std::uint8_t>(pixel >> 8U),
                static_cast<std::uint8_t>(pixel >> 16U), static_cast<std::uint8_t>(pixel >> 24U)};
            const std::size_t index =
                static_cast<std::size_t>(row - y) * static_cast<std::size_t>(width) +
                static_cast<std::size_t>(column - x);
            m_bus.writeBytes(destination + static_cast<std::uint32_t>(index * pixelBytes),
                             bytes.data(), pixelBytes);
        }
    }
}

// E1 stores ARGB4, the others what REG_SNAPFORMAT says.
Coprocessor::Outcome Coprocessor::snapshot() {
    const std::uint32_t format =
        m_generation == Generation::E1 ? format::Argb4 : m_registers[Register::SnapFormat];
    storePicture(format, argument(0), 0, 0, panelWidth(), panelHeight());
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::snapshot2() {
    const std::uint32_t format = argument(0);
    if (format != format::Argb4 && format != format::Rgb565 && format != formatArgb8) {
        m_port.complain("SNAPSHOT2: format " + std::to_string(format) + " is not modelled");
        return Outcome::Done;
    }
    storePicture(format, argument(1), low(2), high(2), low(3), high(3));
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::interrupt() {
    m_port.interruptAfter(argument(0) * millisecond);
    return Outcome::Done;
}

} // namespace controller
