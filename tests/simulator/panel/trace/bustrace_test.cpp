#include "bustrace.h"
#include "dlwords.h"
#include "stillhost.h"
#include "vcdtrace.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace panel {
namespace {

namespace cmd = controllertest::cmd;
namespace dl = controller::dl;
using testing::ElementsAre;
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

// A trace of a module's doings.
template<typename Kind>
class TraceOf : public testing::Test {
protected:
    void begin(Kind& trace) {
        ASSERT_TRUE(trace.open(m_path));
        m_host.module.addObserver(&trace);
        m_host.module.addWatcher(&trace.fingers());
    }
    std::vector<std::string> end(Kind& trace) {
        m_host.module.removeObserver(&trace);
        m_host.module.removeWatcher(&trace.fingers());
        EXPECT_TRUE(trace.finish());
        QFile file(m_path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        std::vector<std::string> lines;
        while (!file.atEnd()) {
            lines.push_back(file.readLine().trimmed().toStdString());
        }
        return lines;
    }

    QTemporaryDir m_directory;
    QString m_path = m_directory.filePath(QStringLiteral("trace"));
    StillHost m_host;
};

// Without the times.
std::vector<std::string> bodies(const std::vector<std::string>& lines) {
    std::vector<std::string> bodies;
    bodies.reserve(lines.size());
    for (const std::string& line : lines) {
        bodies.push_back(line.substr(line.find(' ') + 1));
    }
    return bodies;
}

using BusTraceOfAModule = TraceOf<BusTrace>;

TEST_F(BusTraceOfAModule, TellsEverythingInTheOrderOfTime) {
    BusTrace trace(controller::Generation::E3);
    begin(trace);
    m_host.module.touch(339, 28);
    m_host.command({cmd::dlStart, dl::clear(true, true, true), cmd::text,
                    controllertest::pair(1, 2), controllertest::pair(28, 0x600), 0x6B4F, 0,
                    cmd::swap});
    m_host.frames(1);
    trace.note(TraceEvent::Request, QStringLiteral("START 1"), 99'000'000'000);
    trace.note(TraceEvent::Reply, QStringLiteral("Ok"), 99'000'000'000);
    trace.note(TraceEvent::ScriptLine, QStringLiteral("tap 1 2"), 99'000'000'000);
    trace.note(TraceEvent::Fault, QStringLiteral("bus-dead: x"), 99'000'000'000);
    const std::vector<std::string> lines = end(trace);

    EXPECT_THAT(
        bodies(lines),
        ElementsAre("T 339 28", "P CS low",
                    "W RAM_CMD CMD_DLSTART; CLEAR 1 1 1; CMD_TEXT 1 2 28 OPT_CENTER \"Ok\"; "
                    "DISPLAY; CMD_SWAP",
                    "P CS high", "P CS low", "W REG_CMD_WRITE 0x00000020", "P CS high",
                    testing::MatchesRegex("L 1 CMD_TEXT 1 2 28 OPT_CENTER \"Ok\": SAVE_CONTEXT; "
                                          ".*BEGIN BITMAPS; .*; RESTORE_CONTEXT"),
                    "D", "< START 1", "> Ok", "S tap 1 2", "F bus-dead: x"));
    EXPECT_TRUE(std::is_sorted(lines.begin(), lines.end(), [](const auto& a, const auto& b) {
        return std::stod(a) < std::stod(b);
    }));
}

TEST_F(BusTraceOfAModule, TellsThePowerDownPinAndComplaints) {
    BusTrace trace(controller::Generation::E3);
    begin(trace);
    m_host.send({0xBF, 0, 0, 1});
    m_host.module.powerDown(false);
    EXPECT_THAT(bodies(end(trace)),
                ElementsAre("P CS low", testing::StartsWith("W 0x3F0000 "),
                            testing::StartsWith("! "), "P CS high", "P PD low"));
}

TEST(TraceFile, ThatCannotBeWrittenWhollyIsNoted) {
    BusTrace trace(controller::Generation::E3);
    ASSERT_TRUE(trace.open(QStringLiteral("/dev/full")));
    trace.note(TraceEvent::Reply, QStringLiteral("Ok"), 0);
    EXPECT_FALSE(trace.finish());
    EXPECT_FALSE(trace.errorString().isEmpty());
}

using VcdTraceOfAModule = TraceOf<VcdTrace>;

TEST_F(VcdTraceOfAModule, IsAValueChangeDump) {
    m_host.module.setPaused(false); // so that time goes on within a transaction
    VcdTrace trace(*m_host.module.locked([](const controller::Controller& c) { return &c; }));
    begin(trace);
    m_host.command({cmd::dlStart, cmd::swap, cmd::dlStart});
    m_host.module.touch(1, 1);
    m_host.frames(1);
    const std::vector<std::string> lines = end(trace);

    const auto at = [&lines](const std::string& line) {
        return std::find(lines.begin(), lines.end(), line) - lines.begin();
    };
    const auto count = static_cast<std::ptrdiff_t>(lines.size());
    EXPECT_LT(at("$timescale 1ns $end"), at("$enddefinitions $end"));
    EXPECT_LT(at("$var wire 1 \" CS $end"), at("$enddefinitions $end"));
    EXPECT_LT(at("$var wire 12 % RING [11:0] $end"), at("$enddefinitions $end"));
    EXPECT_LT(at("0\""), at("b10110000 #")); // the first byte after chip select has gone low
    EXPECT_LT(at("b10110000 #"), at("1\""));
    EXPECT_LT(at("b1100 %"), count); // three words, before they are taken
    EXPECT_LT(at("b100 %"), count);  // and the one that waits for the frame
    EXPECT_LT(at("b1100 %"), at("b100 %"));
    EXPECT_LT(at("1("), count);

    long long last = -1;
    for (const std::string& line : lines) {
        if (line[0] == '#') {
            const long long time = std::stoll(line.substr(1));
            EXPECT_GT(time, last);
            last = time;
        }
    }
}

TEST_F(BusTraceTest, SaysWhenTheFileCannotBeWritten) {
    BusTrace trace(controller::Generation::E3);
    EXPECT_FALSE(trace.open(QStringLiteral("/no/such/directory/trace")));
    EXPECT_FALSE(trace.errorString().isEmpty());
}

} // namespace
} // namespace panel
