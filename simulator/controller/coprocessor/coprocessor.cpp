#include "coprocessor.h"

#include "fixedmath.h"
#include "names.h"

#include <algorithm>
#include <utility>

namespace controller {

namespace {

// What CMD_READ shows after a fault.
constexpr std::uint32_t faultMark = 0xFFF;
// Bytes of a string that are kept; the rest is taken and dropped.
constexpr std::size_t longestText = 4096;
// Words taken at a time, so that a program that keeps itself going cannot hold up the world.
constexpr int wordsPerTurn = 65536;
constexpr std::uint32_t ringCapacity = ringBytes - 4;

std::array<std::uint8_t, 4> bytesOf(std::uint32_t word) {
    return {static_cast<std::uint8_t>(word), static_cast<std::uint8_t>(word >> 8U),
            static_cast<std::uint8_t>(word >> 16U), static_cast<std::uint8_t>(word >> 24U)};
}

// How many argument words a format string takes: one for each percent sign but doubled ones.
std::size_t formatArgumentCount(const std::string& format) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] == '%') {
            if (i + 1 < format.size() && format[i + 1] == '%') {
                ++i;
            } else {
                ++count;
            }
        }
    }
    return count;
}

} // namespace

Coprocessor::Coprocessor(Generation generation, MemoryMap& memory, AddressSpace& bus,
                         Registers& registers, SerialFlash& flash, CoprocessorPort& port)
    : m_generation(generation), m_memory(memory), m_bus(bus), m_registers(registers),
      m_flash(flash), m_port(port), m_fonts(generation, memory) {}

void Coprocessor::reset() {
    m_held = false;
    resetState();
}

// Everything but what the registers hold.
void Coprocessor::resetState() {
    m_resetDue = false;
    m_faulty = false;
    m_more = false;
    m_listFull = false;
    commandDone();
    stopAnimations();
    m_calibration.reset();
    m_logoFrame.reset();
    m_syncFrame.reset();
    m_flash.deselect();
    coldStart();
}

void Coprocessor::hold(bool held) {
    if (held && !m_held) {
        if (m_running) {
            m_resetDue = true; // a command has written the register, and must not vanish meanwhile
        } else {
            resetState();
        }
    }
    m_held = held;
}

std::uint32_t Coprocessor::readOffset() const {
    return m_registers[Register::CmdRead] & (ringBytes - 4);
}

std::uint32_t Coprocessor::freeBytes() const {
    const std::uint32_t used =
        (m_registers[Register::CmdWrite] - m_registers[Register::CmdRead]) & (ringBytes - 4);
    return m_faulty ? 0 : ringCapacity - used;
}

void Coprocessor::feed(std::uint32_t word) {
    if (freeBytes() == 0) {
        m_port.complain("word written to a full ring: " + displayListWordText(word));
        return;
    }
    const std::uint32_t offset = m_registers[Register::CmdWrite] & (ringBytes - 4);
    m_memory.setRingWord(offset, word);
    m_registers.set(Register::CmdWrite, (offset + 4) & (ringBytes - 1));
}

void Coprocessor::run() {
    if (m_running) {
        return; // a command has moved the ring's pointers
    }
    m_running = true;
    int taken = 0;
    while (taken < wordsPerTurn && step()) {
        ++taken;
    }
    m_more = taken == wordsPerTurn;
    m_running = false;
    if (m_resetDue) {
        resetState();
    }
}

// Takes one word if there is one and nothing is waited for.
bool Coprocessor::step() {
    if (m_resetDue) {
        resetState();
    }
    const std::uint32_t offset = readOffset();
    if (m_held || m_faulty || offset == (m_registers[Register::CmdWrite] & (ringBytes - 4))) {
        return false;
    }
    try {
        const Outcome outcome = accept(m_memory.ringWord(offset));
        if (outcome == Outcome::Wait) {
            return false;
        }
        if (outcome == Outcome::Done) {
            m_registers.set(Register::CmdRead, (offset + 4) & (ringBytes - 1));
        }
    } catch (const Fault& reason) {
        fail(reason);
        return false;
    }
    if (readOffset() == (m_registers[Register::CmdWrite] & (ringBytes - 4))) {
        m_port.ringEmptied();
    }
    return true;
}

Coprocessor::Outcome Coprocessor::accept(std::uint32_t word) {
    if (m_waiting) {
        return call();
    }
    switch (m_phase) {
    case Phase::Command:
        return acceptCommand(word);
    case Phase::Arguments:
        return acceptArgument(word);
    case Phase::Text:
        return acceptText(word);
    case Phase::FormatArguments:
        return acceptFormatArgument(word);
    case Phase::Data:
        return acceptData(word);
    }
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::acceptCommand(std::uint32_t word) {
    if (word >> 24U != 0xFFU) {
        putWord(word);
        return Outcome::Done;
    }
    m_command = commandInfo(m_generation, word);
    if (!m_command) {
        fault("unknown command " + displayListWordText(word));
    }
    m_phase = Phase::Arguments;
    return m_command->words == 0 ? fixedArgumentsComplete() : Outcome::Done;
}

Coprocessor::Outcome Coprocessor::acceptArgument(std::uint32_t word) {
    m_arguments.push_back(word);
    m_offsets.push_back(readOffset());
    return m_arguments.size() == m_command->words ? fixedArgumentsComplete() : Outcome::Done;
}

Coprocessor::Outcome Coprocessor::fixedArgumentsComplete() {
    switch (m_command->trailer) {
    case Trailer::Text:
        m_phase = Phase::Text;
        return Outcome::Done;
    case Trailer::Bytes:
    case Trailer::Stream:
        return startData();
    case Trailer::None:
        break;
    }
    return call();
}

Coprocessor::Outcome Coprocessor::acceptText(std::uint32_t word) {
    for (const std::uint8_t byte : bytesOf(word)) {
        if (byte == 0) {
            return textComplete();
        }
        if (m_text.size() < longestText) {
            m_text += static_cast<char>(byte);
        }
    }
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::textComplete() {
    // TOGGLE has its options in the low half of its last word, the others in the high half.
    const std::uint32_t last = m_arguments.back();
    const std::uint32_t options =
        m_command->command == Command::Toggle ? last & 0xFFFFU : last >> 16U;
    const bool formatted = m_generation == Generation::E3 && (options & option::format) != 0 &&
                           m_command->command != Command::Keys;
    m_formatCount = formatted ? formatArgumentCount(m_text) : 0;
    if (m_formatCount == 0) {
        return call();
    }
    m_phase = Phase::FormatArguments;
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::acceptFormatArgument(std::uint32_t word) {
    m_formatArguments.push_back(word);
    return m_formatArguments.size() == m_formatCount ? call() : Outcome::Done;
}

// A command with data: its handler sets up m_sink (or leaves it empty, when there is no data).
Coprocessor::Outcome Coprocessor::startData() {
    m_phase = Phase::Data;
    const Outcome outcome = call();
    if (outcome != Outcome::Done || !m_command) {
        return outcome;
    }
    if (!m_sink) {
        commandDone();
        return Outcome::Done;
    }
    if (m_command->trailer == Trailer::Bytes) {
        std::uint32_t left = argument(m_command->lengthWord);
        if (left == 0) {
            commandDone();
            return Outcome::Done;
        }
        DataSink sink = std::move(m_sink);
        m_sink = [sink = std::move(sink), left](const std::uint8_t* bytes,
                                                std::size_t count) mutable {
            const auto taken = static_cast<std::uint32_t>(std::min<std::size_t>(count, left));
            sink(bytes, taken);
            left -= taken;
            return left == 0;
        };
    }
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::acceptData(std::uint32_t word) {
    const std::array<std::uint8_t, 4> bytes = bytesOf(word);
    if (m_sink(bytes.data(), bytes.size())) {
        commandDone();
    }
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::call() {
    static const HandlerTable handlers = makeHandlers();
    const Handler handler = handlers[static_cast<std::size_t>(m_command->command)];
    Outcome outcome = Outcome::Done;
    if (handler) {
        outcome = (this->*handler)();
    } else {
        notModelled();
    }
    m_waiting = outcome == Outcome::Wait;
    if (!m_waiting && m_phase != Phase::Data) {
        commandDone();
    }
    return outcome;
}

void Coprocessor::commandDone() {
    m_phase = Phase::Command;
    m_waiting = false;
    m_command = nullptr;
    m_arguments.clear();
    m_offsets.clear();
    m_text.clear();
    m_formatArguments.clear();
    m_sink = nullptr;
}

void Coprocessor::fail(const Fault& reason) {
    const std::string text =
        m_command ? std::string(m_command->name) + ": " + reason.text : reason.text;
    m_faulty = true;
    commandDone();
    m_calibration.reset();
    m_registers.set(Register::CmdRead, faultMark);
    if (const std::uint32_t address = m_memory.layout().faultText) {
        for (std::uint32_t i = 0; i < faultTextBytes; ++i) {
            const bool inside = i < text.size() && i + 1 < faultTextBytes;
            m_memory.write8(address + i, inside ? static_cast<std::uint8_t>(text[i]) : 0);
        }
    }
    m_port.complain("coprocessor fault: " + text);
}

void Coprocessor::notModelled() {
    m_port.complain(std::string("coprocessor command ") + m_command->name + " is not modelled");
}

int Coprocessor::low(std::size_t index) const {
    return lowHalf(m_arguments[index]);
}

int Coprocessor::high(std::size_t index) const {
    return highHalf(m_arguments[index]);
}

bool Coprocessor::hasOption(unsigned bits, std::size_t index) const {
    return (m_arguments[index] & bits) != 0;
}

// A result takes its placeholder's place in the ring.
void Coprocessor::putResult(std::size_t index, std::uint32_t value) {
    m_memory.setRingWord(m_offsets[index], value);
}

std::size_t Coprocessor::listLength() const {
    return m_listFull ? displayListWords : m_registers[Register::CmdDl] % displayListBytes / 4;
}

void Coprocessor::putWord(std::uint32_t word) {
    if (listLength() >= displayListWords) {
        fault("display list overflow");
    }
    const std::size_t index = listLength();
    m_memory.setListWord(index, word);
    m_listFull = index + 1 == displayListWords;
    m_registers.set(Register::CmdDl,
                    static_cast<std::uint32_t>((index + 1) % displayListWords * 4));
}

void Coprocessor::putWords(const Words& words) {
    for (const std::uint32_t word : words) {
        putWord(word);
    }
}

void Coprocessor::frameEnded() {
    if (m_held) {
        return;
    }
    if (!m_faulty) {
        drawScreenSaver();
        drawSketch();
        followTracks();
        watchCalibration();
        if (m_logoFrame) {
            ++*m_logoFrame;
        }
        showOverlay();
    }
    run();
}

Coprocessor::HandlerTable Coprocessor::makeHandlers() {
    HandlerTable table{};
    const auto set = [&table](Command command, Handler handler) {
        table[static_cast<std::size_t>(command)] = handler;
    };
    set(Command::DlStart, &Coprocessor::dlStart);
    set(Command::Swap, &Coprocessor::swap);
    set(Command::Interrupt, &Coprocessor::interrupt);
    set(Command::BgColor, &Coprocessor::backgroundColor);
    set(Command::FgColor, &Coprocessor::foregroundColor);
    set(Command::GradColor, &Coprocessor::gradientColor);
    set(Command::Gradient, &Coprocessor::gradient);
    set(Command::Text, &Coprocessor::text);
    set(Command::Number, &Coprocessor::number);
    set(Command::Button, &Coprocessor::button);
    set(Command::Keys, &Coprocessor::keys);
    set(Command::Progress, &Coprocessor::progress);
    set(Command::Slider, &Coprocessor::slider);
    set(Command::Scrollbar, &Coprocessor::scrollbar);
    set(Command::Toggle, &Coprocessor::toggle);
    set(Command::Gauge, &Coprocessor::gauge);
    set(Command::Clock, &Coprocessor::clock);
    set(Command::Dial, &Coprocessor::dial);
    set(Command::SetBitmap, &Coprocessor::setBitmap);
    set(Command::SetFont, &Coprocessor::setFont);
    set(Command::SetFont2, &Coprocessor::setFont2);
    set(Command::RomFont, &Coprocessor::romFont);
    set(Command::ResetFonts, &Coprocessor::resetFonts);
    set(Command::SetScratch, &Coprocessor::setScratch);
    set(Command::SetBase, &Coprocessor::setBase);
    set(Command::SetRotate, &Coprocessor::setRotate);
    set(Command::LoadIdentity, &Coprocessor::loadIdentity);
    set(Command::Translate, &Coprocessor::translate);
    set(Command::Scale, &Coprocessor::scale);
    set(Command::Rotate, &Coprocessor::rotate);
    set(Command::RotateAround, &Coprocessor::rotateAround);
    set(Command::SetMatrix, &Coprocessor::setMatrix);
    set(Command::GetMatrix, &Coprocessor::getMatrix);
    set(Command::BitmapTransform, &Coprocessor::bitmapTransform);
    set(Command::TouchTransform, &Coprocessor::touchTransform);
    set(Command::Append, &Coprocessor::append);
    set(Command::MemWrite, &Coprocessor::memWrite);
    set(Command::MemSet, &Coprocessor::memSet);
    set(Command::MemZero, &Coprocessor::memZero);
    set(Command::MemCpy, &Coprocessor::memCpy);
    set(Command::MemCrc, &Coprocessor::memCrc);
    set(Command::RegRead, &Coprocessor::regRead);
    set(Command::GetPtr, &Coprocessor::getPtr);
    set(Command::GetProps, &Coprocessor::getProps);
    set(Command::Inflate, &Coprocessor::inflate);
    set(Command::Inflate2, &Coprocessor::inflate2);
    set(Command::LoadImage, &Coprocessor::image);
    set(Command::PlayVideo, &Coprocessor::image);
    set(Command::Snapshot, &Coprocessor::snapshot);
    set(Command::Snapshot2, &Coprocessor::snapshot2);
    set(Command::Spinner, &Coprocessor::spinner);
    set(Command::Stop, &Coprocessor::stop);
    set(Command::Calibrate, &Coprocessor::calibrate);
    set(Command::Logo, &Coprocessor::logo);
    set(Command::ScreenSaver, &Coprocessor::screenSaver);
    set(Command::Sketch, &Coprocessor::sketch);
    set(Command::CSketch, &Coprocessor::cSketch);
    set(Command::Track, &Coprocessor::track);
    set(Command::Sync, &Coprocessor::sync);
    set(Command::ColdStart, &Coprocessor::coldStart);
    set(Command::Nop, &Coprocessor::nothing);
    set(Command::ClearCache, &Coprocessor::nothing);
    set(Command::FlashErase, &Coprocessor::flashErase);
    set(Command::FlashWrite, &Coprocessor::flashWrite);
    set(Command::FlashRead, &Coprocessor::flashRead);
    set(Command::FlashUpdate, &Coprocessor::flashUpdate);
    set(Command::FlashDetach, &Coprocessor::flashDetach);
    set(Command::FlashAttach, &Coprocessor::flashAttach);
    set(Command::FlashFast, &Coprocessor::flashFast);
    set(Command::FlashSpiDesel, &Coprocessor::flashSpiDesel);
    set(Command::FlashSpiTx, &Coprocessor::flashSpiTx);
    set(Command::FlashSpiRx, &Coprocessor::flashSpiRx);
    set(Command::FlashSource, &Coprocessor::flashSource);
    set(Command::AppendF, &Coprocessor::appendF);
    return table;
}

} // namespace controller
