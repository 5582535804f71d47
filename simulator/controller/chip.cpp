#include "chip.h"

#include "fontrom.h"
#include "names.h"

#include <algorithm>

namespace controller {

namespace {

namespace hostcommand {
constexpr std::uint8_t active = 0x00;
constexpr std::uint8_t standby = 0x41;
constexpr std::uint8_t sleep = 0x42;
constexpr std::uint8_t powerDown = 0x43;
constexpr std::uint8_t powerDownToo = 0x50;
constexpr std::uint8_t externalClock = 0x44;
constexpr std::uint8_t internalClock = 0x48;
constexpr std::uint8_t romsOff = 0x49;
constexpr std::uint8_t clockSelect = 0x61;
constexpr std::uint8_t clockSelectToo = 0x62;
constexpr std::uint8_t reset = 0x68;
constexpr std::uint8_t pinDrive = 0x70;
constexpr std::uint8_t pinState = 0x71;
} // namespace hostcommand

// Parameters of the reset command in E2 and E3.
constexpr std::uint8_t resetHold = 0x02;
constexpr std::uint8_t resetRelease = 0x20;

// Bits of REG_CPURESET.
constexpr std::uint32_t coprocessorInReset = 1;
constexpr std::uint32_t allInReset = 7;

constexpr std::uint32_t swapAtLine = 1;
constexpr std::uint32_t twoDummyBytes = 4; // in REG_SPI_WIDTH

namespace interrupt {
constexpr std::uint32_t swap = 0x01;
constexpr std::uint32_t touch = 0x02;
constexpr std::uint32_t tag = 0x04;
constexpr std::uint32_t sound = 0x08;
constexpr std::uint32_t playback = 0x10;
constexpr std::uint32_t ringEmpty = 0x20;
constexpr std::uint32_t command = 0x40;
} // namespace interrupt

// The line that switches the panel on.
constexpr std::uint32_t displayLineE1 = 0x80;
constexpr std::uint32_t displayLine = 0x8000;

constexpr std::uint32_t flashDetached = 1;
constexpr std::uint32_t flashBasic = 2;
constexpr std::uint32_t flashSizeRegister = 0x309024; // in MiB
constexpr std::size_t mebibyte = 1048576;

} // namespace

Controller::Chip::Chip(Generation generation, const Options& options)
    : m_generation(generation), m_memory(generation, romImage(generation)), m_registers(generation),
      m_bus(generation, m_memory, *this), m_host(*this), m_power(generation), m_touch(generation),
      m_flash(generation == Generation::E3 ? options.flashSize : 0),
      m_display(generation, options.vectors, m_memory, m_registers,
                [this](const std::string& text) { complain(text); }),
      m_coprocessor(generation, m_memory, m_bus, m_registers, m_flash, *this) {}

// --- bus door

void Controller::Chip::setPowerDown(bool high, Nanoseconds now) {
    advance(now);
    if (m_observer && high != m_powerDownHigh) {
        m_observer->pinChanged(Pin::PowerDown, high, now);
    }
    m_powerDownHigh = high;
    if (!high) {
        m_power.pinLow();
        powerLost();
    } else {
        m_power.pinHigh();
    }
}

void Controller::Chip::setChipSelect(bool high, Nanoseconds now) {
    advance(now);
    if (high != m_host.isSelected()) {
        return; // no edge
    }
    if (m_observer && !high) {
        m_observer->pinChanged(Pin::ChipSelect, high, now);
    }
    if (!high) {
        m_host.select();
        m_transaction.start = now;
        m_transaction.sent.clear(); // keeps the room: there are many thousands a second
        m_transaction.received.clear();
        return;
    }
    m_host.deselect();
    if (m_observer) {
        m_transaction.end = now;
        m_observer->transactionEnded(m_transaction);
        m_observer->pinChanged(Pin::ChipSelect, high, now);
    }
}

std::uint8_t Controller::Chip::exchange(std::uint8_t sent, Nanoseconds now) {
    advance(now);
    m_lastByteAt = now;
    std::uint8_t received = m_host.exchange(sent);
    if (!m_answering) {
        received = 0;
    }
    if (m_observer && m_host.isSelected()) {
        m_transaction.sent.push_back(sent);
        m_transaction.received.push_back(received);
    }
    return received;
}

std::uint8_t Controller::Chip::hostRead(std::uint32_t address) {
    return m_power.isRunning() ? m_bus.read8(address) : std::uint8_t{0};
}

void Controller::Chip::hostWrite(std::uint32_t address, std::uint8_t value) {
    if (m_power.isRunning()) {
        m_bus.write8(address, value);
    }
}

void Controller::Chip::hostBurstEnded() {
    m_bus.endBurst();
    runCoprocessor(); // the burst may have filled the media FIFO
}

std::uint32_t Controller::Chip::nextHostWrite(std::uint32_t address) const {
    return m_bus.nextWrite(address);
}

std::size_t Controller::Chip::dummyBytes() const {
    return (m_registers[Register::SpiWidth] & twoDummyBytes) ? 2 : 1;
}

// --- power

// At its own pace a host raises chip select right behind the last byte of a command. A board may
// hear of the level much later, which is no reason for the chip to start late.
void Controller::Chip::hostCommand(std::uint8_t command, std::uint8_t parameter) {
    if (m_power.isOff()) {
        return;
    }
    switch (command) {
    case hostcommand::active:
        m_power.active(m_lastByteAt);
        break;
    case hostcommand::standby:
    case hostcommand::sleep:
        m_power.sleep();
        break;
    case hostcommand::powerDown:
    case hostcommand::powerDownToo:
        m_power.powerDown();
        powerLost();
        break;
    case hostcommand::clockSelect:
    case hostcommand::clockSelectToo:
        m_power.selectClock(command, parameter);
        break;
    case hostcommand::reset:
        if (parameter == resetHold) {
            m_power.holdReset();
        } else if (parameter == resetRelease) {
            m_power.releaseReset(m_lastByteAt);
        } else {
            m_power.reset(m_lastByteAt);
        }
        break;
    case hostcommand::externalClock:
    case hostcommand::internalClock:
    case hostcommand::romsOff:
    case hostcommand::pinDrive:
    case hostcommand::pinState:
        break; // nothing that could be seen from outside
    default:
        complain("unknown host command " + hostCommandName(command));
        break;
    }
    followPower();
}

// RAM does not outlive the supply, and neither does what the panel shows.
void Controller::Chip::powerLost() {
    m_memory.clear();
    m_registers.reset();
    m_display.reset();
    m_coprocessor.reset();
    if (m_observer) {
        m_observer->powerLost();
    }
    followPower();
}

void Controller::Chip::followPower() {
    followScan();
    if (!m_power.isRunning()) {
        m_interruptAt = never;
    }
}

void Controller::Chip::powerEvent() {
    switch (m_power.takeEvent()) {
    case Power::Event::Started:
        started();
        break;
    case Power::Event::EnginesRun:
        m_registers.set(Register::CpuReset, 0);
        runCoprocessor();
        break;
    case Power::Event::Woken:
        followScan();
        runCoprocessor();
        break;
    }
}

void Controller::Chip::started() {
    m_registers.reset();
    m_registers.set(Register::CpuReset, allInReset);
    m_registers.set(Register::Frequency, m_power.clockFrequency());
    m_memory.putChipId(m_identity.value_or(m_memory.layout().chipId));
    if (m_generation == Generation::E3) {
        m_registers.set(Register::FlashStatus, m_flash.isFitted() ? flashBasic : flashDetached);
        m_memory.write32(flashSizeRegister, static_cast<std::uint32_t>(m_flash.size() / mebibyte));
    }
    m_coprocessor.reset();
    m_display.reset();
}

void Controller::Chip::setIdentity(std::optional<std::uint32_t> chipId) {
    m_identity = chipId;
    if (m_power.isRunning()) {
        m_memory.putChipId(m_identity.value_or(m_memory.layout().chipId));
    }
}

// --- time

Nanoseconds Controller::Chip::nextEvent() const {
    return std::min({m_power.nextEvent(), m_timing.frameEnd(), m_lineSwapAt, m_interruptAt,
                     coprocessorResumesAt()});
}

void Controller::Chip::advance(Nanoseconds now) {
    for (Nanoseconds next = nextEvent(); next <= now && next != never; next = nextEvent()) {
        m_now = std::max(m_now, next);
        takeEvent();
    }
    m_now = std::max(m_now, now);
}

void Controller::Chip::takeEvent() {
    if (m_power.nextEvent() <= m_now) {
        powerEvent();
    } else if (m_lineSwapAt <= m_now) {
        swapNow();
        runCoprocessor();
    } else if (m_interruptAt <= m_now) {
        m_interruptAt = never;
        raise(interrupt::command);
    } else if (coprocessorResumesAt() <= m_now) {
        runCoprocessor();
    } else {
        frameEnded();
    }
}

Nanoseconds Controller::Chip::frameDuration() const {
    return m_power.isRunning() ? FrameTiming::duration(m_registers, m_power.clockFrequency()) : 0;
}

void Controller::Chip::followScan() {
    const bool wasScanning = m_timing.isScanning();
    m_timing.follow(m_now, frameDuration());
    if (!wasScanning && m_timing.isScanning()) {
        m_touch.frameBegins();
    }
    if (!m_timing.isScanning() && isSwapPending()) {
        swapNow();
    }
}

void Controller::Chip::frameEnded() {
    m_display.scanned();
    noteTouch();
    m_registers.set(Register::Frames, framesScanned() + 1);
    if (m_observer) {
        m_observer->frameScanned(framesScanned(), m_now);
    }
    if (isSwapPending()) {
        swapNow();
    }
    m_timing.nextFrame(frameDuration());
    m_touch.frameBegins();
    if (coprocessorRuns()) {
        m_coprocessor.frameEnded();
    }
}

void Controller::Chip::noteTouch() {
    const bool wasTouched = m_registers[Register::TouchScreenXy] != untouchedScreenXy;
    const std::uint32_t tagBefore = m_registers[Register::TouchTag];
    const Touches touches = m_touch.sample(m_registers);
    for (std::size_t i = 0; i < touches.size(); ++i) {
        const std::uint32_t tag = touches[i] ? m_display.tagAt(touches[i]->x, touches[i]->y) : 0;
        m_registers.set(tagRegisters[i], tag);
    }
    if (!wasTouched && touches[0]) {
        raise(interrupt::touch);
    }
    if (m_registers[Register::TouchTag] != tagBefore) {
        raise(interrupt::tag);
    }
}

// --- swap

void Controller::Chip::requestSwap(std::uint32_t kind) {
    m_lineSwapAt = never; // whatever was asked for before
    if (!isSwapPending()) {
        return;
    }
    if (!isScanning()) {
        swapNow();
    } else if (kind == swapAtLine) {
        m_lineSwapAt = m_now + FrameTiming::lineDuration(m_registers, m_power.clockFrequency());
    }
}

void Controller::Chip::swapNow() {
    m_lineSwapAt = never;
    m_registers.set(Register::DlSwap, 0);
    m_memory.exchangeDisplayLists();
    if (m_observer) {
        m_observer->listsExchanged();
    }
    raise(interrupt::swap);
    if (!m_coprocessor.animates()) {
        DisplayList list;
        m_memory.readShownList(list);
        showList(list);
    }
}

void Controller::Chip::showList(const DisplayList& list) {
    m_display.show(list);
    ++m_listsSwapped;
    if (m_observer) {
        m_observer->listSwapped(m_now);
    }
}

// --- registers

std::uint32_t Controller::Chip::peekRegister(Register id) const {
    switch (id) {
    case Register::Clock:
        return static_cast<std::uint32_t>(m_power.clocksSinceStart(m_now));
    case Register::Tag:
        lookAtPicture();
        return m_display.tagAt(static_cast<int>(m_registers[Register::TagX]),
                               static_cast<int>(m_registers[Register::TagY]));
    case Register::CmdbSpace:
        return m_coprocessor.freeBytes();
    default:
        return m_registers[id];
    }
}

const Frame& Controller::Chip::lookAtPicture() const {
    const Frame& frame = m_display.picture();
    m_pictureWork += frame.work;
    return frame;
}

std::uint32_t Controller::Chip::readRegister(Register id) {
    const std::uint32_t value = peekRegister(id);
    if (id == Register::IntFlags) {
        m_registers.set(Register::IntFlags, 0); // reading clears them
    } else if (id == Register::TouchTag) {
        ++m_touchTagReads;
        m_lastTouchTagRead = static_cast<std::uint8_t>(value);
    }
    return value;
}

void Controller::Chip::writeRegister(Register id, std::uint32_t value) {
    m_registers.set(id, value);
    switch (id) {
    case Register::Pclk:
    case Register::HCycle:
    case Register::VCycle:
        followScan();
        break;
    case Register::DlSwap:
        requestSwap(value);
        break;
    case Register::CpuReset:
        m_coprocessor.hold((value & coprocessorInReset) != 0);
        runCoprocessor();
        break;
    case Register::CmdDl:
        m_coprocessor.listMoved();
        break;
    case Register::CmdbWrite:
        if (m_observer) {
            m_observer->ringFed(m_registers[Register::CmdWrite]);
        }
        m_coprocessor.feed(value);
        runCoprocessor();
        break;
    case Register::CmdRead:
    case Register::CmdWrite:
        runCoprocessor();
        break;
    case Register::Play: // sounds are not modelled: over at once
        m_registers.set(Register::Play, 0);
        raise(interrupt::sound);
        break;
    case Register::PlaybackPlay:
        m_registers.set(Register::PlaybackPlay, 0);
        raise(interrupt::playback);
        break;
    case Register::Rotate:
        if (m_generation == Generation::E1 && value > 1) {
            complain("E1 turns the picture upside down only (REG_ROTATE)");
        }
        break;
    default:
        break;
    }
}

void Controller::Chip::raise(std::uint32_t interruptBits) {
    m_registers.set(Register::IntFlags, m_registers[Register::IntFlags] | interruptBits);
}

// --- the rest

void Controller::Chip::runCoprocessor() {
    if (coprocessorRuns()) {
        m_coprocessor.run();
    }
}

void Controller::Chip::setCoprocessorStalled(bool stalled) {
    m_coprocessorStalled = stalled;
    runCoprocessor();
}

void Controller::Chip::setCoprocessorHalted(bool halted) {
    m_coprocessorHalted = halted;
    runCoprocessor();
}

bool Controller::Chip::stepCoprocessor() {
    return coprocessorCanRun() && m_coprocessor.runOne();
}

void Controller::Chip::commandTaken(const RingCommand& command) {
    if (m_observer) {
        m_observer->commandTaken(command, m_now);
    }
}

void Controller::Chip::listWordPut(std::size_t index, std::uint32_t word) {
    if (m_observer) {
        m_observer->listWordPut(index, word);
    }
}

void Controller::Chip::bytesWritten(std::uint32_t address, std::uint32_t count) {
    if (m_observer) {
        m_observer->bytesWritten(address, count);
    }
}

void Controller::Chip::bytesCopied(std::uint32_t destination, std::uint32_t source,
                                   std::uint32_t count) {
    if (m_observer) {
        m_observer->bytesCopied(destination, source, count);
    }
}

void Controller::Chip::breakCoprocessor() {
    if (m_power.enginesRun()) {
        m_coprocessor.breakDown();
    }
}

void Controller::Chip::ringEmptied() {
    raise(interrupt::ringEmpty);
}

void Controller::Chip::complainOfAccess(const char* what, std::uint32_t address) {
    complain(std::string(what) + " " + memoryName(m_generation, address));
}

void Controller::Chip::complain(const std::string& text) {
    if (m_observer) {
        m_observer->complained(text);
    }
}

PanelState Controller::Chip::panel() const {
    PanelState state;
    state.powered = !m_power.isOff();
    state.awake = m_power.isRunning();
    state.scanning = isScanning();
    const std::uint32_t driven =
        m_generation == Generation::E1
            ? m_registers[Register::Gpio] & m_registers[Register::GpioDir] & displayLineE1
            : m_registers[Register::Gpiox] & m_registers[Register::GpioxDir] & displayLine;
    state.displayOn = m_power.isRunning() && driven != 0;
    state.backlight = std::min(static_cast<int>(m_registers[Register::PwmDuty]), 128);
    if (const Nanoseconds duration = frameDuration()) {
        state.framesPerSecond = 1e9 / static_cast<double>(duration);
    }
    return state;
}

} // namespace controller
