#include "bustrace.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace panel {
namespace {

using Bytes = std::vector<std::uint8_t>;

controller::Transaction transaction(const Bytes& sent, Bytes received = {}) {
    received.resize(sent.size());
    return {1234567000, 1234600000, sent, received};
}

class BusTraceTest : public testing::Test {
protected:
    // Without the time.
    std::string body(const Bytes& sent, const Bytes& received = {}) {
        return m_text.of(transaction(sent, received)).mid(12).toStdString();
    }

    TransactionText m_text{controller::Generation::E3};
};

TEST_F(BusTraceTest, BeginsWithTheTimeInSeconds) {
    EXPECT_EQ(m_text.of(transaction({0x00, 0x00, 0x00})).toStdString(), "   1.234567 H ACTIVE");
}

TEST_F(BusTraceTest, NamesHostCommands) {
    EXPECT_EQ(body({0x44, 0x00, 0x00}), "H CLKEXT");
    EXPECT_EQ(body({0x49, 0x12, 0x00}), "H PD_ROMS 0x12");
}

TEST_F(BusTraceTest, ShowsRegistersByNameWithTheWidthOfTheAccess) {
    EXPECT_EQ(body({0x30, 0x20, 0x00, 0, 0}, {0, 0, 0, 0, 0x7C}), "R REG_ID 0x7C");
    EXPECT_EQ(body({0xB0, 0x20, 0x70, 0x05}), "W REG_PCLK 0x05");
    EXPECT_EQ(body({0xB0, 0x20, 0x2C, 0x24, 0x02}), "W REG_HCYCLE 0x0224");
    EXPECT_EQ(body({0xB0, 0x20, 0x2C, 0x24, 0x02, 0, 0, 0x2B, 0, 0, 0}),
              "W REG_HCYCLE 0x00000224; REG_HOFFSET 0x0000002B");
}

TEST_F(BusTraceTest, ShowsOtherMemoryAsBytes) {
    EXPECT_EQ(body({0x80, 0x00, 0x10, 0xAB, 0xCD}), "W RAM_G+16 ab cd");
    Bytes read(4 + 20, 0);
    read[1] = 1;
    EXPECT_EQ(body(read),
              "R RAM_G+256 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ... (20 bytes)");
}

TEST_F(BusTraceTest, NamesDisplayListWords) {
    EXPECT_EQ(body({0xB0, 0x00, 0x00, 0x07, 0, 0, 0x26, 0, 0, 0, 0}),
              "W RAM_DL CLEAR 1 1 1; DISPLAY");
}

TEST_F(BusTraceTest, NamesCommandsInTheRingAcrossTransactions) {
    EXPECT_EQ(body({0xB0, 0x80, 0x10, 0x09, 0xFF, 0xFF, 0xFF}), "W RAM_CMD+16 CMD_BGCOLOR ...");
    EXPECT_EQ(body({0xB0, 0x80, 0x14, 0x56, 0x34, 0x12, 0x00, 0x01, 0xFF, 0xFF, 0xFF}),
              "W RAM_CMD+20 CMD_BGCOLOR 0x123456; CMD_SWAP");
}

TEST_F(BusTraceTest, ShowsWhatIsMalformedAsItIs) {
    EXPECT_EQ(body({}), "- nothing sent");
    EXPECT_EQ(body({0xC0, 1, 2}), "? c0 01 02");
    EXPECT_EQ(body({0x80, 1}), "? 80 01");
    EXPECT_EQ(body({0x30, 0x20}), "? 30 20");
}

TEST_F(BusTraceTest, ReadsAndWritesThatEndBeforeTheirDataAreLinesToo) {
    EXPECT_EQ(body({0x30, 0x20, 0x00, 0x00}), "R REG_ID -");
    EXPECT_EQ(body({0xB0, 0x80, 0x00}), "W RAM_CMD -");
}

TEST_F(BusTraceTest, WritesOneLineForEachTransaction) {
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("trace.txt"));
    {
        BusTrace trace(controller::Generation::E3);
        ASSERT_TRUE(trace.open(path));
        trace.transactionEnded(transaction({0x00, 0x00, 0x00}));
        trace.transactionEnded(transaction({0x44, 0x00, 0x00}));
    }
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("   1.234567 H ACTIVE\n   1.234567 H CLKEXT\n"));
}

TEST_F(BusTraceTest, SaysWhenTheFileCannotBeWritten) {
    BusTrace trace(controller::Generation::E3);
    EXPECT_FALSE(trace.open(QStringLiteral("/no/such/directory/trace")));
    EXPECT_FALSE(trace.errorString().isEmpty());
}

} // namespace
} // namespace panel
