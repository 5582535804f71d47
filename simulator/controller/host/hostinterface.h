#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace controller {

// What the host interface reaches inside the chip.
class HostTarget {
public:
    virtual ~HostTarget() = default;
    virtual std::uint8_t hostRead(std::uint32_t address) = 0;
    virtual void hostWrite(std::uint32_t address, std::uint8_t value) = 0;
    virtual void hostBurstEnded() = 0;
    // Where a burst of writes goes on.
    virtual std::uint32_t nextHostWrite(std::uint32_t address) const = 0;
    virtual void hostCommand(std::uint8_t command, std::uint8_t parameter) = 0;
    // Dummy bytes between address and data of a read: 1 or 2.
    virtual std::size_t dummyBytes() const = 0;
    virtual void complain(const std::string& text) = 0;
};

// The SPI side of the chip: turns the bytes between two chip-select edges into memory accesses
// and host commands.
//
// The first byte's top bits say what a transaction is: 10 write, 00 read, 01 host command. Three
// zero bytes and no more are the host command ACTIVE. Only single-lane transfers are modelled; the
// board has one data line in each direction.
class HostInterface {
public:
    explicit HostInterface(HostTarget& target) : m_target(target) {}

    void select();
    std::uint8_t exchange(std::uint8_t sent); // ignored, giving 0, while not selected
    void deselect();
    bool isSelected() const { return m_selected; }

private:
    enum class Kind : std::uint8_t { Read, Write, Command, Nonsense };
    static constexpr std::size_t headerSize = 3;

    Kind kind() const;
    void startData();
    void endCommand();

    HostTarget& m_target;
    bool m_selected = false;
    std::array<std::uint8_t, headerSize> m_header{};
    std::size_t m_count = 0; // bytes exchanged in this transaction
    std::size_t m_dataStart = 0;
    std::uint32_t m_address = 0;
};

} // namespace controller
