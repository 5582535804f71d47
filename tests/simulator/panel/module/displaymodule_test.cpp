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
