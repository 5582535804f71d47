// What a model tells about its work to whoever observes it, and what it lets be seen afterwards.

#include "host.h"
#include "turn.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace controllertest;
using testing::ElementsAre;
using V = std::vector<std::uint32_t>;

// Everything in the order in which it came, a line each.
class Diary : public controller::Observer {
public:
    void pinChanged(controller::Pin pin, bool high, Nanoseconds) override {
        add(std::string(pin == controller::Pin::PowerDown ? "PD " : "CS ") +
            (high ? "high" : "low"));
    }
    void transactionEnded(const controller::Transaction& transaction) override {
        add("transaction " + std::to_string(transaction.sent.size()));
    }
    void powerLost() override { add("power lost"); }
    void commandTaken(const controller::RingCommand& command, Nanoseconds) override {
        add(std::string(command.info ? command.info->name : "word") + " " +
            std::to_string(command.words.size()) + " \"" + command.text + "\" at " +
            std::to_string(command.offset) + "+" + std::to_string(command.length));
    }
    void listWordPut(std::size_t index, std::uint32_t) override {
        add("list " + std::to_string(index));
    }
    void bytesWritten(std::uint32_t address, std::uint32_t count) override {
        add("written " + std::to_string(address) + "+" + std::to_string(count));
    }
    void bytesCopied(std::uint32_t destination, std::uint32_t source,
                     std::uint32_t count) override {
        add("copied " + std::to_string(destination) + " " + std::to_string(source) + "+" +
            std::to_string(count));
    }
    void ringFed(std::uint32_t offset) override { add("fed " + std::to_string(offset)); }
    void listsExchanged() override { add("exchanged"); }

    std::vector<std::string> take() { return std::move(m_lines); }

private:
    void add(const std::string& line) { m_lines.push_back(line); }

    std::vector<std::string> m_lines;
};

class Observing : public testing::Test {
protected:
    Observing() {
        host.bootWithPanel();
        host.chip.setObserver(&diary);
    }
    ~Observing() override { host.chip.setObserver(&host.seen); }

    // Without what the host's own way to say it looks like.
    std::vector<std::string> doings() {
        std::vector<std::string> lines;
        for (const std::string& line : diary.take()) {
            if (line.substr(0, 2) != "CS" && line.substr(0, 11) != "transaction") {
                lines.push_back(line);
            }
        }
        return lines;
    }

    Diary diary;
    Host host{Generation::E3};
};

TEST_F(Observing, CommandsComeWithTheirPlaceInTheRingAndWhatTheyPut) {
    host.send(V{cmd::dlStart, 0x26000007, cmd::text, pair(1, 2), pair(26, 0)} + words("Okay"));
    EXPECT_THAT(doings(), testing::IsSupersetOf({"DLSTART 0 \"\" at 0+4", "word 1 \"\" at 4+4",
                                                 "list 0", "TEXT 2 \"Okay\" at 8+20", "list 1"}));
}

TEST_F(Observing, ACommandAcrossTheEndOfTheRingHasAllItsBytes) {
    host.send(V(1022, 0x2D000000)); // NOP
    host.send({cmd::dlStart});
    diary.take();
    host.send({cmd::memZero, 100, 4});
    EXPECT_THAT(doings(), ElementsAre("MEMZERO 2 \"\" at 4092+12", "written 100+4"));
}

TEST_F(Observing, MemoryOperationsSayWhatTheyHaveWritten) {
    host.send({cmd::memSet, 8, 1, 4, cmd::memCpy, 0x100, 8, 4});
    EXPECT_THAT(doings(), ElementsAre("MEMSET 3 \"\" at 0+16", "written 8+4",
                                      "MEMCPY 3 \"\" at 16+16", "copied 256 8+4"));
}

TEST_F(Observing, ASwapExchangesTheLists) {
    host.send({cmd::dlStart, 0, cmd::swap});
    host.waitFrames(2);
    EXPECT_THAT(doings(), testing::Contains("exchanged"));
    host.chip.setPowerDown(false, host.now);
    host.chip.setPowerDown(false, host.now);
    EXPECT_THAT(diary.take(), ElementsAre("PD low", "power lost", "power lost"));
}

TEST_F(Observing, ATransactionStandsBetweenTheEdgesOfChipSelect) {
    host.write8(0, 1);
    EXPECT_THAT(diary.take(), ElementsAre("CS low", "transaction 4", "CS high"));
}

TEST_F(Observing, WordsFedThroughTheRegisterSayWhereTheyWent) {
    host.write32(0x302578, 0x26000007);
    EXPECT_THAT(doings(), ElementsAre("fed 0", "word 1 \"\" at 0+4", "list 0"));
}

TEST_F(Observing, AHaltedCoprocessorTakesOneCommandAtATime) {
    host.chip.setCoprocessorHalted(true);
    host.send(V{cmd::dlStart, 0x26000007, cmd::text, pair(1, 2), pair(26, 0)} + words("Okay"));
    EXPECT_THAT(doings(), ElementsAre());
    EXPECT_TRUE(host.chip.stepCoprocessor());
    EXPECT_THAT(doings(), ElementsAre("DLSTART 0 \"\" at 0+4"));
    EXPECT_TRUE(host.chip.stepCoprocessor());
    EXPECT_THAT(doings(), ElementsAre("word 1 \"\" at 4+4", "list 0"));
    EXPECT_TRUE(host.chip.stepCoprocessor());
    EXPECT_FALSE(host.chip.stepCoprocessor());
    EXPECT_TRUE(host.ringIsEmpty());
    host.send({cmd::dlStart, cmd::swap, cmd::dlStart});
    EXPECT_FALSE(host.ringIsEmpty());
    host.chip.setCoprocessorHalted(false);
    host.waitFrames(2);
    EXPECT_TRUE(host.ringIsEmpty());
}

TEST_F(Observing, ACommandThatWaitsIsNotDone) {
    host.chip.setCoprocessorHalted(true);
    host.send({cmd::dlStart, cmd::swap, cmd::dlStart});
    EXPECT_TRUE(host.chip.stepCoprocessor());
    EXPECT_TRUE(host.chip.stepCoprocessor());
    EXPECT_FALSE(host.chip.stepCoprocessor()); // the swap is to come
    host.waitFrames(1);
    EXPECT_TRUE(host.chip.stepCoprocessor());
}

TEST_F(Observing, APixelsHistoryIsInThePanelsCoordinates) {
    const V disc{0x26000007, 0x0D000050, 0x1F000002, 0x80000000U | 20U << 21U | 10U << 12U};
    host.send(V{cmd::dlStart} + disc + V{0, cmd::swap});
    host.waitFrames(2);
    EXPECT_EQ(host.chip.historyOf(20, 10).steps.size(), 2U);
    EXPECT_EQ(host.chip.historyOf(459, 261).steps.size(), 1U);
    EXPECT_EQ(host.chip.listShown()[2], 0x1F000002U);
    const controller::PixelRect area = host.chip.areaOf({3});
    EXPECT_NEAR(area.left, 15, 1);
    EXPECT_NEAR(area.bottom, 16, 1);

    host.write8(0x302058, 1); // REG_ROTATE: upside down
    EXPECT_EQ(host.chip.historyOf(20, 10).steps.size(), 1U);
    EXPECT_EQ(host.chip.historyOf(459, 261).steps.size(), 2U);
    const controller::PixelRect turned = host.chip.areaOf({3});
    EXPECT_NEAR(turned.right, 480 - 15, 1);
    EXPECT_NEAR(turned.top, 272 - 16, 1);
    EXPECT_TRUE(host.chip.historyOf(480, 0).steps.empty());
}

TEST(TurnedPixels, StandWhereTheTurnedPictureHasThem) {
    constexpr int width = 3;
    constexpr int height = 2;
    const std::vector<int> picture{0, 1, 2, 3, 4, 5};
    for (std::uint32_t rotate = 0; rotate < 8; ++rotate) {
        const auto turn = controller::Turn::of(rotate);
        const std::vector<int> panel = turn.turned(picture, width, height);
        const int panelWidth = turn.portrait ? height : width;
        for (int value = 0; value < width * height; ++value) {
            const controller::Pixel at =
                turn.toPanel({value % width, value / width}, width, height);
            EXPECT_EQ(panel[static_cast<std::size_t>(at.y * panelWidth + at.x)], value) << rotate;
            const controller::Pixel back = turn.toPicture(at, width, height);
            EXPECT_EQ(back.y * width + back.x, value) << rotate;
        }
    }
}

} // namespace
