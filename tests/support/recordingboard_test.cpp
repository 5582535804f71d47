#include "recordingboard.h"

#include <gmock/gmock.h>

#include <array>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RecordingBoardTest : public testing::Test {
protected:
    RecordingBoardTest() { board.reset(); }

    static void send(std::vector<unsigned char> bytes) {
        platform_spi_send_data(bytes.data(), static_cast<unsigned short>(bytes.size()));
    }

    static void select() { platform_gpio_value(GPIO_CS, GPIO_LOW); }
    static void deselect() { platform_gpio_value(GPIO_CS, GPIO_HIGH); }

    static void write(std::vector<unsigned char> headerAndData) {
        select();
        send(std::move(headerAndData));
        deselect();
    }

    static std::vector<unsigned char> read(std::vector<unsigned char> header, std::size_t size) {
        std::vector<unsigned char> data(size);
        select();
        send(std::move(header));
        platform_spi_recv_data(data.data(), static_cast<unsigned short>(size));
        deselect();
        return data;
    }
};

TEST_F(RecordingBoardTest, TellsTransactionsApart) {
    write({0xB0, 0x20, 0x00, 0x05});
    read({0x30, 0x20, 0x00, 0x00}, 2);
    write({0x44, 0x00, 0x00});
    write({0x00, 0x00, 0x00});
    EXPECT_THAT(board.transactions(),
                ElementsAre(Transaction::write(0x302000, {5}), Transaction::read(0x302000, {5, 0}),
                            Transaction::hostCommand(0x44), Transaction::hostCommand(0x00)));
    EXPECT_THAT(board.transactions()[1].messageSizes, ElementsAre(4, 2));
    EXPECT_EQ(board.messageCount(), 5U);
    EXPECT_EQ(board.byteCount(), 16U);
}

TEST_F(RecordingBoardTest, ListsEverythingInOrder) {
    platform_init();
    platform_gpio_value(GPIO_PD, GPIO_HIGH);
    platform_spi_init();
    platform_sleep_ms(20);
    select();
    platform_spi_send_recv_byte(0x80);
    deselect();
    platform_spi_deinit();
    EXPECT_THAT(board.events(), ElementsAre("init", "PD high", "open", "sleep 20", "CS low",
                                            "exchange 80 -> 00", "CS high", "close"));
    EXPECT_EQ(board.sleptMs(), 20U);
}

TEST_F(RecordingBoardTest, HearsNothingWithoutChipSelect) {
    send({0x80, 0x00, 0x10, 0x55});
    EXPECT_THAT(board.transactions(), IsEmpty());
    EXPECT_EQ(board.peek(0x10), 0U);
}

TEST_F(RecordingBoardTest, GivesQueuedValuesBeforeWhatTheMemoryHolds) {
    board.poke(0x10, 0xDD);
    board.queueReads(0x10, {0x01020304, 0xAA});
    const std::vector<unsigned char> header = {0x00, 0x00, 0x10, 0x00};
    EXPECT_THAT(read(header, 4), ElementsAre(4, 3, 2, 1));
    EXPECT_THAT(read(header, 1), ElementsAre(0xAA));
    EXPECT_THAT(read(header, 1), ElementsAre(0xDD));
}

TEST_F(RecordingBoardTest, WrapsTheCommandFifo) {
    write({0xB0, 0x8F, 0xFE, 1, 2, 3, 4});
    EXPECT_EQ(board.peek(0x308FFC), 0x02010000U);
    EXPECT_EQ(board.peek(0x308000), 0x00000403U);
}

TEST_F(RecordingBoardTest, CollectsTheCommandStreamInWords) {
    write({0xB0, 0x80, 0x00, 1, 0, 0, 0, 'H', 'i'});
    write({0xB0, 0x80, 0x08, 2, 0, 0, 0});
    EXPECT_THAT(board.commandWords(), ElementsAre(1U, 0x6948U, 2U));
}

TEST_F(RecordingBoardTest, ConsumesAndSwapsAsAnIdleCoprocessor) {
    write({0xB0, 0x20, 0xFC, 0x34, 0x12});
    EXPECT_EQ(board.peek(0x3020F8), 0x1234U);
    write({0x90, 0x24, 0xE8, 0x78, 0x06});
    EXPECT_EQ(board.peek(0x1024E4), 0x0678U);
    write({0xB0, 0x20, 0x54, 2});
    EXPECT_EQ(board.peek(0x302054), 0U);
}

TEST_F(RecordingBoardTest, LeavesTheRegistersAloneAsABusyCoprocessor) {
    board.setCoprocessorIdle(false);
    write({0xB0, 0x20, 0xFC, 0x34, 0x12});
    write({0xB0, 0x20, 0x54, 2});
    EXPECT_EQ(board.peek(0x3020F8), 0U);
    EXPECT_EQ(board.peek(0x302054), 2U);
}

} // namespace
