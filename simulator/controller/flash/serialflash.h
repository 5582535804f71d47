#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace controller {

// The serial flash chip beside an E3 controller.
//
// Erased bytes are 0xFF; programming can only clear bits; erasing works on sectors. It is used in
// two ways: by whole operations, as the controller drives an attached chip, and byte by byte over
// its own SPI, as the host may through a detached controller. Of its own command set these are
// modelled: 0x9F identification, 0x05 status, 0x06 / 0x04 write enable / disable, 0x03 read,
// 0x02 page program, 0x20 sector erase, 0xD8 block erase, 0xC7 chip erase. Operations take no
// time: the busy bit of the status never shows.
class SerialFlash {
public:
    static constexpr std::size_t pageSize = 256;
    static constexpr std::size_t sectorSize = 4096;
    static constexpr std::size_t blockSize = 65536;

    explicit SerialFlash(std::size_t size) : m_content(size, erased) {}

    bool isFitted() const { return !m_content.empty(); }
    std::size_t size() const { return m_content.size(); }
    std::vector<std::uint8_t>& content() { return m_content; }

    // Whole operations. Addresses beyond the chip are not there: they read 0xFF.
    std::uint8_t read(std::size_t address) const;
    void program(std::size_t address, std::uint8_t value);
    void erase(std::size_t address, std::size_t count);
    // Makes a sector hold `bytes` (sectorSize of them), unless it does already.
    void updateSector(std::size_t address, const std::uint8_t* bytes);
    // Sectors erased so far, which is what wears the chip.
    std::size_t sectorsErased() const { return m_sectorsErased; }

    // What its operations have cost so far, in bytes erased.
    std::int64_t work() const { return m_work; }

    // Its own SPI: a command begins with the first byte after deselect().
    std::uint8_t exchange(std::uint8_t sent);
    void deselect();

private:
    static constexpr std::uint8_t erased = 0xFF;
    // What a byte costs that is handled by itself.
    static constexpr std::int64_t singleByte = 10;

    std::uint8_t answer(std::uint8_t sent);
    void takeAddress(std::uint8_t sent);
    void endCommand();

    std::vector<std::uint8_t> m_content;
    std::size_t m_sectorsErased = 0;
    std::int64_t m_work = 0;
    bool m_writeEnabled = false;
    // The SPI command under way.
    std::size_t m_count = 0; // its bytes so far
    std::uint8_t m_command = 0;
    std::size_t m_address = 0;
    std::vector<std::uint8_t> m_page; // to be programmed
};

} // namespace controller
