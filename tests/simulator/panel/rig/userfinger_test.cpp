#include "modulehost.h"
#include "userfinger.h"

#include <gtest/gtest.h>

namespace panel {
namespace {

using Events = std::vector<std::string>;

class UserFingerTest : public testing::Test, protected ModuleHost {
protected:
    UserFingerTest() {
        QObject::connect(&m_finger, &UserFinger::pressed, &m_context,
                         [this](QPoint pixel) { m_events.push_back("press" + at(pixel)); });
        QObject::connect(&m_finger, &UserFinger::moved, &m_context,
                         [this](QPoint pixel) { m_events.push_back("move" + at(pixel)); });
        QObject::connect(&m_finger, &UserFinger::lifted, &m_context,
                         [this] { m_events.push_back("lift"); });
    }

    static std::string at(QPoint pixel) {
        return ' ' + std::to_string(pixel.x()) + ' ' + std::to_string(pixel.y());
    }

    // A panel that scans.
    void start() {
        boot();
        send({0xB0, 0x20, 0x70, 0x05}); // pixel clock on
        waitForMoreFrames();
    }

    void waitForMoreFrames() { waitForFrames(m_module.counts().frames + 3); }

    // Looks at the touch as often as an application until it knows and has drawn.
    void readTag(int times) {
        for (int i = 0; i < times; ++i) {
            m_finger.advance();
            read(0x30212C, 1);
        }
        m_finger.advance();
    }

    UserFinger m_finger{m_module};
    Events m_events;
    QObject m_context;
};

TEST_F(UserFingerTest, TouchesAtOnce) {
    m_finger.touch({10, 20});
    EXPECT_EQ(m_events, Events{"press 10 20"});
    m_finger.touch({11, 20});
    EXPECT_EQ(m_events.back(), "move 11 20");
}

TEST_F(UserFingerTest, AClickIsHeldUntilTheApplicationHasNoticed) {
    start();
    m_finger.touch({10, 20});
    m_finger.release();
    waitForMoreFrames();
    m_finger.advance();
    EXPECT_EQ(m_events, Events{"press 10 20"}) << "nobody has looked";
    readTag(4);
    EXPECT_EQ(m_events, (Events{"press 10 20", "lift"}));
}

TEST_F(UserFingerTest, ASecondClickComesWhenTheApplicationKnowsOfTheFirstsEnd) {
    start();
    m_finger.touch({10, 20});
    m_finger.release();
    m_finger.touch({30, 40});
    m_finger.release();
    waitForMoreFrames();
    readTag(4);
    EXPECT_EQ(m_events, (Events{"press 10 20", "lift"}));
    waitForMoreFrames();
    readTag(4);
    EXPECT_EQ(m_events, (Events{"press 10 20", "lift", "press 30 40"}));
    waitForMoreFrames();
    readTag(4);
    EXPECT_EQ(m_events.back(), "lift");
}

TEST_F(UserFingerTest, OfASlideThatWaitsOnlyItsEndsCount) {
    start();
    m_finger.touch({10, 20});
    m_finger.release();
    for (int x = 30; x < 40; ++x) {
        m_finger.touch({x, 40});
    }
    waitForMoreFrames();
    readTag(4);
    waitForMoreFrames();
    readTag(4);
    EXPECT_EQ(m_events, (Events{"press 10 20", "lift", "press 30 40", "move 39 40"}));
}

TEST_F(UserFingerTest, AnApplicationThatDoesNotLookGetsATouchForASecond) {
    m_finger.touch({10, 20});
    m_finger.release();
    const auto begin = std::chrono::steady_clock::now();
    while (m_events.size() < 2 && std::chrono::steady_clock::now() - begin < generous) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        m_finger.advance();
    }
    EXPECT_EQ(m_events.back(), "lift");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1000));
}

TEST_F(UserFingerTest, LiftsNoFingerThatIsUp) {
    m_finger.release();
    EXPECT_TRUE(m_events.empty());
}

} // namespace
} // namespace panel
