// The program's screens on the controllers of all generations that they run on.

#include "displaysettings.h"
#include "logowidget.h"
#include "onmodel.h"
#include "screens.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace {

using controller::Generation;
using controller::Picture;

class ScreensOnModel : public OnModel, public testing::WithParamInterface<Screen> {
protected:
    // The screen as the panel shows it, but for where the wait screen's spinner turns.
    Picture shownOn(Generation generation, const controller::Options& options = {}) {
        bringUp(generation, options);
        modelboard::pass(milliseconds(50));
        GetParam().show(&host);
        modelboard::pass(milliseconds(50));
        Picture shown = picture();
        if (GetParam().name == "wait") {
            blank(shown, 140, 140, 340, 272);
        }
        return shown;
    }

private:
    static void blank(Picture& picture, int left, int top, int right, int bottom) {
        for (int y = top; y < bottom; ++y) {
            const auto row = picture.pixels.begin() + std::ptrdiff_t{y} * picture.width;
            std::fill(row + left, row + right, 0);
        }
    }
};

INSTANTIATE_TEST_SUITE_P(All, ScreensOnModel, testing::ValuesIn(screens()),
                         [](const auto& screen) { return screen.param.name; });

TEST_P(ScreensOnModel, LookTheSameOnEveryGeneration) {
    const Picture onE3 = shownOn(Generation::E3);
    const std::set<std::uint32_t> colours(onE3.pixels.begin(), onE3.pixels.end());
    EXPECT_GT(colours.size(), 40U); // there is something to see
    for (const Generation generation : {Generation::E1, Generation::E2}) {
        if (generation >= GetParam().since) {
            const Picture shown = shownOn(generation);
            EXPECT_TRUE(shown == onE3) << nameOf(generation);
            keepOnFailure(shown, GetParam().name + '-' + nameOf(generation));
        }
    }
    keepOnFailure(onE3, GetParam().name + "-E3");
}

TEST_P(ScreensOnModel, LookTheSameWithAllVectorsOfTheMachine) {
    const Picture shown = shownOn(Generation::E3);
    for (const controller::Vectors vectors : controller::vectorsHere()) {
        controller::Options options;
        options.vectors = vectors;
        EXPECT_TRUE(shownOn(Generation::E3, options) == shown) << static_cast<int>(vectors);
    }
}

class StartLogoOnModel : public OnModel, public testing::WithParamInterface<Generation> {
protected:
    // What the panel showed last of each list that the start-up screen has swapped in.
    std::vector<Picture> play() {
        bringUp(GetParam());
        modelboard::pass(milliseconds(50));
        m_shown.clear();
        LogoWidget(&host).exec();
        modelboard::pass(milliseconds(50));
        return m_shown;
    }

private:
    void listSwapped(controller::Nanoseconds /*now*/) override { m_shown.emplace_back(); }

    void frameScanned(std::uint32_t /*number*/, controller::Nanoseconds /*now*/) override {
        if (!m_shown.empty()) {
            m_shown.back() = picture();
        }
    }

    std::vector<Picture> m_shown;
};

INSTANTIATE_TEST_SUITE_P(Generations, StartLogoOnModel,
                         testing::Values(Generation::E2, Generation::E3),
                         [](const auto& generation) { return nameOf(generation.param); });

// The screen ends with a swap of its own, which brings the list before the last back.
TEST_P(StartLogoOnModel, StaysWholeUntilTheNextScreen) {
    constexpr std::size_t frames = 15 + 9;
    const std::vector<Picture> shown = play();
    ASSERT_GT(shown.size(), frames);
    const Picture& whole = shown[frames - 1];
    EXPECT_FALSE(shown[frames - 3] == whole); // it is still being uncovered
    for (std::size_t list = frames; list < shown.size(); ++list) {
        EXPECT_TRUE(shown[list] == whole) << list;
        keepOnFailure(shown[list], "start-logo-" + std::to_string(list));
    }
    keepOnFailure(whole, "start-logo");
}

} // namespace
