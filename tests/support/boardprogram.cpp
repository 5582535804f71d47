// A program on the board, for tests. Its arguments are steps, done one after the other:
//   init, open, close        the board's plain functions of these names
//   CS0 CS1 PD0 PD1          drive a line
//   send=TEXT                one message that sends the text
//   byte=C                   one message of one character; prints the byte received in hexadecimal
//   receive=N                one message that receives N bytes; prints them
//   raw=REQUEST              an ioctl on a descriptor of its own; prints the result or the errno:
//                            unknown, toolong, badaddress, badrecord, two (records)
//   setDirections, directions
//                            these of a new object for the chip-select line; the latter prints it
//   hang                     until killed

#include "cgpio.h"
#include "platform.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/spi/spidev.h>
#include <map>
#include <stdexcept>
#include <string>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr unsigned int chipSelectBase = 745;
constexpr unsigned int chipSelectPin = 56;

std::uintptr_t addressOf(const void* memory) {
    return reinterpret_cast<std::uintptr_t>(memory);
}

// The record points into `text`, which must outlive it.
spi_ioc_transfer sending(const char* text, std::size_t length) {
    spi_ioc_transfer record{};
    record.tx_buf = addressOf(text);
    record.len = static_cast<__u32>(length);
    return record;
}

int rawIoctl(int node, const std::string& request) {
    const std::string text(5000, 't');
    if (request == "unknown") {
        int value = 0;
        return ioctl(node, SPI_IOC_RD_LSB_FIRST, &value);
    }
    if (request == "toolong") {
        const spi_ioc_transfer record = sending(text.data(), 4097);
        return ioctl(node, SPI_IOC_MESSAGE(1), &record);
    }
    if (request == "badaddress") {
        spi_ioc_transfer record = sending(text.data(), 4);
        record.tx_buf = 16;
        return ioctl(node, SPI_IOC_MESSAGE(1), &record);
    }
    if (request == "badrecord") {
        return ioctl(node, SPI_IOC_MESSAGE(1), 16);
    }
    const std::array<spi_ioc_transfer, 2> two{sending("ab", 2), sending("cde", 3)};
    return ioctl(node, SPI_IOC_MESSAGE(2), two.data());
}

void raw(const std::string& request) {
    const int node = open("/dev/spidev2.0", O_RDWR);
    const int result = rawIoctl(node, request);
    std::printf("%s\n", result < 0 ? std::strerror(errno) : std::to_string(result).c_str());
    close(node);
}

void receive(std::size_t length) {
    std::vector<unsigned char> bytes(length);
    platform_spi_recv_data(bytes.data(), static_cast<unsigned short>(length));
    for (const unsigned char byte : bytes) {
        std::printf("%02x", byte);
    }
    std::printf("\n");
}

[[noreturn]] void hang() {
    for (;;) {
        pause();
    }
}

void doPlain(const std::string& step) {
    static const std::map<std::string, void (*)()> steps{
        {"init", [] { platform_init(); }},
        {"open", platform_spi_init},
        {"close", platform_spi_deinit},
        {"CS0", [] { platform_gpio_value(GPIO_CS, GPIO_LOW); }},
        {"CS1", [] { platform_gpio_value(GPIO_CS, GPIO_HIGH); }},
        {"PD0", [] { platform_gpio_value(GPIO_PD, GPIO_LOW); }},
        {"PD1", [] { platform_gpio_value(GPIO_PD, GPIO_HIGH); }},
        {"setDirections", [] { cGPIO(chipSelectBase, chipSelectPin).setDirections(cGPIO::Out); }},
        {"directions",
         [] { std::printf("%d\n", cGPIO(chipSelectBase, chipSelectPin).directions()); }},
        {"hang", [] { hang(); }},
    };
    steps.at(step)();
}

void doStep(const std::string& step) {
    const std::size_t equals = step.find('=');
    if (equals == std::string::npos) {
        doPlain(step);
        return;
    }
    const std::string verb = step.substr(0, equals);
    const std::string value = step.substr(equals + 1);
    if (verb == "send") {
        std::vector<unsigned char> bytes(value.begin(), value.end());
        platform_spi_send_data(bytes.data(), static_cast<unsigned short>(bytes.size()));
    } else if (verb == "byte") {
        std::printf("%02x\n", platform_spi_send_recv_byte(static_cast<unsigned char>(value.at(0))));
    } else if (verb == "receive") {
        receive(std::stoul(value));
    } else if (verb == "raw") {
        raw(value);
    } else {
        throw std::invalid_argument(step);
    }
}

} // namespace

int main(int argc, char** argv) {
    prctl(PR_SET_PDEATHSIG, SIGKILL); // it may hang, and goes with the test then
    try {
        for (int i = 1; i < argc; ++i) {
            doStep(argv[i]);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "not a step: %s\n", error.what());
        return 2;
    }
}
