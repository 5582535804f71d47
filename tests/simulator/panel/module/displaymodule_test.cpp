#include "displaymodule.h"
#include "modulehost.h"

#include <gtest/gtest.h>

#include <thread>

namespace panel {
namespace {

class Recorder : public Watcher {
public:
    void frameScanned(const controller::Controller& controller) override {
        lastFrame = controller.framesScanned();
        ++frames;
    }
    void transactionEnded(const controller::Transaction& transaction) override {
        transactions.push_back(transaction.sent);
    }
    void touchTagRead(int tag) override { tags.push_back(tag); }
    void complained(const std::string& text) override { complaints.push_back(text); }

    std::vector<int> tags;
    std::uint32_t lastFrame = 0;
    std::uint32_t frames = 0;
    std::vector<Bytes> transactions;
    std::vector<std::string> complaints;
};

class DisplayModuleTest : public testing::Test, protected ModuleHost {
protected:
    DisplayModuleTest() { m_module.addWatcher(&m_seen); }

    Recorder m_seen;
};

TEST_F(DisplayModuleTest, CarriesTheWiresToTheController) {
    boot();
    EXPECT_EQ(read(0x0C0000, 4), (Bytes{0x08, 0x15, 0x01, 0x00}));
    EXPECT_TRUE(m_seen.complaints.empty());
}

TEST_F(DisplayModuleTest, ShowsWatchersEveryTransaction) {
    boot();
    m_seen.transactions.clear();
    send({0xB0, 0x20, 0x70, 0x05});
    EXPECT_EQ(m_seen.transactions, (std::vector<Bytes>{{0xB0, 0x20, 0x70, 0x05}}));
}

TEST_F(DisplayModuleTest, ShowsWatchersATagBeforeItsReadEnds) {
    boot();
    const Bytes header{0x30, 0x21, 0x2C, 0};
    m_module.chipSelect(false);
    m_module.transfer(header.data(), nullptr, header.size());
    std::uint8_t tag = 0;
    m_module.transfer(nullptr, &tag, 1);
    EXPECT_EQ(m_seen.tags, std::vector<int>{tag});
    m_module.chipSelect(true);
    EXPECT_EQ(m_seen.tags.size(), 1U);
}

TEST_F(DisplayModuleTest, ScansFramesInRealTime) {
    boot();
    EXPECT_FALSE(m_module.panel().scanning);
    send({0xB0, 0x20, 0x70, 0x05}); // pixel clock on
    EXPECT_TRUE(m_module.panel().scanning);
    waitForFrames(3);
    EXPECT_EQ(m_seen.frames, m_module.counts().frames);
}

TEST_F(DisplayModuleTest, MakesUpForNoMoreThanATenthOfASecondAtOnce) {
    boot();
    send({0xB0, 0x20, 0x70, 0x05});
    waitForFrames(1);
    std::this_thread::sleep_for(std::chrono::milliseconds(400)); // some thirty frames
    const std::uint32_t before = m_module.counts().frames;
    m_module.advance();
    EXPECT_LE(m_module.counts().frames, before + 8);
    waitForFrames(before + 9); // it goes on
}

TEST_F(DisplayModuleTest, StandsStillWhilePausedAndAnswers) {
    boot();
    send({0xB0, 0x20, 0x70, 0x05});
    waitForFrames(1);
    m_module.setPaused(true);
    const std::uint32_t before = m_module.counts().frames;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    m_module.advance();
    EXPECT_EQ(m_module.counts().frames, before);
    EXPECT_EQ(read(0x302000, 1), Bytes{0x7C});
    m_module.setPaused(false);
    waitForFrames(before + 1);
}

TEST_F(DisplayModuleTest, GoesOnFrameByFrame) {
    boot();
    m_module.stepFrame(); // nothing is scanned yet
    EXPECT_TRUE(m_module.isPaused());
    EXPECT_EQ(m_module.counts().frames, 0U);
    send({0xB0, 0x20, 0x70, 0x05});
    for (std::uint32_t frame = 1; frame <= 3; ++frame) {
        m_module.stepFrame();
        EXPECT_EQ(m_module.counts().frames, frame);
    }
}

TEST_F(DisplayModuleTest, GoesOnCommandByCommand) {
    boot();
    m_module.setPaused(true);
    send({0xB0, 0x80, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0x07, 0, 0, 0x26}); // DLSTART, CLEAR
    send({0xB0, 0x20, 0xFC, 0x08, 0x00});                               // REG_CMD_WRITE
    EXPECT_EQ(read(0x3020F8, 1), Bytes{0});                             // REG_CMD_READ
    EXPECT_TRUE(m_module.stepCommand());
    EXPECT_EQ(read(0x3020F8, 1), Bytes{4});
    EXPECT_TRUE(m_module.stepCommand());
    EXPECT_FALSE(m_module.stepCommand());
    EXPECT_EQ(read(0x3020F8, 1), Bytes{8});
}

TEST_F(DisplayModuleTest, RunsFasterAndSlowerThanTheClock) {
    boot();
    const auto modelTime = [this] {
        m_module.advance();
        return m_module.locked([](const controller::Controller& chip) { return chip.time(); });
    };
    const auto timeIn20ms = [&] {
        const auto start = std::chrono::steady_clock::now();
        const controller::Nanoseconds before = modelTime();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        const controller::Nanoseconds passed = modelTime() - before;
        const std::chrono::duration<double, std::nano> clock =
            std::chrono::steady_clock::now() - start;
        return static_cast<double>(passed) / clock.count();
    };
    m_module.setSpeed(0.01);
    EXPECT_LT(timeIn20ms(), 0.1);
    m_module.setSpeed(10);
    const controller::Nanoseconds before = modelTime();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_GE(modelTime() - before, 200'000'000U); // ten times what has passed at least
    m_module.setSpeed(1000);
    EXPECT_EQ(m_module.speed(), DisplayModule::fastest);
}

TEST_F(DisplayModuleTest, CountsFramesOverPowerCycles) {
    boot();
    send({0xB0, 0x20, 0x70, 0x05});
    waitForFrames(3);
    m_module.powerDown(false);
    boot();
    send({0xB0, 0x20, 0x70, 0x05});
    const std::uint32_t before = m_module.counts().frames;
    EXPECT_GE(before, 3U);
    waitForFrames(before + 1);
    EXPECT_LT(m_seen.lastFrame, m_module.counts().frames);
}

TEST_F(DisplayModuleTest, PassesComplaintsOn) {
    boot();
    send({0xBF, 0xFF, 0xFF, 0x01}); // nothing is there
    EXPECT_EQ(m_seen.complaints.size(), 1U);
}

TEST_F(DisplayModuleTest, ARemovedWatcherSeesNothingMore) {
    boot();
    m_module.removeWatcher(&m_seen);
    m_seen.transactions.clear();
    send({0xB0, 0x20, 0x70, 0x05});
    EXPECT_TRUE(m_seen.transactions.empty());
}

TEST_F(DisplayModuleTest, ControllerFaultsCanBeSwitched) {
    boot();
    m_module.setIdentity(0x12345678);
    EXPECT_EQ(read(0x0C0000, 4), (Bytes{0x78, 0x56, 0x34, 0x12}));
    m_module.setAnswering(false);
    EXPECT_EQ(read(0x0C0000, 4), (Bytes{0, 0, 0, 0}));
}

TEST_F(DisplayModuleTest, APictureHasThePanelsSize) {
    EXPECT_EQ(m_module.picture().width, 480);
    EXPECT_EQ(m_module.picture().height, 272);
}

} // namespace
} // namespace panel
