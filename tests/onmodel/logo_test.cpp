// The logo animation on the panel: its pieces at the places of their design, 800 units wide, of
// which the panel shows 0.6 pixels each, centred between its top and bottom. The word is the
// exception: its bitmap is placed by the transform while its window stays in the panel's corner, so
// that it shows there as long as it turns, and not at all at its place.

#include "App_Common.h"
#include "displaysettings.h"
#include "onmodel.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <ostream>

namespace {

using controller::Generation;
using controller::Picture;
using testing::AllOf;
using testing::Gt;
using testing::Le;
using testing::Lt;

constexpr std::uint32_t white = 0xFFFFFFFF;
constexpr std::uint32_t ink = 0xFF231F20;
constexpr std::uint32_t red = 0xFFED1C24;
constexpr std::uint32_t blue = 0xFF3871C1;

constexpr int lastShown = 119;

// Pixels, the last ones included.
struct Box {
    int left;
    int top;
    int right;
    int bottom;

    friend std::ostream& operator<<(std::ostream& out, const Box& box) {
        return out << box.left << ',' << box.top << " to " << box.right << ',' << box.bottom;
    }
};

// By a pixel: the design's edges fall between pixels.
bool isAbout(const Box& a, const Box& b) {
    const auto near = [](int i, int j) { return std::abs(i - j) <= 1; };
    return near(a.left, b.left) && near(a.top, b.top) && near(a.right, b.right) &&
           near(a.bottom, b.bottom);
}

MATCHER_P(IsAbout, box, "") {
    return isAbout(arg, box);
}

// What encloses all pixels of a kind within an area.
template<typename Kind>
Box boxOfAll(const Picture& picture, const Box& area, Kind isOfKind) {
    Box box{picture.width, picture.height, -1, -1};
    for (int y = area.top; y <= area.bottom; ++y) {
        for (int x = area.left; x <= area.right; ++x) {
            if (isOfKind(picture.at(x, y))) {
                box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x),
                       std::max(box.bottom, y)};
            }
        }
    }
    return box;
}

Box boxOf(const Picture& picture, std::uint32_t colour, const Box& area) {
    return boxOfAll(picture, area, [colour](std::uint32_t pixel) { return pixel == colour; });
}

Box boxOfDark(const Picture& picture, const Box& area) {
    return boxOfAll(picture, area, [](std::uint32_t pixel) { return (pixel >> 8 & 0xFF) < 0x60; });
}

constexpr Box wholePanel{0, 0, 479, 271};
// Places of the design's pieces: x * 0.6 and 63.4 + y * 0.6.
constexpr Box wordPlace{114, 91, 354, 181};
constexpr Box wordWindow{0, 0, 240, 89};
constexpr Box pulsePlace{358, 91, 474, 163};
constexpr Box subtitlePlace{114, 173, 475, 190};

// How dark the darkest pixel is: 0 for white, 255 for black.
int darkest(const Picture& picture, const Box& area) {
    int least = 255;
    for (int y = area.top; y <= area.bottom; ++y) {
        for (int x = area.left; x <= area.right; ++x) {
            least = std::min(least, static_cast<int>(picture.at(x, y) >> 8 & 0xFF));
        }
    }
    return 255 - least;
}

class LogoOnModel : public OnModel, public testing::WithParamInterface<Generation> {
protected:
    // Plays the logo and keeps the pictures of some of its frames, which count from 1.
    void playKeeping(const std::vector<int>& frames) {
        bringUp(GetParam());
        modelboard::pass(milliseconds(50));
        for (const int frame : frames) {
            m_pictures[frame] = {};
        }
        m_playing = true;
        App_Show_Logo(&host);
        m_playing = false;
    }

    void TearDown() override {
        for (const auto& [number, kept] : m_pictures) {
            keepOnFailure(kept, "logo-" + std::to_string(number) + '-' + nameOf(GetParam()));
        }
    }

    const Picture& frame(int number) const { return m_pictures.at(number); }
    int lists() const { return m_lists; }
    int framesScanned() const { return m_framesScanned; }

private:
    void listSwapped(controller::Nanoseconds /*now*/) override { m_lists += m_playing ? 1 : 0; }

    void frameScanned(std::uint32_t /*number*/, controller::Nanoseconds /*now*/) override {
        m_framesScanned += m_playing ? 1 : 0;
        const auto kept = m_pictures.find(m_lists);
        if (m_playing && kept != m_pictures.end()) {
            kept->second = picture();
        }
    }

    bool m_playing = false;
    int m_lists = 0;
    int m_framesScanned = 0;
    std::map<int, Picture> m_pictures;
};

INSTANTIATE_TEST_SUITE_P(Generations, LogoOnModel, everyGeneration, generationOf);

// The cleared screen is written over the last of the 120 frames while that still waits for its
// swap.
TEST_P(LogoOnModel, ShowsEachFrameOnceAndTheClearedScreenInPlaceOfTheLast) {
    playKeeping({});
    EXPECT_EQ(lists(), 119 + 1);
    EXPECT_THAT(framesScanned(), AllOf(Gt(119), Lt(125)));
    EXPECT_TRUE(coprocessorIsIdle());
    const std::vector<std::uint32_t>& pixels = picture().pixels;
    EXPECT_TRUE(std::all_of(pixels.begin(), pixels.end(),
                            [](std::uint32_t pixel) { return pixel == black; }));
}

TEST_P(LogoOnModel, EndsWithEveryPieceAtItsPlace) {
    playKeeping({lastShown});
    const Picture& last = frame(lastShown);

    // The two arcs: what they are drawn as reaches the right edge of their place.
    EXPECT_EQ(last.at(39, 135), ink);
    EXPECT_EQ(last.at(25, 135), ink);
    EXPECT_EQ(last.at(31, 135), white);
    EXPECT_EQ(last.at(75, 100), ink);
    EXPECT_EQ(last.at(75, 82), ink);
    EXPECT_EQ(last.at(78, 100), white);

    // The eight dots, in the middle of theirs: 0.6 x + 8, 63.4 + 0.6 y + 8.
    constexpr int dots[][2] = {{13, 111}, {13, 159}, {26, 98}, {26, 172},
                               {39, 85},  {39, 185}, {52, 72}, {52, 198}};
    for (const auto& dot : dots) {
        const std::uint32_t colour = dot[0] == 52 && dot[1] == 198 ? red : ink;
        EXPECT_EQ(last.at(dot[0], dot[1]), colour) << dot[0] << ", " << dot[1];
    }
    EXPECT_THAT(boxOf(last, red, wholePanel), IsAbout(Box{48, 194, 56, 202}));

    // The pulse and the line below it, nothing cut off.
    EXPECT_THAT(boxOf(last, blue, pulsePlace), IsAbout(Box{359, 96, 474, 159}));
    EXPECT_THAT(boxOfDark(last, {82, 0, 479, 271}), IsAbout(Box{115, 176, 472, 187}));
    EXPECT_EQ(last.at(240, 20), white);
    EXPECT_EQ(last.at(240, 250), white);
}

TEST_P(LogoOnModel, TheWordTurnsThroughItsWindowAndLeavesIt) {
    playKeeping({1, 12, 30, 60, lastShown});
    // A quarter turn back about (190, 107) of the design: upright, as high as the window is.
    const Box upright{96, 0, 152, wordWindow.bottom};
    const Box leftOfThePulse{0, 0, pulsePlace.left - 1, 271};
    EXPECT_THAT(boxOf(frame(1), blue, leftOfThePulse), IsAbout(upright));
    EXPECT_THAT(boxOf(frame(12), blue, leftOfThePulse),
                IsAbout(upright)); // 0.1 of the run: it has not moved yet
    // On its way it fills the window down to the right, and then has turned out of it.
    const Box turning = boxOf(frame(30), blue, leftOfThePulse);
    EXPECT_THAT(turning.right, AllOf(Gt(wordWindow.right - 10), Le(wordWindow.right)));
    EXPECT_THAT(turning.bottom, AllOf(Gt(wordWindow.bottom - 10), Le(wordWindow.bottom)));
    EXPECT_EQ(boxOf(frame(60), blue, leftOfThePulse).right, -1);
    EXPECT_EQ(boxOf(frame(lastShown), blue, leftOfThePulse).right, -1);
    EXPECT_EQ(boxOf(frame(lastShown), blue, wordPlace).right, -1);
}

TEST_P(LogoOnModel, ThePiecesSlideInOneAfterTheOther) {
    playKeeping({1, 30, 60, 90});
    const Box left{0, 0, 85, 271};
    EXPECT_EQ(boxOf(frame(1), ink, left).right, -1); // all of them are still off the panel
    EXPECT_EQ(boxOf(frame(1), red, wholePanel).right, -1);
    // The arcs come first, the red dot last.
    EXPECT_THAT(boxOf(frame(30), ink, left).right, AllOf(Gt(50), Lt(70)));
    EXPECT_EQ(boxOf(frame(30), red, wholePanel).right, -1);
    EXPECT_EQ(boxOf(frame(60), ink, left).right, 76);
    EXPECT_THAT(boxOf(frame(60), red, wholePanel).right, AllOf(Gt(20), Lt(35)));
    EXPECT_EQ(boxOf(frame(90), red, wholePanel).right, 56);
    // The pulse comes from the other side.
    const Box right{358, 0, 479, 271};
    EXPECT_EQ(boxOf(frame(30), blue, right).right, -1);
    EXPECT_THAT(boxOf(frame(60), blue, right).left, AllOf(Gt(400), Lt(410)));
    EXPECT_EQ(boxOf(frame(90), blue, right).left, 359);
}

TEST_P(LogoOnModel, TheSubtitleFadesIn) {
    playKeeping({60, 90, 93, 100, lastShown});
    EXPECT_EQ(darkest(frame(60), subtitlePlace), 0);
    EXPECT_EQ(darkest(frame(90), subtitlePlace), 0); // 0.75 of the run
    EXPECT_THAT(darkest(frame(93), subtitlePlace), AllOf(Gt(20), Lt(180)));
    EXPECT_GT(darkest(frame(100), subtitlePlace), darkest(frame(93), subtitlePlace));
    EXPECT_THAT(darkest(frame(lastShown), subtitlePlace), AllOf(Gt(215), Le(255 - 0x1F)));
}

} // namespace
