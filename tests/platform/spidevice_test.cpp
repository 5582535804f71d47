#include "spidevice.h"
#include "testbed.h"

#include <gmock/gmock.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <linux/spi/spidev.h>
#include <unistd.h>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes littleEndian(std::uint32_t value) {
    return {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8U),
            static_cast<std::uint8_t>(value >> 16U), static_cast<std::uint8_t>(value >> 24U)};
}

// A spidev driver that keeps what it is asked. Its thread writes here only while the test waits in
// an ioctl.
class RecordingDriver : public board::IoctlHandler {
public:
    struct Request {
        unsigned long number;
        Bytes argument; // what the request's pointer points to
        bool operator==(const Request& other) const {
            return number == other.number && argument == other.argument;
        }
    };

    board::IoctlAnswer ioctl(unsigned long number, const board::CallerMemory& argument) override {
        // Before it is followed, which makes it point to a copy.
        std::memcpy(&lastPointer, argument.bytes(), sizeof lastPointer);
        const auto memory = argument.follow(0, _IOC_SIZE(number));
        requests.push_back({number, Bytes(memory->bytes(), memory->bytes() + memory->size())});
        if (fails) {
            return {-1, EIO};
        }
        return number == SPI_IOC_MESSAGE(1) ? transfer(*memory) : board::IoctlAnswer{};
    }

    spi_ioc_transfer lastTransfer() const {
        spi_ioc_transfer record{};
        std::memcpy(&record, requests.back().argument.data(), sizeof record);
        return record;
    }

    bool fails = false;
    Bytes answer; // what a receiving transfer gets, as far as it is that long
    std::vector<Request> requests;
    std::uintptr_t lastPointer = 0; // as the last request had it
    Bytes sent;                     // by the last transfer

private:
    board::IoctlAnswer transfer(const board::CallerMemory& memory) {
        const spi_ioc_transfer record = lastTransfer();
        sent.clear();
        if (record.tx_buf != 0 && record.len != 0) {
            const auto tx = memory.follow(offsetof(spi_ioc_transfer, tx_buf), record.len);
            sent.assign(tx->bytes(), tx->bytes() + tx->size());
        }
        if (record.rx_buf != 0 && record.len != 0) {
            Bytes received = answer;
            received.resize(record.len);
            memory.follow(offsetof(spi_ioc_transfer, rx_buf), record.len)
                ->write(received.data(), received.size());
        }
        return {static_cast<int>(record.len), 0};
    }
};

class SpiDeviceTest : public testing::Test {
protected:
    SpiDeviceTest() { m_testbed.addNode("/dev/spidev2.0", driver); }

    void openAndForget() {
        ASSERT_TRUE(device.open());
        driver.requests.clear();
    }

    RecordingDriver driver;
    SpiDevice device{QStringLiteral("/dev/spidev2.0")};

private:
    board::Testbed m_testbed;
};

TEST_F(SpiDeviceTest, HasTheBoardsSettingsWhenFresh) {
    EXPECT_EQ(device.mode(), 0U);
    EXPECT_EQ(device.bitsPerWord(), 8U);
    EXPECT_EQ(device.speed(), 20000000U);
    EXPECT_FALSE(device.isCSAlwaysDown());
    EXPECT_THAT(driver.requests, IsEmpty());
}

TEST_F(SpiDeviceTest, SettersBeforeOpenOnlyStore) {
    device.setMode(3);
    device.setBitsPerWord(16);
    device.setSpeed(1000000);
    EXPECT_EQ(device.mode(), 3U);
    EXPECT_EQ(device.bitsPerWord(), 16U);
    EXPECT_EQ(device.speed(), 1000000U);
    EXPECT_THAT(driver.requests, IsEmpty());
}

// A file descriptor is a small number; none of them is the device's before it is open.
TEST_F(SpiDeviceTest, SettersBeforeOpenAskNoDescriptorThatHappensToBeOpen) {
    const int standardOutput = dup(STDOUT_FILENO);
    ::close(STDOUT_FILENO);
    const int node = ::open("/dev/spidev2.0", O_RDWR); // the lowest that is free
    device.setMode(3);
    device.setBitsPerWord(16);
    device.setSpeed(1000000);
    ::close(node);
    dup2(standardOutput, STDOUT_FILENO);
    ::close(standardOutput);
    ASSERT_EQ(node, STDOUT_FILENO);
    EXPECT_THAT(driver.requests, IsEmpty());
}

TEST_F(SpiDeviceTest, OpenAppliesModeThenWordSizeThenSpeed) {
    using Request = RecordingDriver::Request;
    device.setSpeed(1000000);
    device.setMode(0x10003);
    ASSERT_TRUE(device.open());
    EXPECT_THAT(driver.requests,
                ElementsAre(Request{SPI_IOC_WR_MODE32, littleEndian(0x10003)},
                            Request{SPI_IOC_WR_BITS_PER_WORD, {8}},
                            Request{SPI_IOC_WR_MAX_SPEED_HZ, littleEndian(1000000)}));
}

TEST_F(SpiDeviceTest, SettingsUseTheDriversRequestNumbers) {
    ASSERT_TRUE(device.open());
    ASSERT_THAT(driver.requests, SizeIs(3));
    EXPECT_EQ(driver.requests[0].number, 0x40046B05U); // 32-bit mode, 4 bytes
    EXPECT_EQ(driver.requests[1].number, 0x40016B03U); // bits per word, 1 byte
    EXPECT_EQ(driver.requests[2].number, 0x40046B04U); // speed, 4 bytes
}

TEST_F(SpiDeviceTest, SettersPointTheDriverAtTheStoredValues) {
    openAndForget();
    const auto begin = reinterpret_cast<std::uintptr_t>(&device);
    const auto pointsIntoDevice =
        testing::AllOf(testing::Ge(begin), testing::Lt(begin + sizeof device));
    device.setMode(1);
    EXPECT_THAT(driver.lastPointer, pointsIntoDevice);
    device.setBitsPerWord(16);
    EXPECT_THAT(driver.lastPointer, pointsIntoDevice);
    device.setSpeed(500000);
    EXPECT_THAT(driver.lastPointer, pointsIntoDevice);
}

TEST_F(SpiDeviceTest, SettersWhileOpenReachTheDriverAtOnce) {
    using Request = RecordingDriver::Request;
    openAndForget();
    device.setSpeed(500000);
    device.setMode(1);
    device.setBitsPerWord(0x1F10); // only the low byte counts
    EXPECT_THAT(driver.requests, ElementsAre(Request{SPI_IOC_WR_MAX_SPEED_HZ, littleEndian(500000)},
                                             Request{SPI_IOC_WR_MODE32, littleEndian(1)},
                                             Request{SPI_IOC_WR_BITS_PER_WORD, {0x10}}));
    EXPECT_EQ(device.bitsPerWord(), 0x1F10U);
}

TEST_F(SpiDeviceTest, ChipSelectFlagIsNotSentToTheDriver) {
    openAndForget();
    device.setCSAlwaysDown(true);
    EXPECT_TRUE(device.isCSAlwaysDown());
    EXPECT_THAT(driver.requests, IsEmpty());
}

TEST_F(SpiDeviceTest, RefusedSettingsDoNotKeepItFromOpening) {
    driver.fails = true;
    EXPECT_TRUE(device.open());
    EXPECT_THAT(driver.requests, SizeIs(3));
}

TEST_F(SpiDeviceTest, OpensAgainAfterClose) {
    openAndForget();
    device.close();
    EXPECT_TRUE(device.open());
    EXPECT_THAT(driver.requests, SizeIs(3));
}

TEST_F(SpiDeviceTest, TransfersFailWhenClosed) {
    openAndForget();
    device.close();
    EXPECT_TRUE(device.read(1).isEmpty());
    EXPECT_THAT(driver.requests, IsEmpty());
}

TEST(SpiDeviceWithoutNode, OpenFailsAndLeavesNoFileBehind) {
    const QString path = QStringLiteral("/dev/spidev-that-is-missing");
    SpiDevice device(path);
    EXPECT_FALSE(device.open());
    EXPECT_FALSE(QFile::exists(path));
}

TEST(SpiDeviceWithoutNode, SettersAfterAFailedOpenOnlyStore) {
    SpiDevice device(QStringLiteral("/dev/spidev-that-is-missing"));
    ASSERT_FALSE(device.open());
    device.setSpeed(7);
    EXPECT_EQ(device.speed(), 7U);
    EXPECT_TRUE(device.read(1).isEmpty());
}

// The transfer record, byte for byte.

TEST_F(SpiDeviceTest, TransferRecordHoldsAddressesAndLengthAndOtherwiseZeros) {
    openAndForget();
    std::array<char, 3> tx{1, 2, 3};
    std::array<char, 3> rx{};
    ASSERT_TRUE(device.readWrite(tx.data(), rx.data(), 3));

    ASSERT_THAT(driver.requests, SizeIs(1));
    EXPECT_EQ(driver.requests[0].number, 0x40206B00U); // one record of 32 bytes
    const Bytes record = driver.requests[0].argument;
    ASSERT_THAT(record, SizeIs(32));
    std::uint64_t txAddress = 0;
    std::uint64_t rxAddress = 0;
    std::memcpy(&txAddress, &record[0], sizeof txAddress);
    std::memcpy(&rxAddress, &record[8], sizeof rxAddress);
    EXPECT_EQ(txAddress, reinterpret_cast<std::uintptr_t>(tx.data()));
    EXPECT_EQ(rxAddress, reinterpret_cast<std::uintptr_t>(rx.data()));
    EXPECT_EQ(Bytes(&record[16], &record[16] + 16),
              (Bytes{3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(SpiDeviceTest, Byte27AsksToKeepChipSelectWhenItIsAlwaysDown) {
    openAndForget();
    device.write(QByteArray("x"));
    EXPECT_EQ(driver.requests.back().argument.at(27), 0);
    device.setCSAlwaysDown(true);
    device.write(QByteArray("x"));
    EXPECT_EQ(driver.requests.back().argument.at(27), 1);
    device.setCSAlwaysDown(false);
    device.write(QByteArray("x"));
    EXPECT_EQ(driver.requests.back().argument.at(27), 0);
}

TEST_F(SpiDeviceTest, FullDuplexSendsAndReceivesInOneMessage) {
    openAndForget();
    driver.answer = {0xA0, 0x00, 0xFF};
    EXPECT_EQ(device.readWrite(QByteArray("\x01\x00\x80", 3)), QByteArray("\xA0\x00\xFF", 3));
    EXPECT_THAT(driver.requests, SizeIs(1));
    EXPECT_EQ(driver.sent, (Bytes{0x01, 0x00, 0x80}));
}

TEST_F(SpiDeviceTest, WriteSendsOnly) {
    openAndForget();
    device.write(QByteArray("\x12\x00\x34", 3));
    EXPECT_THAT(driver.requests, SizeIs(1));
    EXPECT_EQ(driver.sent, (Bytes{0x12, 0x00, 0x34}));
    EXPECT_EQ(driver.lastTransfer().rx_buf, 0U);
    EXPECT_EQ(driver.lastTransfer().len, 3U);
}

TEST_F(SpiDeviceTest, WriteTakesACommandFifosWorthInOneMessage) {
    openAndForget();
    device.write(QByteArray(4092, 'w'));
    EXPECT_THAT(driver.requests, SizeIs(1));
    EXPECT_EQ(driver.sent, Bytes(4092, 'w'));
}

TEST_F(SpiDeviceTest, ReadReceivesOnly) {
    openAndForget();
    driver.answer = {5, 6, 7};
    EXPECT_EQ(device.read(2), QByteArray("\x05\x06", 2));
    EXPECT_THAT(driver.requests, SizeIs(1));
    EXPECT_EQ(driver.lastTransfer().tx_buf, 0U);
    EXPECT_EQ(driver.lastTransfer().len, 2U);
}

TEST_F(SpiDeviceTest, ReadOfNothingIsAMessageOfLengthZero) {
    openAndForget();
    EXPECT_TRUE(device.read(0).isEmpty());
    ASSERT_THAT(driver.requests, SizeIs(1));
    EXPECT_EQ(driver.lastTransfer().len, 0U);
}

TEST_F(SpiDeviceTest, ReadOfANegativeLengthAsksNobodyAndReturnsNothing) {
    openAndForget();
    EXPECT_TRUE(device.read(-1).isEmpty());
    EXPECT_TRUE(device.read(std::numeric_limits<int>::min()).isEmpty());
    EXPECT_THAT(driver.requests, IsEmpty());
}

TEST_F(SpiDeviceTest, ReceivesMoreThan256Bytes) {
    openAndForget();
    driver.answer = Bytes(300, 0x77);
    EXPECT_EQ(device.read(300), QByteArray(300, 0x77));
    EXPECT_EQ(device.readWrite(QByteArray(300, 'x')), QByteArray(300, 0x77));
}

TEST_F(SpiDeviceTest, NullPointersMakeAOneWayTransfer) {
    openAndForget();
    std::array<char, 2> bytes{8, 9};
    EXPECT_TRUE(device.readWrite(bytes.data(), nullptr, 2));
    EXPECT_EQ(driver.lastTransfer().rx_buf, 0U);
    EXPECT_TRUE(device.readWrite(nullptr, bytes.data(), 2));
    EXPECT_EQ(driver.lastTransfer().tx_buf, 0U);
    EXPECT_TRUE(device.readWrite(nullptr, nullptr, 2));
    EXPECT_EQ(driver.lastTransfer().len, 2U);
}

TEST_F(SpiDeviceTest, PassesPrivateStorageOfASharedArray) {
    openAndForget();
    const QByteArray other("shared");
    device.write(other); // takes a copy that shares the storage
    EXPECT_NE(driver.lastTransfer().tx_buf, reinterpret_cast<std::uintptr_t>(other.constData()));
    EXPECT_EQ(other, "shared");
}

TEST_F(SpiDeviceTest, FailedTransfersGiveNothing) {
    openAndForget();
    driver.fails = true;
    char byte = 0;
    EXPECT_TRUE(device.read(4).isEmpty());
    EXPECT_TRUE(device.readWrite(QByteArray("abc")).isEmpty());
    EXPECT_FALSE(device.readWrite(&byte, &byte, 1));
    device.write(QByteArray("abc"));
    EXPECT_THAT(driver.requests, SizeIs(4));
}

TEST_F(SpiDeviceTest, TransferOfNothingSucceeds) {
    openAndForget();
    EXPECT_TRUE(device.readWrite(nullptr, nullptr, 0));
}

} // namespace
