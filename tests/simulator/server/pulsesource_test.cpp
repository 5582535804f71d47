#include "pulsesource.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using server::PulseSource;

constexpr double anyHeight = -1.0; // volts; every pulse is higher

// The pulses in each of `count` intervals of `length` seconds, one after the other.
std::vector<double> countsPerInterval(PulseSource* source, int count, double length) {
    std::vector<double> counts;
    for (int i = 1; i <= count; ++i) {
        source->runTo(i * length);
        const auto pulses = source->countAbove(anyHeight, (i - 1) * length);
        counts.push_back(static_cast<double>(pulses));
    }
    return counts;
}

double mean(const std::vector<double>& values) {
    double sum = 0.0;
    for (const double value : values)
        sum += value;
    return sum / static_cast<double>(values.size());
}

double variance(const std::vector<double>& values) {
    const double middle = mean(values);
    double sum = 0.0;
    for (const double value : values)
        sum += (value - middle) * (value - middle);
    return sum / static_cast<double>(values.size() - 1);
}

TEST(PulseSourceTest, SeesNothingBeforeTimeStarts) {
    PulseSource source(1);
    source.runTo(0.0);
    EXPECT_EQ(source.countAbove(anyHeight, -1.0), 0U);
}

TEST(PulseSourceTest, PulsesComeAtTheMeanRate) {
    PulseSource source(1);
    source.runTo(PulseSource::memory);
    const double expected = PulseSource::meanRate * PulseSource::memory;
    const auto pulses = static_cast<double>(source.countAbove(anyHeight, 0.0));
    EXPECT_NEAR(pulses, expected, 5.0 * std::sqrt(expected));
}

// Counts of independent arrivals scatter as much as their mean.
TEST(PulseSourceTest, PulsesComeAtRandom) {
    PulseSource source(1);
    const auto counts = countsPerInterval(&source, 1000, 0.01);
    EXPECT_NEAR(variance(counts) / mean(counts), 1.0, 0.25);
}

TEST(PulseSourceTest, HigherLevelNeverCountsMore) {
    PulseSource source(1);
    source.runTo(1.0);
    std::size_t before = source.countAbove(anyHeight, 0.0);
    for (int millivolts = 0; millivolts < 1000; millivolts += 5) {
        const double level = millivolts / 1000.0;
        const std::size_t pulses = source.countAbove(level, 0.0);
        EXPECT_LE(pulses, before) << "at " << level << " V";
        before = pulses;
    }
    EXPECT_EQ(before, 0U); // no pulse is that high
}

TEST(PulseSourceTest, HeightsHavePeaksAtWholePhotonsAndValleysBetween) {
    PulseSource source(1);
    source.runTo(PulseSource::memory);
    const auto around = [&source](double height) {
        const double reach = PulseSource::photonHeight / 4.0;
        return source.countAbove(height - reach, 0.0) - source.countAbove(height + reach, 0.0);
    };
    for (int photons = 1; photons <= 4; ++photons) {
        const double peak = photons * PulseSource::photonHeight;
        const double valley = peak + PulseSource::photonHeight / 2.0;
        EXPECT_GT(around(peak), 10U * around(valley)) << photons << " photons";
        EXPECT_GT(around(peak), around(peak + PulseSource::photonHeight)) << photons << " photons";
    }
}

TEST(PulseSourceTest, SameSeedGivesTheSamePulses) {
    PulseSource one(7);
    PulseSource other(7);
    EXPECT_EQ(countsPerInterval(&one, 100, 0.01), countsPerInterval(&other, 100, 0.01));
}

TEST(PulseSourceTest, OtherSeedGivesOtherPulses) {
    PulseSource one(7);
    PulseSource other(8);
    EXPECT_NE(countsPerInterval(&one, 100, 0.01), countsPerInterval(&other, 100, 0.01));
}

TEST(PulseSourceTest, PulsesDoNotDependOnHowOftenItIsAsked) {
    PulseSource often(3);
    PulseSource once(3);
    countsPerInterval(&often, 100, 0.01);
    once.runTo(1.0);
    for (const double level : {anyHeight, 0.15, 0.3})
        EXPECT_EQ(often.countAbove(level, 0.5), once.countAbove(level, 0.5));
}

TEST(PulseSourceTest, CountsOnlyPulsesAfterTheGivenTime) {
    PulseSource source(1);
    source.runTo(1.0);
    EXPECT_EQ(source.countAbove(anyHeight, 1.0), 0U);
    EXPECT_NEAR(static_cast<double>(source.countAbove(anyHeight, 0.5)), 5000.0, 400.0);
}

TEST(PulseSourceTest, ForgetsOldPulses) {
    PulseSource source(1);
    source.runTo(1.0);
    source.runTo(1.0 + PulseSource::memory);
    const double expected = PulseSource::meanRate * PulseSource::memory;
    EXPECT_NEAR(static_cast<double>(source.countAbove(anyHeight, 0.0)), expected,
                5.0 * std::sqrt(expected));
}

// It would otherwise make up ten billion pulses here.
TEST(PulseSourceTest, ALongPauseLeavesAFullMemory) {
    PulseSource source(1);
    source.runTo(1.0);
    source.runTo(1e6);
    const double expected = PulseSource::meanRate * PulseSource::memory;
    EXPECT_NEAR(static_cast<double>(source.countAbove(anyHeight, 0.0)), expected,
                5.0 * std::sqrt(expected));
}

} // namespace
