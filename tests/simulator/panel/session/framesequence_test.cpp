#include "framecommands.h"
#include "framesequence.h"
#include "host.h"
#include "pictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace panel {
namespace {

using namespace controllertest; // its operator+ too

using Words = std::vector<std::uint32_t>;

constexpr std::uint32_t display = 0;
constexpr std::uint32_t clearAll = 0x26000007;
constexpr controller::Nanoseconds frame = 13'338'667; // 5 x 548 x 292 clocks of 60 MHz

// A list that says `text`, with what stands behind it.
Words listSaying(const char* text, const Words& more = {}) {
    return Words{cmd::dlStart, clearAll, cmd::text, pair(10, 10), pair(28, 0)} +
           controllertest::words(text) + more + Words{display, cmd::swap};
}

script::SoughtText text(const char* pattern) {
    return {QString::fromLatin1(pattern)};
}

template<typename Kind, typename... Arguments>
script::FrameStepPtr step(Arguments... arguments) {
    return std::make_shared<const Kind>(std::move(arguments)...);
}

// Keeps pictures; nothing else is to be asked of it.
class PictureStage : public script::Stage {
public:
    Rig& rig() override { throw std::logic_error("there is no rig"); }
    HeldTouch& finger() override { throw std::logic_error("there is no finger"); }
    bool isFirstCall() const override { return true; }
    std::chrono::milliseconds elapsed() const override { return {}; }
    void fail(const QString& why, ExitStatus /*status*/) override {
        throw std::logic_error(why.toStdString());
    }
    void keepPicture(const QString& /*name*/, const QImage& image,
                     const std::vector<PanelText>& onIt) override {
        picture = image;
        texts = onIt;
    }
    void endScript() override {}
    void playFrames() override {}

    QImage picture;
    std::vector<PanelText> texts;
};

QImage pictureOf(const FrameSequence::Event& event) {
    PictureStage stage;
    event.outcome.then(stage);
    return stage.picture;
}

class FrameSequenceTest : public testing::Test, private controller::Observer {
protected:
    FrameSequenceTest() {
        m_host.bootWithPanel();
        m_host.chip.setObserver(this);
    }

    void play(const std::vector<script::FrameStepPtr>& steps) {
        m_sequence.start(steps, m_host.chip);
    }

    std::size_t stepsEnded() const { return m_events.size(); }

    Host m_host{controller::Generation::E3};
    std::vector<FrameSequence::Event> m_events;
    std::vector<std::uint32_t> m_frames; // at which the steps ended
    FrameSequence m_sequence{[this](const FrameSequence::Event& event) {
        m_events.push_back(event);
        m_frames.push_back(m_host.chip.framesScanned());
    }};

private:
    void frameScanned(std::uint32_t /*number*/, controller::Nanoseconds /*now*/) override {
        m_sequence.frameScanned(m_host.chip);
    }
};

TEST_F(FrameSequenceTest, WaitsForSoManyFrames) {
    const std::uint32_t start = m_host.chip.framesScanned();
    play({step<script::WaitFrames>(2), step<script::WaitFrames>(3)});
    EXPECT_EQ(stepsEnded(), 0U);
    m_host.waitFrames(10);
    EXPECT_EQ(m_frames, (std::vector<std::uint32_t>{start + 2, start + 5}));
}

TEST_F(FrameSequenceTest, TellsWhichStepHasEnded) {
    play({step<script::WaitFrames>(1), step<script::WaitFrames>(2), step<script::WaitQuiet>()});
    EXPECT_EQ(stepsEnded(), 0U);
    m_host.waitFrames(1);
    ASSERT_EQ(stepsEnded(), 1U);
    m_host.waitFrames(2);
    ASSERT_EQ(stepsEnded(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(m_events[i].step, i);
    }
}

TEST_F(FrameSequenceTest, WaitsForText) {
    play({step<script::WaitText>(text("Ready*"), true)});
    m_host.send(listSaying("Not yet"));
    m_host.waitFrames(3);
    EXPECT_EQ(stepsEnded(), 0U);
    m_host.send(listSaying("Ready now"));
    m_host.waitFrames(3);
    EXPECT_EQ(stepsEnded(), 1U);
}

TEST_F(FrameSequenceTest, WaitsForTextToVanish) {
    m_host.send(listSaying("Busy"));
    m_host.waitFrames(3);
    play({step<script::WaitText>(text("Busy"), false)});
    EXPECT_EQ(stepsEnded(), 0U);
    m_host.send(listSaying("Done"));
    m_host.waitFrames(3);
    EXPECT_EQ(stepsEnded(), 1U);
}

TEST_F(FrameSequenceTest, IsContentAtOnceWithWhatIsShownAlready) {
    m_host.send(listSaying("Here"));
    m_host.waitFrames(3);
    play({step<script::WaitText>(text("Here"), true), step<script::WaitQuiet>(),
          step<script::ExpectText>(text("Here"), true)});
    EXPECT_EQ(stepsEnded(), 3U);
}

TEST_F(FrameSequenceTest, WaitsForSwaps) {
    play({step<script::WaitSwaps>(2)});
    m_host.send(listSaying("1"));
    m_host.waitFrames(5);
    EXPECT_EQ(stepsEnded(), 0U);
    m_host.send(listSaying("2"));
    m_host.waitFrames(5);
    EXPECT_EQ(stepsEnded(), 1U);
}

TEST_F(FrameSequenceTest, WaitsForReadsOfTheTag) {
    play({step<script::WaitReads>(2)});
    m_host.read8(m_host.at.touchTag());
    m_host.waitFrames(2);
    EXPECT_EQ(stepsEnded(), 0U);
    m_host.read8(m_host.at.touchTag());
    m_host.waitFrames(2);
    EXPECT_EQ(stepsEnded(), 1U);
}

TEST_F(FrameSequenceTest, AScreenshotWaitsUntilASwapIsMade) {
    m_host.send(listSaying("Old"));
    m_host.waitFrames(3);
    m_host.send(listSaying("New"));
    play({step<script::Screenshot>(QStringLiteral("a"), false)});
    EXPECT_EQ(stepsEnded(), 0U) << "the swap is still pending";
    m_host.waitFrames(3);
    ASSERT_EQ(stepsEnded(), 1U);
    EXPECT_EQ(textsOn(m_host.chip).at(0).text, "New");
    EXPECT_EQ(pictureOf(m_events[0]), toImage(m_host.chip.frame().picture));
}

TEST_F(FrameSequenceTest, AnUnmetExpectationEndsIt) {
    m_host.send(listSaying("Here"));
    m_host.waitFrames(3);
    play({step<script::ExpectText>(text("There"), true), step<script::WaitFrames>(1)});
    m_host.waitFrames(3);
    ASSERT_EQ(stepsEnded(), 1U);
    EXPECT_EQ(m_events[0].step, 0U);
    EXPECT_EQ(m_events[0].outcome.failure, "the panel shows \"Here\"");
}

TEST_F(FrameSequenceTest, AFailureComesWithThePictureOfItsFrame) {
    m_host.send(listSaying("Here"));
    m_host.waitFrames(3);
    const QImage shown = toImage(m_host.chip.frame().picture);
    play({step<script::ExpectText>(text("Here"), false)});
    m_host.send(listSaying("Later"));
    m_host.waitFrames(3);
    ASSERT_EQ(stepsEnded(), 1U);
    EXPECT_EQ(m_events[0].failedPicture, shown);
}

TEST_F(FrameSequenceTest, ATextIsExpectedAtItsPlace) {
    m_host.send(listSaying("2"));
    m_host.waitFrames(3);
    script::SoughtText there = text("2");
    there.at = QPoint(12, 15);
    script::SoughtText elsewhere = text("2");
    elsewhere.at = QPoint(112, 15);
    play({step<script::ExpectText>(there, true), step<script::ExpectText>(elsewhere, false),
          step<script::ExpectText>(elsewhere, true)});
    ASSERT_EQ(stepsEnded(), 3U);
    EXPECT_EQ(m_events[1].outcome.failure, "");
    EXPECT_THAT(m_events[2].outcome.failure.toStdString(),
                testing::StartsWith("the panel shows \"2\"; there is \"2\" at 1"));
}

TEST_F(FrameSequenceTest, ATextIsExpectedWhollyInABox) {
    m_host.send(listSaying("12345"));
    m_host.waitFrames(3);
    script::SoughtText wide = text("1*5");
    wide.in = QRect(5, 5, 100, 40);
    script::SoughtText narrow = text("1*5");
    narrow.in = QRect(5, 5, 30, 40);
    play({step<script::ExpectText>(wide, true), step<script::ExpectText>(narrow, false),
          step<script::WaitFrames>(1U)});
    m_host.waitFrames(2);
    EXPECT_EQ(stepsEnded(), 3U);
}

TEST_F(FrameSequenceTest, SaysNothingMoreAfterStop) {
    play({step<script::WaitFrames>(1)});
    m_sequence.stop();
    m_host.waitFrames(3);
    EXPECT_EQ(stepsEnded(), 0U);
}

TEST_F(FrameSequenceTest, CatchesAnExactFrameOfAnAnimationHoweverTimePasses) {
    const Words animated = listSaying("Wait", {cmd::spinner, pair(236, 196), pair(3, 1)});
    const std::vector<script::FrameStepPtr> steps{
        step<script::WaitText>(text("Wait"), true), step<script::WaitSwaps>(5),
        step<script::Screenshot>(QStringLiteral("a"), true)};
    play(steps);
    m_host.send(animated);
    for (int i = 0; i < 2000; ++i) {
        m_host.wait(frame / 20);
    }
    m_host.send({cmd::stop});
    m_host.send(listSaying("Between"));
    m_host.waitFrames(3);
    play(steps);
    m_host.send(animated);
    m_host.wait(1000 * ms); // at one go
    ASSERT_EQ(stepsEnded(), 6U);
    EXPECT_EQ(pictureOf(m_events[2]), pictureOf(m_events[5]));
    EXPECT_NE(pictureOf(m_events[2]), toImage(m_host.chip.frame().picture));
}

TEST(IsQuiet, FollowsRingAndSwapOnEveryGeneration) {
    for (const auto generation :
         {controller::Generation::E1, controller::Generation::E2, controller::Generation::E3}) {
        Host host(generation);
        host.bootWithPanel();
        host.waitFrames(2);
        EXPECT_TRUE(script::isQuiet(host.chip));
        host.send(listSaying("Swap"));
        EXPECT_FALSE(script::isQuiet(host.chip));
        host.waitFrames(3);
        EXPECT_TRUE(script::isQuiet(host.chip));
        host.chip.setCoprocessorStalled(true);
        host.send({cmd::dlStart});
        EXPECT_FALSE(script::isQuiet(host.chip));
    }
}

} // namespace
} // namespace panel
