// The program's screens on the controllers of all generations that they run on.

#include "displaysettings.h"
#include "onmodel.h"
#include "screens.h"

#include <algorithm>
#include <cstddef>
#include <set>

namespace {

using controller::Generation;
using controller::Picture;

class ScreensOnModel : public OnModel, public testing::WithParamInterface<Screen> {
protected:
    // The screen as the panel shows it, but for where the wait screen's spinner turns.
    Picture shownOn(Generation generation) {
        bringUp(generation);
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

} // namespace
