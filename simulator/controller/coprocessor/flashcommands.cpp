#include "coprocessor.h"

#include <algorithm>
#include <array>
#include <vector>

// The coprocessor's commands on the flash chip (E3).
//
// The chip is detached, attached with basic or attached with fast transfers; REG_FLASH_STATUS says
// which. Whole operations need it attached, its own SPI commands detached; otherwise nothing
// happens but a complaint. A wrong alignment is a fault.

namespace controller {

namespace {

namespace status {
constexpr std::uint32_t detached = 1;
constexpr std::uint32_t basic = 2;
constexpr std::uint32_t full = 3;
} // namespace status

// What FLASHFAST answers.
constexpr std::uint32_t fastDone = 0;
constexpr std::uint32_t fastNotAttached = 0xE001;

constexpr std::uint32_t readAlignment = 64;

} // namespace

bool Coprocessor::requireAttached() {
    if (m_registers[Register::FlashStatus] >= status::basic) {
        return true;
    }
    m_port.complain(std::string(m_command->name) + ": the flash is not attached");
    return false;
}

bool Coprocessor::requireDetached() {
    if (m_registers[Register::FlashStatus] == status::detached) {
        return true;
    }
    m_port.complain(std::string(m_command->name) + ": the flash is not detached");
    return false;
}

Coprocessor::Outcome Coprocessor::flashAttach() {
    if (m_registers[Register::FlashStatus] == status::detached && m_flash.isFitted()) {
        m_flash.deselect();
        m_registers.set(Register::FlashStatus, status::basic);
    }
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::flashDetach() {
    m_registers.set(Register::FlashStatus, status::detached);
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::flashFast() {
    const bool attached = m_registers[Register::FlashStatus] >= status::basic;
    if (attached) {
        m_registers.set(Register::FlashStatus, status::full);
    }
    putResult(0, attached ? fastDone : fastNotAttached);
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::flashErase() {
    if (requireAttached()) {
        m_flash.erase(0, m_flash.size());
    }
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::flashWrite() {
    if (argument(0) % SerialFlash::pageSize != 0 || argument(1) % SerialFlash::pageSize != 0) {
        fault("flash address or count is not a multiple of 256");
    }
    const bool attached = requireAttached();
    m_sink = [this, attached, address = std::size_t{argument(0)}](const std::uint8_t* bytes,
                                                                  std::size_t count) mutable {
        for (std::size_t i = 0; i < count && attached; ++i) {
            m_flash.program(address++, bytes[i]);
        }
        return false;
    };
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::flashRead() {
    if (argument(1) % readAlignment != 0 || argument(0) % 4 != 0 || argument(2) % 4 != 0) {
        fault("flash address is not a multiple of 64, or memory address or count not of 4");
    }
    if (!requireAttached()) {
        return Outcome::Done;
    }
    std::vector<std::uint8_t> bytes(std::min(argument(2), addressMask + 1));
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = m_flash.read(argument(1) + i);
    }
    m_bus.writeBytes(argument(0), bytes.data(), bytes.size());
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::flashUpdate() {
    if (argument(0) % SerialFlash::sectorSize != 0 || argument(1) % 4 != 0 ||
        argument(2) % SerialFlash::sectorSize != 0) {
        fault("flash address or count is not a multiple of 4096, or memory address not of 4");
    }
    if (!requireAttached()) {
        return Outcome::Done;
    }
    const std::uint32_t count = std::min(argument(2), addressMask + 1);
    std::array<std::uint8_t, SerialFlash::sectorSize> sector{};
    for (std::uint32_t done = 0; done < count; done += SerialFlash::sectorSize) {
        for (std::uint32_t i = 0; i < sector.size(); ++i) {
            sector[i] = m_bus.peek8((argument(1) + done + i) & addressMask);
        }
        m_flash.updateSector(std::size_t{argument(0)} + done, sector.data());
    }
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::flashSpiDesel() {
    if (requireDetached()) {
        m_flash.deselect();
    }
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::flashSpiTx() {
    const bool detached = requireDetached();
    m_sink = [this, detached](const std::uint8_t* bytes, std::size_t count) {
        for (std::size_t i = 0; i < count && detached; ++i) {
            m_flash.exchange(bytes[i]);
        }
        return false;
    };
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::flashSpiRx() {
    if (!requireDetached()) {
        return Outcome::Done;
    }
    std::vector<std::uint8_t> bytes(std::min(argument(1), addressMask + 1));
    for (std::uint8_t& byte : bytes) {
        byte = m_flash.exchange(0);
    }
    m_bus.writeBytes(argument(0), bytes.data(), bytes.size());
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::flashSource() {
    m_flashSource = argument(0);
    return Outcome::Done;
}

// APPEND from flash.
Coprocessor::Outcome Coprocessor::appendF() {
    if (argument(0) % readAlignment != 0) {
        fault("flash address is not a multiple of 64");
    }
    if (requireAttached()) {
        appendBytes([this](std::uint32_t i) { return m_flash.read(std::size_t{argument(0)} + i); },
                    argument(1));
    }
    return Outcome::Done;
}

} // namespace controller
