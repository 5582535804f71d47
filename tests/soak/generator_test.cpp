#include "generator.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace soak {
namespace {

std::vector<Action> actionsOf(std::uint32_t seed, int count) {
    Generator generator(seed);
    const FlowModel model;
    std::vector<Action> actions(static_cast<std::size_t>(count));
    std::generate(actions.begin(), actions.end(), [&] { return generator.next(model); });
    return actions;
}

TEST(Generator, GivesTheSameForTheSameSeed) {
    const auto first = actionsOf(3, 500);
    const auto second = actionsOf(3, 500);
    for (std::size_t i = 0; i < first.size(); ++i) {
        EXPECT_EQ(first[i].kind, second[i].kind);
        EXPECT_EQ(first[i].pixel.x, second[i].pixel.x);
        EXPECT_EQ(first[i].text, second[i].text);
    }
}

// The engine's numbers are fixed by the language's standard, so that a seed repeats everywhere.
TEST(Generator, DoesNotDependOnTheStandardLibrary) {
    Randomness random(5489);
    EXPECT_EQ(random.below(1000), static_cast<int>(3499211612U % 1000));
}

TEST(Generator, TouchesOnlyWhereItIsClearWhatIsTouched) {
    for (const Action& action : actionsOf(4, 2000)) {
        if (action.kind == Action::Kind::Touch) {
            for (int screen = 0; screen < screenCount; ++screen) {
                EXPECT_TRUE(tagAt(static_cast<Screen>(screen), action.pixel));
            }
        }
    }
}

TEST(Generator, BringsABrokenServerBackInOrder) {
    bool broken = false;
    int repaired = 0;
    for (const Action& action : actionsOf(5, 5000)) {
        if (action.kind == Action::Kind::Fault && breaksStep(action.text)) {
            broken = true;
        } else if (action.kind == Action::Kind::ServerStarts) {
            repaired += broken ? 1 : 0;
            broken = false;
        }
    }
    EXPECT_GT(repaired, 0);
}

} // namespace
} // namespace soak
