#include "host.h"

#include <gtest/gtest.h>

namespace {

using namespace controllertest;

// Hosts gone wild: whatever comes over the bus, the model neither crashes, nor hangs, nor touches
// memory that is not its own (the sanitizers watch). The streams are the same in every run.
class Random {
public:
    explicit Random(std::uint32_t seed) : m_state(seed) {}
    std::uint32_t next() {
        m_state = m_state * 1664525U + 1013904223U;
        return m_state ^ m_state >> 16U;
    }
    std::uint32_t below(std::uint32_t limit) { return next() % limit; }

private:
    std::uint32_t m_state;
};

class BusStorm : public testing::TestWithParam<Generation> {
protected:
    static controller::Options options() {
        controller::Options result;
        result.flashSize = 1U << 20U;
        return result;
    }
    // After the storm the chip can be used again.
    static void expectAlive(Host& host) {
        host.chip.setChipSelect(true, host.now);
        host.bootWithPanel();
        host.send({cmd::dlStart, 0x02FF0000, 0x26000007, 0, cmd::swap});
        host.waitFrames(2);
        EXPECT_EQ(host.chip.frame().picture.at(9, 9), 0xFFFF0000);
    }
    // An argument that is often one a command could take seriously.
    static std::uint32_t argument(Random& random) {
        switch (random.below(6)) {
        case 0:
            return random.next();
        case 1:
            return random.below(0x400000);
        case 2:
            return pair(static_cast<int>(random.below(500)), static_cast<int>(random.below(300)));
        case 3:
            return random.below(64);
        case 4:
            return random.below(64) << 16U | random.below(64);
        default:
            return 0;
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Generations, BusStorm,
                         testing::Values(Generation::E1, Generation::E2, Generation::E3));

TEST_P(BusStorm, RandomBytesInRandomTransactions) {
    Host host(GetParam(), options());
    host.bootWithPanel();
    Random random(1);
    for (int i = 0; i < 3000; ++i) {
        std::vector<std::uint8_t> bytes(random.below(40));
        for (std::uint8_t& byte : bytes) {
            byte = static_cast<std::uint8_t>(random.next());
        }
        // The power pin is not the host interface's; a command that ends everything is rare.
        if (!bytes.empty() && bytes[0] >> 6U == 1 && random.below(20) != 0) {
            bytes[0] = 0x80;
        }
        host.bytes(bytes);
        if (random.below(50) == 0) {
            host.wait(20 * ms);
        }
    }
    expectAlive(host);
}

TEST_P(BusStorm, RandomRegisterValues) {
    Host host(GetParam(), options());
    host.bootWithPanel();
    Random random(2);
    const std::uint32_t base = host.at.id();
    for (int i = 0; i < 3000; ++i) {
        const std::uint32_t address = base + random.below(0x600 / 4) * 4;
        // Panel sizes stay within a megapixel, for time's sake.
        if (address == base + 0x30 || address == base + 0x34 || address == base + 0x44 ||
            address == base + 0x48) {
            host.write32(address, random.below(600));
        } else {
            host.write32(address, argument(random));
        }
        host.read32(address);
        if (random.below(20) == 0) {
            host.chip.touch(static_cast<int>(random.next()) / 2,
                            static_cast<int>(random.next()) / 2);
        }
        if (random.below(50) == 0) {
            host.wait(20 * ms);
        }
    }
    expectAlive(host);
}

TEST_P(BusStorm, RandomCommandsWithRandomArguments) {
    Host host(GetParam(), options());
    host.bootWithPanel();
    Random random(3);
    for (int i = 0; i < 3000; ++i) {
        std::vector<std::uint32_t> stream;
        for (std::uint32_t n = random.below(4); n > 0; --n) {
            stream.push_back(cmd::dlStart);
        }
        stream.push_back(0xFFFFFF00U | random.below(0x60));
        for (std::uint32_t n = random.below(16); n > 0; --n) {
            stream.push_back(argument(random));
        }
        host.send(stream);
        if (host.chip.peek32(host.at.cmdRead()) == 0xFFF) {
            host.write8(host.at.cpuReset(), 1);
            host.write16(host.at.cmdRead(), host.chip.peek32(host.at.cmdWrite()) & 0xFFC);
            host.write8(host.at.cpuReset(), 0);
        }
        if (random.below(40) == 0) {
            host.wait(15 * ms);
            host.chip.touch(static_cast<int>(random.below(480)),
                            static_cast<int>(random.below(272)));
        }
        if (random.below(300) == 0) {
            host.chip.frame();
        }
    }
    expectAlive(host);
}

TEST_P(BusStorm, RandomDisplayLists) {
    Host host(GetParam(), options());
    host.bootWithPanel();
    Random random(4);
    for (int i = 0; i < 12; ++i) {
        std::vector<std::uint8_t> list(8192); // 2048 words
        for (std::uint8_t& byte : list) {
            byte = static_cast<std::uint8_t>(random.next());
        }
        for (std::size_t word = 0; word < list.size(); word += 4) {
            list[word + 3] = static_cast<std::uint8_t>(random.below(3) ? 0x80U | random.below(0x80)
                                                                       : 1 + random.below(0x30));
        }
        host.write(host.at.ramDl(), list);
        host.write8(host.at.dlSwap(), 2);
        host.waitFrames(2);
        host.chip.frame();
        host.chip.textOnPanel();
    }
    expectAlive(host);
}

} // namespace
