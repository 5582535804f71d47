#include "streamcommands.h"

#include "commandfault.h"
#include "flashcommands.h"
#include "imageend.h"
#include "inflater.h"

#include <algorithm>
#include <memory>
#include <string>

namespace controller {

namespace {

constexpr std::uint32_t optionMediaFifo = 0x10;
constexpr std::uint32_t optionFlash = 0x40;

// Bytes of flash that are read at a time.
constexpr std::size_t flashPiece = 4096;
// What beginning to unpack costs, and each byte that comes of it besides being moved.
constexpr std::int64_t inflaterWork = 16'000;
constexpr std::int64_t inflatedByte = 3;

} // namespace

void StreamCommands::addTo(CommandSet& set) {
    set.add(Command::Inflate, *this, &StreamCommands::inflate);
    set.add(Command::Inflate2, *this, &StreamCommands::inflate2);
    set.add(Command::LoadImage, *this, &StreamCommands::image);
    set.add(Command::PlayVideo, *this, &StreamCommands::image);
    set.add(Command::GetPtr, *this, &StreamCommands::getPtr);
    set.add(Command::GetProps, *this, &StreamCommands::getProps);
    set.add(Command::FlashSource, *this, &StreamCommands::flashSource);
}

void StreamCommands::getPtr(const Call& call) {
    call.putResult(m_machine.memory, 0, m_pointer);
}

// Properties of the last image loaded; as images are not modelled, there is none.
void StreamCommands::getProps(const Call& call) {
    for (std::size_t i = 0; i < 3; ++i) {
        call.putResult(m_machine.memory, i, 0);
    }
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
    if (call[1] & optionMediaFifo) {
        m_machine.port.complain("INFLATE2: the media FIFO is not modelled");
        return Progress::Done;
    }
    const DataSink sink = inflateSink(call[0]);
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

// Images and video are taken from the ring, not unpacked.
Outcome StreamCommands::image(const Call& call) {
    m_machine.port.complain(std::string("coprocessor command ") + call.name() + " is not modelled");
    if (call.words.back() & (optionMediaFifo | optionFlash)) {
        return Progress::Done;
    }
    return [end = ImageEnd()](const std::uint8_t* bytes, std::size_t count) mutable {
        bool done = false;
        for (std::size_t i = 0; i < count && !done; ++i) {
            done = end.take(bytes[i]);
        }
        if (!end.isKnown()) {
            fault("neither JPEG, PNG nor AVI");
        }
        return done;
    };
}

} // namespace controller
