#include "streamcommands.h"

#include "commandfault.h"
#include "flashcommands.h"
#include "imageend.h"
#include "inflater.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace controller {

namespace {

// Options of INFLATE2 and LOADIMAGE.
constexpr std::uint32_t optionMediaFifo = ImageLoader::fromMediaFifo;
constexpr std::uint32_t optionFlash = ImageLoader::fromFlash;

// Files longer than all addresses are refused.
constexpr std::size_t longestFile = addressMask + 1;
// What taking a byte of a file costs.
constexpr std::int64_t fileByte = 5;
// Bytes of flash that are read at a time.
constexpr std::size_t flashPiece = 4096;
// What beginning to unpack costs, and each byte that comes of it besides being moved.
constexpr std::int64_t inflaterWork = 16'000;
constexpr std::int64_t inflatedByte = 3;

} // namespace

void StreamCommands::addTo(CommandSet& set) {
    set.add(Command::Inflate, *this, &StreamCommands::inflate);
    set.add(Command::Inflate2, *this, &StreamCommands::inflate2);
    set.add(Command::LoadImage, *this, &StreamCommands::loadImage);
    set.add(Command::PlayVideo, *this, &StreamCommands::playVideo);
    set.add(Command::MediaFifo, *this, &StreamCommands::mediaFifo);
    set.add(Command::GetPtr, *this, &StreamCommands::getPtr);
    set.add(Command::GetProps, *this, &StreamCommands::getProps);
    set.add(Command::FlashSource, *this, &StreamCommands::flashSource);
}

void StreamCommands::reset() {
    m_pointer = 0;
    m_mediaFifo.reset();
    m_images.reset();
}

void StreamCommands::getPtr(const Call& call) {
    call.putResult(m_machine.memory, 0, m_pointer);
}

// Of the last image loaded.
void StreamCommands::getProps(const Call& call) {
    const ImageLoader::Properties& image = m_images.properties();
    call.putResult(m_machine.memory, 0, image.address);
    call.putResult(m_machine.memory, 1, image.width);
    call.putResult(m_machine.memory, 2, image.height);
}

void StreamCommands::mediaFifo(const Call& call) {
    m_mediaFifo.set(call[0], call[1]);
}

void StreamCommands::flashSource(const Call& call) {
    m_flashSource = call[0];
}

DataSink StreamCommands::inflateSink(std::uint32_t destination) {
    m_pointer = destination;
    m_machine.budget.spend(inflaterWork);
    auto inflater =
        std::make_shared<Inflater>([this](const std::uint8_t* bytes, std::size_t count) {
            m_machine.budget.spend(inflatedByte * static_cast<std::int64_t>(count));
            m_machine.bus.writeBytes(m_pointer, bytes, count);
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

Outcome StreamCommands::inflate(const Call& call) {
    return inflateSink(call[0]);
}

Outcome StreamCommands::inflate2(const Call& call) {
    const DataSink sink = inflateSink(call[0]);
    if (call[1] & optionMediaFifo) {
        return m_mediaFifo.reader(sink);
    }
    if (!(call[1] & optionFlash)) {
        return sink;
    }
    if (!requireAttachedFlash(m_machine, call)) {
        return Progress::Done;
    }
    return [this, sink, address = std::size_t{m_flashSource}]() mutable {
        const std::size_t end = std::min(address + flashPiece, m_machine.flash.size());
        for (; address < end; ++address) {
            const std::uint8_t byte = m_machine.flash.read(address);
            if (sink(&byte, 1)) {
                return Progress::Done;
            }
        }
        if (address >= m_machine.flash.size()) {
            fault("zlib stream runs beyond the flash");
        }
        m_machine.budget.spend(flashPiece);
        return Progress::Working;
    };
}

// The file is collected first: what it is damaged by may stand at its end.
DataSink StreamCommands::imageSink(std::uint32_t address, std::uint32_t options) {
    return [this, address, options, end = ImageEnd(), file = std::vector<std::uint8_t>()](
               const std::uint8_t* bytes, std::size_t count) mutable {
        m_machine.budget.spend(fileByte * static_cast<std::int64_t>(count));
        for (std::size_t i = 0; i < count; ++i) {
            file.push_back(bytes[i]);
            const bool complete = end.take(bytes[i]);
            if (end.kind() == ImageEnd::Kind::None || end.kind() == ImageEnd::Kind::Avi) {
                fault("neither JPEG nor PNG");
            }
            if (complete) {
                m_pointer = m_images.load(file, address, options);
                return true;
            }
        }
        if (file.size() > longestFile) {
            fault("image is too long");
        }
        return false;
    };
}

Outcome StreamCommands::loadImage(const Call& call) {
    if (call[1] & optionFlash) {
        m_machine.port.complain("LOADIMAGE: images in flash are not modelled");
        return Progress::Done;
    }
    DataSink sink = imageSink(call[0], call[1]);
    if (!(call[1] & optionMediaFifo)) {
        return sink;
    }
    if (m_machine.generation == Generation::E1) {
        fault("there is no media FIFO");
    }
    return m_mediaFifo.reader(std::move(sink));
}

// Video is taken from the ring, not played.
Outcome StreamCommands::playVideo(const Call& call) {
    m_machine.port.complain("coprocessor command PLAYVIDEO is not modelled");
    if (call[0] & (optionMediaFifo | optionFlash)) {
        return Progress::Done;
    }
    return [end = ImageEnd()](const std::uint8_t* bytes, std::size_t count) mutable {
        bool done = false;
        for (std::size_t i = 0; i < count && !done; ++i) {
            done = end.take(bytes[i]);
        }
        if (end.kind() == ImageEnd::Kind::None) {
            fault("neither JPEG, PNG nor AVI");
        }
        return done;
    };
}

} // namespace controller
