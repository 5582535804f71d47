#include "instrument.h"
#include "qtprinting.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using server::Instrument;
using server::Params;
using server::Sample;
using testing::Each;
using testing::ElementsAre;

class InstrumentTest : public testing::Test {
protected:
    // The values of channel 0 to 3 that the instrument reports at `now`.
    Sample sample(double now) {
        const QJsonObject object =
            QJsonDocument::fromJson(instrument.answer("DATA?", now)).object();
        Sample values{};
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = object.value(QStringLiteral("Channel%1").arg(i)).toDouble(-1.0);
        return values;
    }

    Instrument instrument{1};
};

TEST_F(InstrumentTest, ReportsItsParametersAsOneLineOfJson) {
    EXPECT_EQ(instrument.answer("PARAMS?", 0.0),
              R"({"Ref0":0.05,"Ref1":0.15,"Ref2":0.25,"Ref3":0.35,"TimeConst":0.5})"
              "\n");
}

TEST_F(InstrumentTest, ReportsZerosBeforeTheFirstRun) {
    EXPECT_EQ(instrument.answer("DATA?", 100.0),
              R"({"Channel0":0,"Channel1":0,"Channel2":0,"Channel3":0,"TimeConst":0.5})"
              "\n");
}

TEST_F(InstrumentTest, StartIsAnsweredOkAndSetsTheTimeConstant) {
    EXPECT_EQ(instrument.answer("START 0.25", 0.0), "Ok\n");
    EXPECT_TRUE(instrument.isRunning());
    EXPECT_EQ(instrument.params().timeConst, 0.25);
}

TEST_F(InstrumentTest, StopAndDacHaveNoReply) {
    EXPECT_EQ(instrument.answer("STOP", 0.0), "");
    EXPECT_EQ(instrument.answer("DAC 1,0.2", 0.0), "");
}

TEST_F(InstrumentTest, AnswersEverythingWhenTold) {
    instrument.setAnswerEverything(true);
    EXPECT_EQ(instrument.answer("STOP", 0.0), "Ok\n");
    EXPECT_EQ(instrument.answer("DAC 1,0.2", 0.0), "Ok\n");
}

TEST_F(InstrumentTest, DacSetsOneTriggerLevel) {
    instrument.answer("DAC 2,-0.15", 0.0);
    EXPECT_THAT(instrument.params().ref, ElementsAre(0.05, 0.15, -0.15, 0.35));
}

TEST_F(InstrumentTest, DefaultLevelsGiveFourCountsThatDifferClearly) {
    instrument.answer("START 0.5", 0.0);
    const Sample counts = sample(1.0);
    EXPECT_NEAR(counts[0], 5000.0, 400.0);
    for (std::size_t i = 1; i < counts.size(); ++i)
        EXPECT_GT(counts[i - 1], 1.5 * counts[i]);
    EXPECT_GT(counts[3], 100.0);
}

TEST_F(InstrumentTest, CountsChangeFromSampleToSample) {
    instrument.answer("START 0.5", 0.0);
    const Sample first = sample(1.0);
    EXPECT_NE(sample(1.5), first);
}

TEST_F(InstrumentTest, CountsGrowWithTheTimeConstant) {
    instrument.answer("START 0.01", 0.0);
    EXPECT_NEAR(sample(20.0)[0], 100.0, 50.0);
    instrument.answer("START 10", 20.0);
    EXPECT_NEAR(sample(40.0)[0], 100000.0, 1600.0);
}

TEST_F(InstrumentTest, TriggerLevelsAreThoseOfTheSamplesEnd) {
    Instrument other{1};
    other.answer("START 0.5", 0.0);
    instrument.answer("START 0.5", 0.0);
    instrument.answer("DAC 1,0.25", 0.4);
    const Sample raised = sample(0.5);
    const QJsonObject asEver = QJsonDocument::fromJson(other.answer("DATA?", 0.5)).object();
    EXPECT_EQ(raised[0], asEver.value(QStringLiteral("Channel0")).toDouble());
    EXPECT_LT(raised[1], asEver.value(QStringLiteral("Channel1")).toDouble());
    EXPECT_EQ(raised[1], raised[2]); // the same pulses over the same level
}

// --- samples

TEST_F(InstrumentTest, SampleIsCompleteWhenItsTimeConstantHasPassed) {
    instrument.answer("START 0.5", 10.0);
    EXPECT_THAT(sample(10.0), Each(0.0));
    EXPECT_THAT(sample(10.4), Each(0.0)); // the values before the run
    const Sample first = sample(10.5);
    EXPECT_NEAR(first[0], 5000.0, 400.0);
    EXPECT_EQ(sample(10.9), first);
    EXPECT_NE(sample(11.0), first);
}

// The panel's timers count whole milliseconds.
TEST_F(InstrumentTest, SampleIsCompleteInTheMillisecondInWhichItsTimePasses) {
    instrument.answer("START 0.0105", 0.0);
    EXPECT_NE(sample(0.010)[0], 0.0);
}

TEST_F(InstrumentTest, WhoAsksLateGetsTheNextSampleAllTheSame) {
    Instrument punctual{1};
    punctual.answer("START 0.5", 0.0);
    instrument.answer("START 0.5", 0.0);
    for (int i = 1; i <= 5; ++i)
        EXPECT_EQ(instrument.answer("DATA?", 1.7 * i), punctual.answer("DATA?", 0.5 * i));
}

TEST_F(InstrumentTest, NewTimeConstantBeginsASampleAnew) {
    instrument.answer("START 0.5", 0.0);
    const Sample first = sample(0.5);
    instrument.answer("START 0.25", 0.9);
    EXPECT_EQ(sample(1.1), first);
    EXPECT_NEAR(sample(1.15)[0], 2500.0, 250.0);
}

TEST_F(InstrumentTest, RunsGoOnWithThePulsesOfTheOneBefore) {
    Instrument other{1};
    for (Instrument* one : {&instrument, &other})
        one->answer("START 0.5", 0.0);
    sample(0.5);
    other.answer("DATA?", 0.5);
    instrument.answer("STOP", 0.6);
    instrument.answer("START 0.5", 100.0);
    EXPECT_EQ(instrument.answer("DATA?", 100.5), other.answer("DATA?", 1.0));
}

TEST_F(InstrumentTest, SenselessTimeConstantsCountNothing) {
    instrument.answer("START 0.5", 0.0);
    for (const double timeConst : {0.0, -1.0}) {
        Params params = instrument.params();
        params.timeConst = timeConst;
        instrument.setParams(params);
        EXPECT_THAT(sample(1.0), Each(0.0));
    }
}

TEST_F(InstrumentTest, RisingLevelsNeverCountMore) {
    instrument.answer("START 0.5", 0.0);
    for (int i = 1; i <= 50; ++i) {
        const Sample counts = sample(0.5 * i);
        EXPECT_GE(counts[0], counts[1]);
        EXPECT_GE(counts[1], counts[2]);
        EXPECT_GE(counts[2], counts[3]);
    }
}

TEST_F(InstrumentTest, StopKeepsTheLastCompleteSample) {
    instrument.answer("START 0.5", 0.0);
    const Sample frozen = sample(0.5);
    EXPECT_GT(frozen[0], 0.0);
    instrument.answer("STOP", 1.5);
    instrument.answer("DAC 0,5", 1.5);
    EXPECT_EQ(sample(2.0), frozen);
    EXPECT_FALSE(instrument.isRunning());
}

TEST_F(InstrumentTest, StopWithoutARunChangesNothing) {
    instrument.answer("STOP", 1.0);
    EXPECT_THAT(sample(2.0), Each(0.0));
}

TEST_F(InstrumentTest, FixedSampleIsReportedUntilCleared) {
    const Sample fixed{1.0, 12.5, 1234567.0, -3.0};
    instrument.setFixedSample(fixed);
    EXPECT_EQ(sample(0.0), fixed);
    instrument.answer("START 0.5", 0.0);
    EXPECT_EQ(sample(1.0), fixed);
    instrument.setFixedSample(std::nullopt);
    EXPECT_NEAR(sample(2.0)[0], 5000.0, 400.0);
}

TEST_F(InstrumentTest, TakesParametersThatNoCommandCouldSet) {
    instrument.setParams({1e-5, {0.1234567, -7.0, 0.0, 100.0}});
    EXPECT_EQ(instrument.answer("PARAMS?", 0.0),
              R"({"Ref0":0.1234567,"Ref1":-7,"Ref2":0,"Ref3":100,"TimeConst":1e-05})"
              "\n");
}

TEST_F(InstrumentTest, SameSeedGivesTheSameSession) {
    Instrument other{1};
    other.answer("START 0.5", 0.0);
    instrument.answer("START 0.5", 0.0);
    EXPECT_EQ(instrument.answer("DATA?", 3.0), other.answer("DATA?", 3.0));
}

TEST_F(InstrumentTest, TriggerLevelsUpToTenVoltsOfEitherSignAreTaken) {
    EXPECT_EQ(instrument.answer("DAC 0,10", 0.0), "");
    EXPECT_EQ(instrument.answer("DAC 3,-10", 0.0), "");
    EXPECT_THAT(instrument.params().ref, ElementsAre(10.0, 0.15, 0.25, -10.0));
}

class InstrumentNonsenseTest : public InstrumentTest,
                               public testing::WithParamInterface<const char*> {};

TEST_P(InstrumentNonsenseTest, IsAnsweredErrorAndChangesNothing) {
    const QByteArray before = instrument.answer("PARAMS?", 0.0);
    EXPECT_EQ(instrument.answer(GetParam(), 0.0), "Error\n");
    EXPECT_EQ(instrument.answer("PARAMS?", 0.0), before);
    EXPECT_FALSE(instrument.isRunning());
}

INSTANTIATE_TEST_SUITE_P(Commands, InstrumentNonsenseTest,
                         testing::Values("", " ", "HELLO", "params?", "PARAMS", "PARAMS? 1",
                                         "DATA?x", "STOP 1", "STARTLE 1", "DACHSHUND 1,2"));
INSTANTIATE_TEST_SUITE_P(StartArguments, InstrumentNonsenseTest,
                         testing::Values("START", "START ", "START abc", "START 1x", "START 0",
                                         "START -1", "START 0.009", "START 10.1", "START nan",
                                         "START inf", "START 1 2"));
INSTANTIATE_TEST_SUITE_P(DacArguments, InstrumentNonsenseTest,
                         testing::Values("DAC", "DAC 1", "DAC 7,1", "DAC 4,1", "DAC -1,1",
                                         "DAC 1.5,1", "DAC ,1", "DAC 1,", "DAC 1,abc", "DAC 1,nan",
                                         "DAC 1,10.1", "DAC 1,-10.1", "DAC 1,2,3"));

} // namespace
