#include "idleboard.h"

#include "platform.h"

#include <array>
#include <cstddef>

namespace {

// E1 and E2/E3 addresses of the ring's offsets and of the swap request.
constexpr std::uint32_t cmdRead[] = {0x1024E4, 0x3020F8};
constexpr std::uint32_t cmdWrite[] = {0x1024E8, 0x3020FC};

idleboard::Traffic counted;
std::array<unsigned char, 4> header{};
std::size_t headerLength = 0;
std::uint32_t address = 0;
bool writing = false;
std::array<unsigned char, 2> writePointer{};

bool isRingOffset(std::uint32_t at) {
    return (at & ~3U) == cmdRead[0] || (at & ~3U) == cmdRead[1] || (at & ~3U) == cmdWrite[0] ||
           (at & ~3U) == cmdWrite[1];
}

void takeHeaderByte(unsigned char byte) {
    header[headerLength++] = byte;
    if (headerLength == 3) {
        writing = (header[0] & 0xC0) == 0x80;
        address = static_cast<std::uint32_t>((header[0] & 0x3F) << 16 | header[1] << 8 | header[2]);
    }
}

unsigned char exchange(unsigned char byte) {
    if (headerLength < 3 || (!writing && headerLength < 4)) {
        takeHeaderByte(byte);
        return 0;
    }
    const std::uint32_t at = address++;
    if (!isRingOffset(at) || (at & 3U) > 1) {
        return 0;
    }
    if (writing) {
        writePointer[at & 1U] = byte;
        return 0;
    }
    return writePointer[at & 1U];
}

} // namespace

namespace idleboard {

Traffic traffic() {
    return counted;
}

void reset() {
    counted = {};
}

} // namespace idleboard

int platform_init() {
    return 0;
}

void platform_sleep_ms(unsigned int /*ms*/) {}

void platform_spi_init() {}

void platform_spi_deinit() {}

unsigned char platform_spi_send_recv_byte(unsigned char b) {
    ++counted.messages;
    ++counted.bytes;
    return exchange(b);
}

void platform_spi_send_data(unsigned char* data, unsigned short len) {
    ++counted.messages;
    counted.bytes += len;
    if (headerLength >= 3 && writing && !isRingOffset(address)) {
        return; // a burst into the ring: nothing in it is answered
    }
    for (unsigned short i = 0; i < len; ++i) {
        exchange(data[i]);
    }
}

void platform_spi_recv_data(unsigned char* data, unsigned short len) {
    ++counted.messages;
    counted.bytes += len;
    for (unsigned short i = 0; i < len; ++i) {
        data[i] = exchange(0);
    }
}

void platform_gpio_value(gpio_name name, gpio_val val) {
    if (name == GPIO_CS && val == GPIO_LOW) {
        headerLength = 0;
    }
}
