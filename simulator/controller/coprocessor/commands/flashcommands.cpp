#include "flashcommands.h"

#include "commandfault.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

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

// By FLASHERASE.
constexpr std::size_t erasedAtATime = 1048576;

} // namespace

bool requireAttachedFlash(Machine& machine, const Call& call) {
    if (machine.registers[Register::FlashStatus] >= status::basic) {
        return true;
    }
    machine.port.complain(std::string(call.name()) + ": the flash is not attached");
    return false;
}

bool FlashCommands::requireDetached(const Call& call) {
    if (m_machine.registers[Register::FlashStatus] == status::detached) {
        return true;
    }
    m_machine.port.complain(std::string(call.name()) + ": the flash is not detached");
    return false;
}

void FlashCommands::addTo(CommandSet& set) {
    set.add(Command::FlashAttach, *this, &FlashCommands::attach);
    set.add(Command::FlashDetach, *this, &FlashCommands::detach);
    set.add(Command::FlashFast, *this, &FlashCommands::fast);
    set.add(Command::FlashErase, *this, &FlashCommands::erase);
    set.add(Command::FlashWrite, *this, &FlashCommands::write);
    set.add(Command::FlashRead, *this, &FlashCommands::read);
    set.add(Command::FlashUpdate, *this, &FlashCommands::update);
    set.add(Command::FlashSpiDesel, *this, &FlashCommands::spiDesel);
    set.add(Command::FlashSpiTx, *this, &FlashCommands::spiTx);
    set.add(Command::FlashSpiRx, *this, &FlashCommands::spiRx);
}

void FlashCommands::attach(const Call&) {
    if (m_machine.registers[Register::FlashStatus] == status::detached &&
        m_machine.flash.isFitted()) {
        m_machine.flash.deselect();
        m_machine.registers.set(Register::FlashStatus, status::basic);
    }
}

void FlashCommands::detach(const Call&) {
    m_machine.registers.set(Register::FlashStatus, status::detached);
}

void FlashCommands::fast(const Call& call) {
    const bool attached = m_machine.registers[Register::FlashStatus] >= status::basic;
    if (attached) {
        m_machine.registers.set(Register::FlashStatus, status::full);
    }
    call.putResult(m_machine.memory, 0, attached ? fastDone : fastNotAttached);
}

Outcome FlashCommands::erase(const Call& call) {
    if (!requireAttachedFlash(m_machine, call)) {
        return Progress::Done;
    }
    return [this, address = std::size_t{0}]() mutable {
        m_machine.flash.erase(address, erasedAtATime);
        address += erasedAtATime;
        return address < m_machine.flash.size() ? Progress::Working : Progress::Done;
    };
}

Outcome FlashCommands::write(const Call& call) {
    if (call[0] % SerialFlash::pageSize != 0 || call[1] % SerialFlash::pageSize != 0) {
        fault("flash address or count is not a multiple of 256");
    }
    const bool attached = requireAttachedFlash(m_machine, call);
    return [this, attached, address = std::size_t{call[0]}](const std::uint8_t* bytes,
                                                            std::size_t count) mutable {
        for (std::size_t i = 0; i < count && attached; ++i) {
            m_machine.flash.program(address++, bytes[i]);
        }
        return false;
    };
}

void FlashCommands::read(const Call& call) {
    if (call[1] % flashReadAlignment != 0 || call[0] % 4 != 0 || call[2] % 4 != 0) {
        fault("flash address is not a multiple of 64, or memory address or count not of 4");
    }
    if (!requireAttachedFlash(m_machine, call)) {
        return;
    }
    std::vector<std::uint8_t> bytes(std::min(call[2], addressMask + 1));
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = m_machine.flash.read(call[1] + i);
    }
    m_machine.bus.writeBytes(call[0], bytes.data(), bytes.size());
}

void FlashCommands::update(const Call& call) {
    if (call[0] % SerialFlash::sectorSize != 0 || call[1] % 4 != 0 ||
        call[2] % SerialFlash::sectorSize != 0) {
        fault("flash address or count is not a multiple of 4096, or memory address not of 4");
    }
    if (!requireAttachedFlash(m_machine, call)) {
        return;
    }
    const std::uint32_t count = std::min(call[2], addressMask + 1);
    std::array<std::uint8_t, SerialFlash::sectorSize> sector{};
    for (std::uint32_t done = 0; done < count; done += SerialFlash::sectorSize) {
        m_machine.bus.peekBytes((call[1] + done) & addressMask, sector.data(), sector.size());
        m_machine.flash.updateSector(std::size_t{call[0]} + done, sector.data());
    }
}

void FlashCommands::spiDesel(const Call& call) {
    if (requireDetached(call)) {
        m_machine.flash.deselect();
    }
}

Outcome FlashCommands::spiTx(const Call& call) {
    return [this, detached = requireDetached(call)](const std::uint8_t* bytes, std::size_t count) {
        for (std::size_t i = 0; i < count && detached; ++i) {
            m_machine.flash.exchange(bytes[i]);
        }
        return false;
    };
}

void FlashCommands::spiRx(const Call& call) {
    if (!requireDetached(call)) {
        return;
    }
    std::vector<std::uint8_t> bytes(std::min(call[1], addressMask + 1));
    for (std::uint8_t& byte : bytes) {
        byte = m_machine.flash.exchange(0);
    }
    m_machine.bus.writeBytes(call[0], bytes.data(), bytes.size());
}

} // namespace controller
