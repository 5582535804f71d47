#include "clientmodel.h"

#include <gtest/gtest.h>

namespace soak {
namespace {

Reply object(double timeConst) {
    Reply reply;
    reply.object = Reply::Object{timeConst, {}, {}};
    return reply;
}

Reply ok() {
    Reply reply;
    reply.ok = true;
    return reply;
}

void startRun(ClientModel& client, double timeConst, Milliseconds now) {
    client.start();
    EXPECT_FALSE(client.request("PARAMS?", object(timeConst), now));
    EXPECT_FALSE(client.request("START " + inSixDigits(timeConst), ok(), now));
    EXPECT_FALSE(client.wentOn());
}

TEST(ClientModel, StartsWithTheTimeConstantJustRead) {
    ClientModel client;
    client.start();
    EXPECT_FALSE(client.request("PARAMS?", object(0.2), 0));
    const Verdict verdict = client.request("START 200", ok(), 0);
    ASSERT_TRUE(verdict);
    EXPECT_EQ(verdict->missing, "START 0.2");
    EXPECT_EQ(verdict->unwanted, "START 200");
}

TEST(ClientModel, TriesToStartTwice) {
    ClientModel client;
    client.start();
    EXPECT_FALSE(client.request("PARAMS?", object(0.2), 0));
    EXPECT_FALSE(client.request("START 0.2", {}, 0));
    EXPECT_FALSE(client.request("START 0.2", {}, 0));
    EXPECT_FALSE(client.wentOn());
    EXPECT_EQ(client.stopped(), true);
    EXPECT_TRUE(client.request("START 0.2", {}, 0));
}

TEST(ClientModel, MissesARequestThatDoesNotCome) {
    ClientModel client;
    client.stop();
    const Verdict verdict = client.wentOn();
    ASSERT_TRUE(verdict);
    EXPECT_EQ(verdict->missing, "STOP");
}

TEST(ClientModel, AllowsPollsWhenTheyAreDueOnly) {
    ClientModel client;
    startRun(client, 0.2, 1000);
    EXPECT_TRUE(client.request("DATA?", object(0.2), 1100));
    EXPECT_FALSE(client.request("DATA?", object(0.2), 1200));
    EXPECT_TRUE(client.request("DATA?", object(0.2), 1201));
}

TEST(ClientModel, AllowsNoPollAfterAStop) {
    ClientModel client;
    startRun(client, 0.2, 1000);
    client.stop();
    EXPECT_FALSE(client.request("STOP", {}, 1100));
    EXPECT_TRUE(client.request("DATA?", object(0.2), 1200));
}

TEST(ClientModel, CountsTwoChainsAfterAStartWithAnArmedPoll) {
    ClientModel client;
    startRun(client, 1, 1000);
    client.stop();
    EXPECT_FALSE(client.request("STOP", {}, 1100));
    startRun(client, 1, 1200);
    EXPECT_EQ(client.chains(), 2U);
    EXPECT_FALSE(client.request("DATA?", object(1), 2000));
    EXPECT_FALSE(client.request("DATA?", object(1), 2200));
    EXPECT_TRUE(client.request("DATA?", object(1), 2300));
}

TEST(ClientModel, ForgetsAChainThatEndedWhileStopped) {
    ClientModel client;
    startRun(client, 0.2, 1000);
    client.stop();
    EXPECT_FALSE(client.request("STOP", {}, 1100));
    startRun(client, 0.2, 9000);
    EXPECT_EQ(client.chains(), 1U);
}

TEST(ClientModel, NoticesThatPollsHaveCeased) {
    ClientModel client;
    startRun(client, 0.2, 1000);
    EXPECT_FALSE(client.isPollOverdue(1300));
    EXPECT_TRUE(client.isPollOverdue(20000));
}

TEST(ClientModel, StopsAfterSettingTheTimeConstantWhileNoRunIsActive) {
    ClientModel client;
    client.setTimeConst(20);
    EXPECT_FALSE(client.request("START 10", ok(), 0));
    EXPECT_FALSE(client.request("STOP", {}, 0));
    EXPECT_FALSE(client.wentOn());
    EXPECT_EQ(client.timeConst(), 10.0);
}

TEST(ClientModel, SetsATriggerLevelAndReadsTheParameters) {
    ClientModel client;
    client.setTriggerLevel(2, -0.15);
    EXPECT_FALSE(client.request("DAC 2,-0.15", {}, 0));
    EXPECT_FALSE(client.request("PARAMS?", object(0.5), 0));
    EXPECT_FALSE(client.wentOn());
    EXPECT_EQ(client.timeConst(), 0.5);
}

TEST(ClientModel, LearnsFromTheStopWhetherARunWasActive) {
    ClientModel client;
    startRun(client, 0.2, 0);
    client.fallOutOfStep();
    client.fallInStep(1000);
    ASSERT_EQ(client.stopped(), std::nullopt);
    client.setTimeConst(1);
    EXPECT_FALSE(client.request("START 1", ok(), 1100));
    EXPECT_FALSE(client.request("STOP", {}, 1100));
    EXPECT_EQ(client.stopped(), true);
}

TEST(ClientModel, KnowsNothingOutOfStepButWhatIsNoRequest) {
    ClientModel client;
    client.fallOutOfStep();
    EXPECT_FALSE(client.request("PARAMS?", object(3), 0));
    EXPECT_EQ(client.timeConst(), std::nullopt);
    EXPECT_TRUE(client.request("DAC 4,1", {}, 0));
    EXPECT_TRUE(client.request("start", {}, 0));
}

TEST(ClientModel, TakesARepeatedStartForALateReply) {
    ClientModel client;
    client.start();
    EXPECT_FALSE(client.request("PARAMS?", object(0.2), 0));
    EXPECT_FALSE(client.request("START 0.2", ok(), 0));
    EXPECT_FALSE(client.request("START 0.2", ok(), 60));
    EXPECT_FALSE(client.inStep());
}

TEST(ClientModel, WritesNumbersAsThePanelDoes) {
    EXPECT_EQ(inDigits(42.125, 4), "42.13");
    EXPECT_EQ(inDigits(12345, 4), "1.235e+04");
    EXPECT_EQ(inDigits(-99999.5, 4), "-1e+05");
    EXPECT_EQ(inDigits(1e300, 4), "1e+300");
    EXPECT_EQ(inDigits(0.0001234, 4), "0.0001234");
    EXPECT_EQ(inDigits(0, 4), "0");
    EXPECT_EQ(inSixDigits(1234567), "1.23457e+06");
    EXPECT_EQ(inSixDigits(-0.15), "-0.15");
}

} // namespace
} // namespace soak
