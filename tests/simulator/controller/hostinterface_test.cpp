#include "hostinterface.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using controller::HostInterface;
using testing::ElementsAre;
using testing::Pair;

// A chip that counts up: every address reads its low byte.
class RecordingTarget : public controller::HostTarget {
public:
    std::uint8_t hostRead(std::uint32_t address) override {
        reads.push_back(address);
        return static_cast<std::uint8_t>(address);
    }
    void hostWrite(std::uint32_t address, std::uint8_t value) override {
        writes.emplace_back(address, value);
    }
    void hostBurstEnded() override { ++bursts; }
    std::uint32_t nextHostWrite(std::uint32_t address) const override { return address + 1; }
    void hostCommand(std::uint8_t command, std::uint8_t parameter) override {
        commands.emplace_back(command, parameter);
    }
    std::size_t dummyBytes() const override { return dummies; }
    void complain(const std::string& text) override { complaints.push_back(text); }

    std::size_t dummies = 1;
    std::vector<std::uint32_t> reads;
    std::vector<std::pair<std::uint32_t, int>> writes;
    std::vector<std::pair<int, int>> commands;
    std::vector<std::string> complaints;
    int bursts = 0;
};

class HostInterfaceTest : public testing::Test {
protected:
    std::vector<int> transact(const std::vector<std::uint8_t>& sent) {
        std::vector<int> received;
        received.reserve(sent.size());
        host.select();
        for (const std::uint8_t byte : sent) {
            received.push_back(host.exchange(byte));
        }
        host.deselect();
        return received;
    }

    RecordingTarget chip;
    HostInterface host{chip};
};

TEST_F(HostInterfaceTest, AReadGivesDataBehindAddressAndDummy) {
    EXPECT_THAT(transact({0x0C, 0x00, 0x10, 0x00, 0, 0, 0}),
                ElementsAre(0, 0, 0, 0, 0x10, 0x11, 0x12));
    EXPECT_THAT(chip.reads, ElementsAre(0x0C0010, 0x0C0011, 0x0C0012));
}

TEST_F(HostInterfaceTest, AReadCanHaveTwoDummyBytes) {
    chip.dummies = 2;
    EXPECT_THAT(transact({0x30, 0x20, 0x05, 0x00, 0x00, 0, 0}),
                ElementsAre(0, 0, 0, 0, 0, 0x05, 0x06));
}

TEST_F(HostInterfaceTest, AWriteHasDataRightBehindTheAddress) {
    EXPECT_THAT(transact({0xB0, 0x20, 0x00, 0xAA, 0xBB}), ElementsAre(0, 0, 0, 0, 0));
    EXPECT_THAT(chip.writes, ElementsAre(Pair(0x302000, 0xAA), Pair(0x302001, 0xBB)));
    EXPECT_EQ(chip.bursts, 1);
}

TEST_F(HostInterfaceTest, AddressesHave22Bits) {
    transact({0x3F, 0xFF, 0xFF, 0x00, 0, 0});
    EXPECT_THAT(chip.reads, ElementsAre(0x3FFFFF, 0));
}

TEST_F(HostInterfaceTest, AHostCommandIsThreeBytes) {
    transact({0x44, 0x00, 0x00});
    transact({0x61, 0x46, 0x00});
    EXPECT_THAT(chip.commands, ElementsAre(Pair(0x44, 0), Pair(0x61, 0x46)));
    EXPECT_TRUE(chip.complaints.empty());
}

TEST_F(HostInterfaceTest, ThreeZeroBytesAreActive) {
    transact({0, 0, 0});
    EXPECT_THAT(chip.commands, ElementsAre(Pair(0, 0)));
}

TEST_F(HostInterfaceTest, ALongerReadOfAddressZeroIsNotActive) {
    transact({0, 0, 0, 0, 0});
    EXPECT_TRUE(chip.commands.empty());
    EXPECT_THAT(chip.reads, ElementsAre(0));
}

TEST_F(HostInterfaceTest, AHostCommandOfAnotherLengthIsRefused) {
    transact({0x44, 0x00});
    transact({0x44, 0x00, 0x00, 0x00});
    EXPECT_TRUE(chip.commands.empty());
    EXPECT_EQ(chip.complaints.size(), 2U);
}

TEST_F(HostInterfaceTest, ATransactionThatIsNothingIsComplainedAbout) {
    transact({0xC0, 0x00, 0x00, 0x01});
    transact({0x80, 0x00});
    EXPECT_TRUE(chip.writes.empty());
    EXPECT_EQ(chip.complaints.size(), 2U);
}

TEST_F(HostInterfaceTest, BytesOutsideOfATransactionAreIgnored) {
    EXPECT_EQ(host.exchange(0x44), 0);
    host.deselect();
    EXPECT_TRUE(chip.complaints.empty());
    EXPECT_TRUE(chip.commands.empty());
}

TEST_F(HostInterfaceTest, AnEmptyTransactionIsNothing) {
    transact({});
    EXPECT_TRUE(chip.complaints.empty());
    EXPECT_TRUE(chip.commands.empty());
}

} // namespace
