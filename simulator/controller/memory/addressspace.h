#pragma once

#include "memorymap.h"
#include "registers.h"

#include <cstddef>
#include <cstdint>
#include <set>

namespace controller {

// What registers do beyond holding a value.
class RegisterBehaviour {
public:
    virtual ~RegisterBehaviour() = default;
    // The value a reader gets; `peek` only looks, a real read may change something.
    virtual std::uint32_t readRegister(Register id) = 0;
    virtual std::uint32_t peekRegister(Register id) const = 0;
    // The register takes `value`.
    virtual void writeRegister(Register id, std::uint32_t value) = 0;
    // An access to `address` that cannot be: `what` says which, "read of unmapped address".
    virtual void complainOfAccess(const char* what, std::uint32_t address) = 0;
    // A whole operation has written `count` bytes at `address` and on.
    virtual void bytesWritten(std::uint32_t /*address*/, std::uint32_t /*count*/) {}
    virtual void bytesCopied(std::uint32_t /*destination*/, std::uint32_t /*source*/,
                             std::uint32_t /*count*/) {}
};

// The chip's 22-bit address space as its two users, the host and the coprocessor, see it: memory,
// and registers with what they do.
//
// Registers are 32-bit words. A byte read latches its whole word, so that a register read in
// pieces is coherent; written bytes take effect together, when the word is complete or the burst
// ends, so that a register never acts on half a value.
class AddressSpace {
public:
    AddressSpace(Generation generation, MemoryMap& memory, RegisterBehaviour& behaviour);

    std::uint8_t read8(std::uint32_t address);
    void write8(std::uint32_t address, std::uint8_t value);
    // A burst of reads or writes is over.
    void endBurst();
    // Where a burst of writes goes on after `address`: the ring continues at its start, the
    // register that feeds the ring takes word after word.
    std::uint32_t nextWrite(std::uint32_t address) const;
    static std::uint32_t nextRead(std::uint32_t address) { return (address + 1) & addressMask; }

    std::uint8_t peek8(std::uint32_t address) const;
    std::uint32_t peek32(std::uint32_t address) const;

    // Whole operations, as the coprocessor makes them. Counts beyond the address space are cut.
    std::uint32_t read32(std::uint32_t address);
    void write32(std::uint32_t address, std::uint32_t value);
    void writeBytes(std::uint32_t address, const std::uint8_t* bytes, std::size_t count);
    void fill(std::uint32_t address, std::uint8_t value, std::uint32_t count);
    void copy(std::uint32_t destination, std::uint32_t source, std::uint32_t count);
    std::uint32_t crc32(std::uint32_t address, std::uint32_t count);
    // Bytes at `address` and on, without side effects on the chip.
    void peekBytes(std::uint32_t address, std::uint8_t* bytes, std::size_t count) const;

    // What the whole operations have cost so far, in bytes moved.
    std::int64_t work() const { return m_work; }

private:
    // A byte of a register costs as many of memory.
    static constexpr std::int64_t registerByte = 50;

    bool isRegister(std::uint32_t address) const {
        return m_memory.layout().registers.contains(address);
    }
    void store(std::uint32_t address, const std::uint8_t* bytes, std::size_t count);
    MemoryMap::Stretch stretchAt(std::uint32_t address) const;
    void commit();
    void complainOnce(std::uint32_t address, const char* what);

    Generation m_generation;
    MemoryMap& m_memory;
    RegisterBehaviour& m_behaviour;

    const RegisterInfo* m_latched = nullptr; // the register being read, and its value
    std::uint32_t m_latchedValue = 0;
    const RegisterInfo* m_pending = nullptr; // the register being written, and its bytes so far
    std::uint32_t m_pendingValue = 0;
    std::set<std::uint32_t> m_reported; // addresses complained about
    mutable std::int64_t m_work = 0;
};

} // namespace controller
