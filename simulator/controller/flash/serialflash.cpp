#include "serialflash.h"

#include <algorithm>
#include <array>

namespace controller {

namespace {

namespace command {
constexpr std::uint8_t pageProgram = 0x02;
constexpr std::uint8_t read = 0x03;
constexpr std::uint8_t writeDisable = 0x04;
constexpr std::uint8_t status = 0x05;
constexpr std::uint8_t writeEnable = 0x06;
constexpr std::uint8_t sectorErase = 0x20;
constexpr std::uint8_t identification = 0x9F;
constexpr std::uint8_t chipErase = 0xC7;
constexpr std::uint8_t blockErase = 0xD8;
} // namespace command

constexpr std::uint8_t statusWriteEnabled = 0x02;
constexpr std::size_t addressBytes = 3;

// The exponent of the size, as the identification's third byte has it.
std::uint8_t sizeCode(std::size_t size) {
    std::uint8_t code = 0;
    while (size > 1) {
        size /= 2;
        ++code;
    }
    return code;
}

} // namespace

std::uint8_t SerialFlash::read(std::size_t address) const {
    return address < m_content.size() ? m_content[address] : erased;
}

void SerialFlash::program(std::size_t address, std::uint8_t value) {
    m_work += singleByte;
    if (address < m_content.size()) {
        m_content[address] = static_cast<std::uint8_t>(m_content[address] & value);
    }
}

void SerialFlash::erase(std::size_t address, std::size_t count) {
    const std::size_t begin = std::min(address, m_content.size());
    const std::size_t length = std::min(count, m_content.size() - begin);
    const auto first = m_content.begin() + static_cast<std::ptrdiff_t>(begin);
    std::fill(first, first + static_cast<std::ptrdiff_t>(length), erased);
    m_work += static_cast<std::int64_t>(length);
    m_sectorsErased += (length + sectorSize - 1) / sectorSize;
}

void SerialFlash::updateSector(std::size_t address, const std::uint8_t* bytes) {
    if (address >= m_content.size()) {
        return;
    }
    m_work += sectorSize;
    const std::size_t length = std::min(sectorSize, m_content.size() - address);
    const auto first = m_content.begin() + static_cast<std::ptrdiff_t>(address);
    if (std::equal(bytes, bytes + length, first)) {
        return;
    }
    erase(address, sectorSize);
    std::copy_n(bytes, length, first);
}

void SerialFlash::takeAddress(std::uint8_t sent) {
    m_address = (m_address << 8U | sent) & 0xFFFFFFU;
}

std::uint8_t SerialFlash::answer(std::uint8_t sent) {
    const std::size_t position = m_count - 1; // behind the command byte
    switch (m_command) {
    case command::status:
        return m_writeEnabled ? statusWriteEnabled : std::uint8_t{0};
    case command::identification: {
        // No maker's: the code reserved for continuation, an invented type, the size.
        const std::array<std::uint8_t, 3> id = {0x7F, 0x01, sizeCode(m_content.size())};
        return position < id.size() ? id[position] : std::uint8_t{0};
    }
    case command::read:
        if (position < addressBytes) {
            takeAddress(sent);
            return erased;
        }
        return read(m_address++);
    case command::pageProgram:
    case command::sectorErase:
    case command::blockErase:
        if (position < addressBytes) {
            takeAddress(sent);
        } else {
            const std::size_t place = (position - addressBytes) % pageSize; // the last ones count
            m_page.resize(std::max(m_page.size(), place + 1));
            m_page[place] = sent;
        }
        return erased;
    default:
        return erased;
    }
}

std::uint8_t SerialFlash::exchange(std::uint8_t sent) {
    if (!isFitted()) {
        return erased;
    }
    if (m_count == 0) {
        m_command = sent;
        m_count = 1;
        return erased;
    }
    m_work += singleByte;
    const std::uint8_t received = answer(sent);
    ++m_count;
    return received;
}

void SerialFlash::endCommand() {
    if (m_command == command::writeEnable || m_command == command::writeDisable) {
        m_writeEnabled = m_command == command::writeEnable;
        return;
    }
    if (!m_writeEnabled) {
        return;
    }
    const bool addressed = m_count > addressBytes;
    switch (m_command) {
    case command::pageProgram:
        // Programming wraps inside the page.
        for (std::size_t i = 0; i < m_page.size(); ++i) {
            const std::size_t page = m_address / pageSize * pageSize;
            program(page + (m_address + i) % pageSize, m_page[i]);
        }
        break;
    case command::sectorErase:
        if (addressed) {
            erase(m_address / sectorSize * sectorSize, sectorSize);
        }
        break;
    case command::blockErase:
        if (addressed) {
            erase(m_address / blockSize * blockSize, blockSize);
        }
        break;
    case command::chipErase:
        erase(0, m_content.size());
        break;
    default:
        return; // did not write
    }
    m_writeEnabled = false;
}

void SerialFlash::deselect() {
    if (m_count > 0) {
        endCommand();
    }
    m_count = 0;
    m_address = 0;
    m_page.clear();
}

} // namespace controller
