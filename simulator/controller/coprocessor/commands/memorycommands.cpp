#include "memorycommands.h"

namespace controller {

void MemoryCommands::addTo(CommandSet& set) {
    set.add(Command::MemWrite, *this, &MemoryCommands::memWrite);
    set.add(Command::MemSet, *this, &MemoryCommands::memSet);
    set.add(Command::MemZero, *this, &MemoryCommands::memZero);
    set.add(Command::MemCpy, *this, &MemoryCommands::memCpy);
    set.add(Command::MemCrc, *this, &MemoryCommands::memCrc);
    set.add(Command::RegRead, *this, &MemoryCommands::regRead);
}

Outcome MemoryCommands::memWrite(const Call& call) {
    return [this, address = call[0]](const std::uint8_t* bytes, std::size_t count) mutable {
        m_machine.bus.writeBytes(address, bytes, count);
        address += static_cast<std::uint32_t>(count);
        return false;
    };
}

void MemoryCommands::memSet(const Call& call) {
    m_machine.bus.fill(call[0], static_cast<std::uint8_t>(call[1]), call[2]);
}

void MemoryCommands::memZero(const Call& call) {
    m_machine.bus.fill(call[0], 0, call[1]);
}

void MemoryCommands::memCpy(const Call& call) {
    m_machine.bus.copy(call[0], call[1], call[2]);
}

void MemoryCommands::memCrc(const Call& call) {
    call.putResult(m_machine.memory, 2, m_machine.bus.crc32(call[0], call[1]));
}

void MemoryCommands::regRead(const Call& call) {
    call.putResult(m_machine.memory, 1, m_machine.bus.read32(call[0]));
}

} // namespace controller
