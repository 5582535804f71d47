#include "host.h"

namespace controllertest {

namespace {

constexpr std::uint32_t ringMask = 0xFFC;

std::vector<std::uint8_t> littleEndian(const std::vector<std::uint32_t>& values) {
    std::vector<std::uint8_t> result;
    for (const std::uint32_t value : values) {
        for (unsigned shift = 0; shift < 32; shift += 8) {
            result.push_back(static_cast<std::uint8_t>(value >> shift));
        }
    }
    return result;
}

} // namespace

Host::Host(Generation generation, const controller::Options& options)
    : chip(generation, options), at(generation) {
    chip.setObserver(&seen);
}

void Host::bytes(const std::vector<std::uint8_t>& sent, std::vector<std::uint8_t>* received) {
    chip.setChipSelect(false, now += microsecond);
    for (const std::uint8_t byte : sent) {
        const std::uint8_t answer = chip.exchange(byte, now += microsecond / 10);
        if (received) {
            received->push_back(answer);
        }
    }
    chip.setChipSelect(true, now += microsecond);
}

void Host::hostCommand(std::uint8_t command, std::uint8_t parameter) {
    bytes({command, parameter, 0});
}

std::vector<std::uint8_t> Host::read(std::uint32_t address, std::size_t count) {
    std::vector<std::uint8_t> sent = {static_cast<std::uint8_t>(address >> 16U & 0x3FU),
                                      static_cast<std::uint8_t>(address >> 8U),
                                      static_cast<std::uint8_t>(address), 0};
    const std::size_t header = sent.size();
    sent.resize(header + count);
    std::vector<std::uint8_t> received;
    bytes(sent, &received);
    received.erase(received.begin(), received.begin() + static_cast<std::ptrdiff_t>(header));
    return received;
}

std::uint8_t Host::read8(std::uint32_t address) {
    return read(address, 1)[0];
}

std::uint16_t Host::read16(std::uint32_t address) {
    const std::vector<std::uint8_t> data = read(address, 2);
    return static_cast<std::uint16_t>(data[0] | data[1] << 8);
}

std::uint32_t Host::read32(std::uint32_t address) {
    const std::vector<std::uint8_t> data = read(address, 4);
    return static_cast<std::uint32_t>(data[0]) | static_cast<std::uint32_t>(data[1]) << 8U |
           static_cast<std::uint32_t>(data[2]) << 16U | static_cast<std::uint32_t>(data[3]) << 24U;
}

void Host::write(std::uint32_t address, const std::vector<std::uint8_t>& data) {
    std::vector<std::uint8_t> sent = {static_cast<std::uint8_t>(0x80U | (address >> 16U & 0x3FU)),
                                      static_cast<std::uint8_t>(address >> 8U),
                                      static_cast<std::uint8_t>(address)};
    sent.reserve(sent.size() + data.size());
    sent.insert(sent.end(), data.begin(), data.end());
    bytes(sent);
}

void Host::write8(std::uint32_t address, std::uint8_t value) {
    write(address, {value});
}

void Host::write16(std::uint32_t address, std::uint16_t value) {
    write(address, {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8U)});
}

void Host::write32(std::uint32_t address, std::uint32_t value) {
    write(address, littleEndian({value}));
}

void Host::wait(Nanoseconds time) {
    now += time;
    chip.advance(now);
}

void Host::boot() {
    chip.setPowerDown(false, now);
    wait(20 * ms);
    chip.setPowerDown(true, now);
    wait(20 * ms);
    hostCommand(0x44);
    hostCommand(0x62);
    hostCommand(0x00);
    wait(100 * ms);
    m_writeOffset = 0;
}

void Host::startPanel() {
    write8(at.pclk(), 5);
}

void Host::bootWithPanel() {
    boot();
    startPanel();
}

void Host::calibrate() {
    for (std::uint32_t i = 0; i < panelTransform.size(); ++i) {
        write32(at.touchTransformA() + 4 * i, static_cast<std::uint32_t>(panelTransform[i]));
    }
}

void Host::waitFrames(std::uint32_t frames) {
    const std::uint32_t wanted = chip.framesScanned() + frames;
    while (chip.framesScanned() < wanted) {
        wait(ms);
    }
}

void Host::send(const std::vector<std::uint32_t>& values) {
    sendBytes(littleEndian(values));
}

void Host::sendBytes(const std::vector<std::uint8_t>& data) {
    std::vector<std::uint8_t> padded = data;
    padded.resize((data.size() + 3) / 4 * 4);
    write(at.ramCmd() + m_writeOffset, padded);
    m_writeOffset = (m_writeOffset + static_cast<std::uint32_t>(padded.size())) & ringMask;
    write16(at.cmdWrite(), static_cast<std::uint16_t>(m_writeOffset));
}

bool Host::ringIsEmpty() {
    return read16(at.cmdRead()) == read16(at.cmdWrite());
}

std::vector<std::uint32_t> Host::listWritten() {
    std::vector<std::uint32_t> list;
    const std::uint32_t length = chip.peek32(at.cmdDl());
    for (std::uint32_t offset = 0; offset < length; offset += 4) {
        list.push_back(chip.peek32(at.ramDl() + offset));
    }
    return list;
}

std::vector<std::uint32_t> words(const std::string& text) {
    std::vector<std::uint32_t> result((text.size() + 4) / 4);
    for (std::size_t i = 0; i < text.size(); ++i) {
        result[i / 4] |= static_cast<std::uint32_t>(static_cast<unsigned char>(text[i]))
                         << (i % 4 * 8);
    }
    return result;
}

std::vector<std::uint32_t> repeated(const std::vector<std::uint32_t>& command, std::size_t times) {
    std::vector<std::uint32_t> result;
    for (std::size_t i = 0; i < times; ++i) {
        result.insert(result.end(), command.begin(), command.end());
    }
    return result;
}

} // namespace controllertest
