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

// The photons of a pulse: Poisson of mean 1.5, without the pulses of none.
TEST(PulseSourceTest, PhotonsAreDistributedAsLightIs) {
    PulseSource source(1);
    source.runTo(10.0);
    const auto all = static_cast<double>(source.countAbove(anyHeight, 0.0));
    double exactly = std::exp(-1.5); // the likelihood of so many photons
    double more = 1.0 - exactly;     // of more
    const double seen = more;
    for (int photons = 1; photons <= 5; ++photons) {
        exactly *= 1.5 / photons;
        more -= exactly;
        const double expected = more / seen;
        const auto above = static_cast<double>(source.countAbove(0.1 * photons + 0.05, 0.0));
        const double deviation = std::sqrt(expected * (1.0 - expected) / all);
        EXPECT_NEAR(above / all, expected, 4.0 * deviation + 0.0005) << photons << " photons";
    }
    EXPECT_EQ(source.countAbove(0.65, 0.0), 0U) << "more than six photons are left out";
}

// A tenth of a volt a photon, blurred by a normal distribution of 12 mV.
TEST(PulseSourceTest, HeightsAreBlurredNormally) {
    PulseSource source(1);
    source.runTo(10.0);
    const auto above = [&source](double height) {
        return static_cast<double>(source.countAbove(height, 0.0));
    };
    const double singles = above(0.05) - above(0.15);
    for (const double deviations : {-2.0, -1.0, -0.5, 0.0, 0.5, 1.0, 2.0}) {
        const double higher = (above(0.1 + deviations * 0.012) - above(0.15)) / singles;
        const double expected = std::erfc(deviations / std::sqrt(2.0)) / 2.0;
        EXPECT_NEAR(higher, expected, 0.005) << deviations << " standard deviations";
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
