// What a host does to the controller's pins: bytes, chip select, power-down, time; and a finger.
#include "smallpanel.h"

namespace {

using namespace fuzz;
using namespace controllertest;

constexpr std::size_t longestBurst = 64;
constexpr Nanoseconds longestRun = 300 * ms; // of simulated time

void step(SmallPanel& host, Input& input) {
    switch (input.byte() % 8) {
    case 0:
        host.chip.setChipSelect(false, host.now += microsecond);
        break;
    case 1:
        host.chip.setChipSelect(true, host.now += microsecond);
        break;
    case 2:
        for (const std::uint8_t byte : input.bytes(input.byte() % longestBurst)) {
            host.chip.exchange(byte, host.now += microsecond);
        }
        break;
    case 3:
        host.wait(input.byte() * ms / 8);
        break;
    case 4: {
        const int x = input.byte();
        host.chip.touch(x, input.byte());
        break;
    }
    case 5: {
        // A register, which random addresses seldom hit.
        const std::uint32_t address = host.at.id() + input.number(2) % 0x600;
        host.write(address, input.bytes(4));
        break;
    }
    case 6: {
        const std::uint32_t address = input.number(3);
        host.write(address, input.bytes(input.byte() % longestBurst));
        host.read(address, 4);
        break;
    }
    default:
        host.chip.setPowerDown(input.byte() % 4 != 0, host.now += microsecond);
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    SmallPanel host(generation(input.byte()));
    const Nanoseconds end = host.now + longestRun;
    while (!input.atEnd() && host.now < end) {
        step(host, input);
        if (!host.isSmall()) {
            host.chip.release(); // who touches has the frame drawn
        }
    }
    host.look();
    host.requireWorking();
    return 0;
}
