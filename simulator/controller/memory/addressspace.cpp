#include "addressspace.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>
#include <zlib.h>

namespace controller {

namespace {

// Addresses reported once each; a host gone wild is told so only this often.
constexpr std::size_t reportLimit = 200;

std::uint32_t withByte(std::uint32_t word, std::uint32_t address, std::uint8_t value) {
    const std::uint32_t shift = address % 4 * 8;
    return (word & ~(0xFFU << shift)) | static_cast<std::uint32_t>(value) << shift;
}

std::uint8_t byteOf(std::uint32_t word, std::uint32_t address) {
    return static_cast<std::uint8_t>(word >> address % 4 * 8);
}

std::uint32_t clampedCount(std::uint32_t count) {
    return std::min(count, addressMask + 1);
}

} // namespace

AddressSpace::AddressSpace(Generation generation, MemoryMap& memory, RegisterBehaviour& behaviour)
    : m_generation(generation), m_memory(memory), m_behaviour(behaviour) {}

void AddressSpace::complainOnce(std::uint32_t address, const char* what) {
    if (m_reported.size() < reportLimit && m_reported.insert(address).second) {
        m_behaviour.complainOfAccess(what, address);
    }
}

std::uint8_t AddressSpace::read8(std::uint32_t address) {
    if (!isRegister(address)) {
        if (!m_memory.isMapped(address)) {
            complainOnce(address, "read of unmapped address");
        }
        return m_memory.read8(address);
    }
    const RegisterInfo* info = registerAt(m_generation, address);
    if (!info) {
        complainOnce(address, "read of unknown register");
        return 0;
    }
    if (m_latched != info) {
        m_latched = info;
        m_latchedValue = m_behaviour.readRegister(info->id);
    }
    return byteOf(m_latchedValue, address);
}

void AddressSpace::write8(std::uint32_t address, std::uint8_t value) {
    if (!isRegister(address)) {
        commit();
        if (!m_memory.isMapped(address)) {
            complainOnce(address, "write to unmapped address");
        }
        m_memory.write8(address, value);
        return;
    }
    const RegisterInfo* info = registerAt(m_generation, address);
    if (info != m_pending) {
        commit();
    }
    if (!info || info->access == Access::ReadOnly) {
        complainOnce(address, info ? "write to read-only register" : "write to unknown register");
        return;
    }
    if (!m_pending) {
        m_pending = info;
        m_pendingValue = m_behaviour.peekRegister(info->id);
    }
    m_pendingValue = withByte(m_pendingValue, address, value);
    if (address % 4 == 3) {
        commit();
    }
}

void AddressSpace::commit() {
    if (m_pending) {
        const RegisterInfo* info = m_pending;
        m_pending = nullptr; // first: what the write causes may come back here
        m_behaviour.writeRegister(info->id, m_pendingValue);
    }
}

void AddressSpace::endBurst() {
    commit();
    m_latched = nullptr;
}

std::uint32_t AddressSpace::nextWrite(std::uint32_t address) const {
    const MemoryLayout& layout = m_memory.layout();
    const std::uint32_t next = (address + 1) & addressMask;
    if (next == layout.ring.end()) {
        return layout.ring.base;
    }
    const RegisterInfo* info = registerAt(m_generation, address);
    if (info && info->id == Register::CmdbWrite && next % 4 == 0) {
        return next - 4;
    }
    return next;
}

std::uint8_t AddressSpace::peek8(std::uint32_t address) const {
    if (!isRegister(address)) {
        return m_memory.read8(address);
    }
    const RegisterInfo* info = registerAt(m_generation, address);
    return info ? byteOf(m_behaviour.peekRegister(info->id), address) : std::uint8_t{0};
}

std::uint32_t AddressSpace::peek32(std::uint32_t address) const {
    std::uint32_t value = 0;
    for (std::uint32_t i = 0; i < 4; ++i) {
        value |= static_cast<std::uint32_t>(peek8(address + i)) << 8 * i;
    }
    return value;
}

std::uint32_t AddressSpace::read32(std::uint32_t address) {
    m_work += 4 * registerByte;
    std::uint32_t value = 0;
    for (std::uint32_t i = 0; i < 4; ++i) {
        value |= static_cast<std::uint32_t>(read8((address + i) & addressMask)) << 8 * i;
    }
    m_latched = nullptr;
    return value;
}

void AddressSpace::write32(std::uint32_t address, std::uint32_t value) {
    m_work += 4 * registerByte;
    for (std::uint32_t i = 0; i < 4; ++i) {
        write8((address + i) & addressMask, static_cast<std::uint8_t>(value >> 8 * i));
    }
    commit();
}

MemoryMap::Stretch AddressSpace::stretchAt(std::uint32_t address) const {
    MemoryMap::Stretch stretch = m_memory.stretchAt(address);
    const Span registers = m_memory.layout().registers;
    if (address < registers.base) {
        stretch.length = std::min(stretch.length, registers.base - address);
    }
    return stretch;
}

void AddressSpace::writeBytes(std::uint32_t address, const std::uint8_t* bytes, std::size_t count) {
    store(address, bytes, count);
    m_behaviour.bytesWritten(address & addressMask, static_cast<std::uint32_t>(count));
}

void AddressSpace::store(std::uint32_t address, const std::uint8_t* bytes, std::size_t count) {
    while (count > 0) {
        address &= addressMask;
        std::uint32_t length = 1;
        if (isRegister(address)) {
            m_work += registerByte;
            write8(address, *bytes);
        } else {
            const MemoryMap::Stretch stretch = stretchAt(address);
            length = static_cast<std::uint32_t>(std::min<std::size_t>(count, stretch.length));
            m_work += length;
            if (stretch.bytes && stretch.writable) {
                std::memcpy(stretch.bytes, bytes, length);
                m_memory.noteChanges(address, length);
            }
        }
        address += length;
        bytes += length;
        count -= length;
    }
    commit();
}

void AddressSpace::fill(std::uint32_t address, std::uint8_t value, std::uint32_t count) {
    count = clampedCount(count);
    m_behaviour.bytesWritten(address & addressMask, count);
    while (count > 0) {
        address &= addressMask;
        std::uint32_t length = 1;
        if (isRegister(address)) {
            m_work += registerByte;
            write8(address, value);
        } else {
            const MemoryMap::Stretch stretch = stretchAt(address);
            length = std::min(count, stretch.length);
            m_work += length;
            if (stretch.bytes && stretch.writable) {
                std::memset(stretch.bytes, value, length);
                m_memory.noteChanges(address, length);
            }
        }
        address += length;
        count -= length;
    }
    commit();
}

void AddressSpace::copy(std::uint32_t destination, std::uint32_t source, std::uint32_t count) {
    // Through a buffer, so that overlapping areas come out right.
    count = clampedCount(count);
    m_work += count;
    std::vector<std::uint8_t> bytes(count);
    for (std::uint32_t done = 0; done < count;) {
        const std::uint32_t address = (source + done) & addressMask;
        std::uint32_t length = 1;
        if (isRegister(address)) {
            m_work += registerByte;
            bytes[done] = read8(address);
        } else {
            const MemoryMap::Stretch stretch = stretchAt(address);
            length = std::min(count - done, stretch.length);
            if (stretch.bytes) {
                std::memcpy(bytes.data() + done, stretch.bytes, length);
            }
        }
        done += length;
    }
    m_latched = nullptr;
    store(destination, bytes.data(), bytes.size());
    m_behaviour.bytesCopied(destination & addressMask, source & addressMask, count);
}

void AddressSpace::peekBytes(std::uint32_t address, std::uint8_t* bytes, std::size_t count) const {
    m_work += static_cast<std::int64_t>(count);
    while (count > 0) {
        address &= addressMask;
        std::uint32_t length = 1;
        if (isRegister(address)) {
            m_work += registerByte;
            *bytes = peek8(address);
        } else {
            const MemoryMap::Stretch stretch = stretchAt(address);
            length = static_cast<std::uint32_t>(std::min<std::size_t>(count, stretch.length));
            if (stretch.bytes) {
                std::memcpy(bytes, stretch.bytes, length);
            } else {
                std::memset(bytes, 0, length);
            }
        }
        address += length;
        bytes += length;
        count -= length;
    }
}

std::uint32_t AddressSpace::crc32(std::uint32_t address, std::uint32_t count) {
    count = clampedCount(count);
    m_work += count;
    uLong crc = ::crc32(0, nullptr, 0);
    std::array<std::uint8_t, 4096> piece{};
    for (std::uint32_t done = 0; done < count;) {
        const auto length =
            static_cast<std::uint32_t>(std::min<std::size_t>(count - done, piece.size()));
        peekBytes((address + done) & addressMask, piece.data(), length);
        crc = ::crc32(crc, piece.data(), length);
        done += length;
    }
    return static_cast<std::uint32_t>(crc);
}

} // namespace controller
