#include "flowmodel.h"

#include <gtest/gtest.h>

namespace soak {
namespace {

Reply reply(double timeConst, const FourValues& levels = {}, const FourValues& channels = {}) {
    Reply reply;
    reply.ok = true;
    reply.object = Reply::Object{timeConst, levels, channels};
    return reply;
}

class Flow : public testing::Test {
protected:
    Flow() { ask("PARAMS?"); }

    void tap(int tag) {
        EXPECT_FALSE(model.tagRead(tag));
        EXPECT_FALSE(model.tagRead(0));
    }
    void ask(const std::string& line) { EXPECT_FALSE(model.request(line, answer, time)) << line; }
    void poll(const FourValues& channels) {
        answer.object->channels = channels;
        time += 1000;
        ask("DATA?");
    }
    void startRun() {
        tap(tag::run);
        ask("PARAMS?");
        ask("START 0.5");
    }

    FlowModel model;
    Reply answer = reply(0.5, {0.05, 0.15, 0.25, 0.35});
    Milliseconds time = 0;
};

TEST_F(Flow, StopsTheRunOnTheWayToTheHistogram) {
    startRun();
    EXPECT_TRUE(model.isRunShown());
    tap(tag::otherScreen);
    const Verdict verdict = model.tagRead(0);
    ASSERT_TRUE(verdict);
    EXPECT_EQ(verdict->missing, "STOP");
    EXPECT_EQ(model.screen(), Screen::Histogram);
    EXPECT_FALSE(model.isRunShown());
}

TEST_F(Flow, ReturnsFromTheOptionsToWhereItCameFrom) {
    tap(tag::options);
    tap(tag::back);
    EXPECT_EQ(model.screen(), Screen::Counter);
    tap(tag::otherScreen);
    ask("STOP");
    tap(tag::options);
    tap(tag::back);
    EXPECT_EQ(model.screen(), Screen::Histogram);
}

TEST_F(Flow, KeepsTheRunDuringAVisitToTheOptions) {
    startRun();
    tap(tag::options);
    poll({1, 2, 3, 4});
    tap(tag::back);
    EXPECT_TRUE(model.isRunShown());
    EXPECT_EQ(model.values(), (FourValues{1, 2, 3, 4}));
}

TEST_F(Flow, AddsSamplesToTheBinsOrReplacesThem) {
    tap(tag::otherScreen);
    ask("STOP");
    startRun();
    poll({10, 7, 3, 1});
    poll({10, 7, 3, 1});
    EXPECT_EQ(model.bins(), (FourValues{6, 8, 4, 2}));
    tap(tag::mode);
    poll({10, 7, 3, 1});
    EXPECT_EQ(model.bins(), (FourValues{3, 4, 2, 1}));
    EXPECT_FALSE(model.accumulates());
}

TEST_F(Flow, ClearsTheBinsWhenTheHistogramStarts) {
    tap(tag::otherScreen);
    ask("STOP");
    startRun();
    poll({10, 7, 3, 1});
    tap(tag::run);
    ask("STOP");
    EXPECT_EQ(model.bins(), (FourValues{3, 4, 2, 1}));
    tap(tag::run);
    EXPECT_EQ(model.bins(), FourValues{});
}

TEST_F(Flow, TakesASlideForAReleaseOfTheLastButton) {
    EXPECT_FALSE(model.tagRead(tag::run));
    EXPECT_FALSE(model.tagRead(tag::options));
    EXPECT_EQ(model.tagsShownHeld(), (std::vector<int>{tag::run, tag::options}));
    EXPECT_EQ(model.heldTag(), tag::options);
    EXPECT_FALSE(model.tagRead(255));
    EXPECT_EQ(model.screen(), Screen::Options);
}

TEST_F(Flow, SendsTheNumberTyped) {
    tap(tag::options);
    tap(tag::firstTrigger + 2);
    EXPECT_EQ(model.keypadTitle(), "Trigger level [2], mV");
    for (const char key : {'2', '5', '0'}) {
        tap(key);
    }
    EXPECT_EQ(model.keypadText(), "250");
    tap(tag::ok);
    answer.object->levels[2] = 0.25;
    ask("DAC 2,0.25");
    ask("PARAMS?");
    model.settle();
    EXPECT_EQ(model.screen(), Screen::Options);
    EXPECT_EQ(model.shownLevels()->at(2), 0.25);
}

TEST_F(Flow, SendsNothingWithoutANumber) {
    tap(tag::options);
    tap(tag::timeConst);
    tap('.');
    tap(tag::ok);
    EXPECT_FALSE(model.tagRead(0));
    tap(tag::timeConst);
    tap('1');
    tap(tag::back);
    EXPECT_FALSE(model.tagRead(0));
}

TEST_F(Flow, DoesNotRedrawTheOptionsForAPoll) {
    startRun();
    tap(tag::options);
    answer.object->timeConst = 2;
    poll({});
    model.settle();
    EXPECT_EQ(model.shownTimeConst(), 0.5);
    EXPECT_FALSE(model.tagRead(tag::back));
    model.settle();
    EXPECT_EQ(model.shownTimeConst(), 2.0);
}

TEST_F(Flow, ForgetsTheValuesOutOfStep) {
    startRun();
    poll({1, 2, 3, 4});
    model.fallOutOfStep();
    EXPECT_EQ(model.values(), std::nullopt);
    EXPECT_TRUE(model.isRunShown());
    model.fallInStep(time);
    poll({1, 2, 3, 4});
    EXPECT_EQ(model.values(), (FourValues{1, 2, 3, 4}));
    EXPECT_EQ(model.bins(), std::nullopt); // accumulated: on top of what is not known
}

} // namespace
} // namespace soak
