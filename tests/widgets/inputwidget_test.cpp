#include "inputwidget.h"
#include "keypadscript.h"
#include "screentest.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t back = 1;
constexpr std::uint32_t ok = 2;
constexpr std::uint32_t nothing = 0;
constexpr std::uint32_t background = 255;

const std::string okButton = "BUTTON 288 217 182 40 font 29 FLAT \"Ok\"\n";
const std::string backButton = "BUTTON 9 8 40 40 font 27 FLAT \"\"\n";
const std::string backArrow = R"(LINE_WIDTH 28
BEGIN LINES
VERTEX2II (18,28) (42,28) (16,28) (28,16) (16,28) (28,40)
END
)";

std::string keypadPicture(const std::string& title) {
    return R"(DLSTART
GRADIENT 21 13 CACACA 455 268 F3F3F3
COLOR_RGB 19190C
TEXT 240 28 font 30 CENTER ")" +
           title + R"("
TAG_MASK 1
FGCOLOR 1DCC37
TAG 2
)" + okButton +
           R"(FGCOLOR 00A1DD
TAG 1
)" + backButton +
           "TAG_MASK 0\n" + backArrow + R"(LINE_WIDTH 16
BEGIN LINE_STRIP
VERTEX2II (10,60) (470,60) (470,110) (10,110) (10,60)
END
MEMCPY 110000 3145728 456
DISPLAY
SWAP
)";
}

// A frame with this text, what is drawn for a held button, and the options of the keys.
std::string frame(const std::string& text, const std::string& heldButton = "",
                  const std::string& options = "FLAT") {
    return "DLSTART\nAPPEND 110000 456\n" + heldButton +
           "FGCOLOR 00A1DD\nBGCOLOR 0087B8\n"
           "KEYS 10 122 460 40 font 29 " +
           options +
           " \"12345\"\n"
           "KEYS 10 170 460 40 font 29 " +
           options +
           " \"67890\"\n"
           "KEYS 10 217 274 40 font 29 " +
           options +
           " \"<.-\"\n"
           "TEXT 240 85 font 30 CENTER \"" +
           text + "\"\nDISPLAY\nSWAP\n";
}

std::string frameHolding(char key, const std::string& text) {
    return frame(text, "", "FLAT|" + std::to_string(static_cast<int>(key)));
}

class InputWidgetTest : public ScreenTest {
protected:
    // Runs the keypad with what the finger is on at each poll in turn.
    double poll(std::deque<std::uint32_t> tags) {
        touch(tags.front());
        tags.pop_front();
        board.onSleep([tags](unsigned) mutable {
            drawnPerPoll.push_back(drawn());
            ASSERT_FALSE(tags.empty()) << "the keypad goes on after the script";
            touch(tags.front());
            tags.pop_front();
        });
        drawnPerPoll.clear();
        const double value = InputWidget::getDouble(&host, title);
        board.onSleep(nullptr);
        return value;
    }

    // Types the keys of `text`, then taps `last`.
    double typeAndTap(const std::string& text, std::uint32_t last) {
        return poll(typing(text, last));
    }

    double typed(const std::string& text) { return typeAndTap(text, ok); }

    // The edit text that typing `keys` gives.
    std::string textAfter(const std::string& keys) {
        typeAndTap(keys, back);
        const std::string& last = drawnPerPoll.at(2 * keys.size() - 1);
        const std::string before = "TEXT 240 85 font 30 CENTER \"";
        const std::size_t start = last.find(before) + before.size();
        return last.substr(start, last.find('"', start) - start);
    }

    QString title = QStringLiteral("Title");
    // What was drawn up to each sleep.
    static std::vector<std::string> drawnPerPoll;
};

std::vector<std::string> InputWidgetTest::drawnPerPoll;

TEST_F(InputWidgetTest, ANullHostReturns0NotNaNAndDrawsNothing) {
    EXPECT_EQ(InputWidget::getDouble(nullptr, title), 0.0);
    EXPECT_THAT(board.events(), IsEmpty());
}

TEST_F(InputWidgetTest, DrawsTheKeypadOnceBeforeAnyTouch) {
    poll({nothing, nothing, nothing, back, nothing});
    EXPECT_THAT(drawnPerPoll,
                ElementsAre(keypadPicture("Title") + frame(""), "", "",
                            frame("", "FGCOLOR 007C9E\n" + backButton + backArrow, "FLAT|1")));
}

TEST_F(InputWidgetTest, AFingerThatIsThereFromTheStartPressesAtOnce) {
    poll({'5', nothing, back, nothing});
    EXPECT_EQ(drawnPerPoll.at(0), keypadPicture("Title") + frameHolding('5', ""));
    EXPECT_EQ(drawnPerPoll.at(1), frame("5"));
}

TEST_F(InputWidgetTest, ShowsTheTitleInTheLocal8BitEncoding) {
    title = QStringLiteral("Trigger level [3], mV");
    poll({nothing, back, nothing});
    EXPECT_EQ(drawnPerPoll.at(0), keypadPicture("Trigger level [3], mV") + frame(""));
}

TEST_F(InputWidgetTest, KeepsItsStaticPictureApartFromTheScreens) {
    poll({nothing, back, nothing});
    EXPECT_THAT(drawnPerPoll.at(0), testing::HasSubstr("MEMCPY 110000 "));
    EXPECT_THAT(drawnPerPoll.at(0), testing::Not(testing::HasSubstr("100000")));
}

TEST_F(InputWidgetTest, PollsEvery50Ms) {
    std::vector<unsigned> sleeps;
    touch(nothing);
    board.onSleep([&](unsigned ms) {
        sleeps.push_back(ms);
        touch(sleeps.size() == 3 ? back : nothing);
    });
    InputWidget::getDouble(&host, title);
    EXPECT_THAT(sleeps, testing::SizeIs(4));
    EXPECT_THAT(sleeps, Each(50U));
}

TEST_F(InputWidgetTest, TheBackButtonIsNaNWhateverWasTyped) {
    EXPECT_TRUE(std::isnan(typeAndTap("", back)));
    EXPECT_TRUE(std::isnan(typeAndTap("12.5", back)));
}

TEST_F(InputWidgetTest, OkOnAnEmptyTextIsNaN) {
    EXPECT_TRUE(std::isnan(typed("")));
}

TEST_F(InputWidgetTest, OkOnTextThatIsNoNumberIsNaN) {
    EXPECT_TRUE(std::isnan(typed(".")));
    EXPECT_TRUE(std::isnan(typed("1<.-"))); // a minus sign followed by a point
}

TEST_F(InputWidgetTest, OkGivesTheNumberTyped) {
    EXPECT_EQ(typed("1234567890"), 1234567890.0);
    EXPECT_EQ(typed("1."), 1.0);
    EXPECT_EQ(typed(".5"), 0.5);
    EXPECT_EQ(typed("007"), 7.0);
    EXPECT_EQ(typed("0"), 0.0);
    EXPECT_EQ(typed("12-.5"), -12.5);
}

TEST_F(InputWidgetTest, ANumberBeyondTheRangeOfADoubleIsNaN) {
    EXPECT_TRUE(std::isnan(typed(std::string(400, '9'))));
}

TEST_F(InputWidgetTest, EachDigitIsAppended) {
    EXPECT_EQ(textAfter("1234567890"), "1234567890");
    EXPECT_EQ(textAfter("000"), "000");
}

TEST_F(InputWidgetTest, ASecondPointIsIgnored) {
    EXPECT_EQ(textAfter(".."), ".");
    EXPECT_EQ(textAfter("1.2.3"), "1.23");
}

TEST_F(InputWidgetTest, APointMayBeTypedAgainOnceItIsDeleted) {
    EXPECT_EQ(textAfter("1.<2."), "12.");
}

TEST_F(InputWidgetTest, MinusTogglesTheSignOfATextThatIsNotEmpty) {
    EXPECT_EQ(textAfter("12-"), "-12");
    EXPECT_EQ(textAfter("12--"), "12");
    EXPECT_EQ(textAfter("12-3"), "-123");
}

TEST_F(InputWidgetTest, MinusOnAnEmptyTextLeavesItEmptyAndRedraws) {
    EXPECT_EQ(textAfter("-"), "");
    EXPECT_EQ(drawnPerPoll.at(1), frame(""));
}

TEST_F(InputWidgetTest, DeleteRemovesTheLastCharacter) {
    EXPECT_EQ(textAfter("123<"), "12");
    EXPECT_EQ(textAfter("1-<"), "-");
}

TEST_F(InputWidgetTest, DeleteOnAnEmptyTextLeavesItEmptyAndRedraws) {
    EXPECT_EQ(textAfter("<"), "");
    EXPECT_EQ(drawnPerPoll.at(1), frame(""));
}

TEST_F(InputWidgetTest, KeysThatItDoesNotKnowChangeNothing) {
    poll({7, nothing, back, nothing});
    EXPECT_EQ(drawnPerPoll.at(1), frame(""));
}

TEST_F(InputWidgetTest, AKeyIsDrawnPressedWhenTouchedAndEnteredWhenReleased) {
    poll({nothing, '4', '4', nothing, nothing, '2', nothing, back, nothing});
    EXPECT_THAT(drawnPerPoll,
                ElementsAre(keypadPicture("Title") + frame(""), frameHolding('4', ""), "",
                            frame("4"), "", frameHolding('2', "4"), frame("42"),
                            frame("42", "FGCOLOR 007C9E\n" + backButton + backArrow, "FLAT|1")));
}

TEST_F(InputWidgetTest, TheHeldOkButtonIsDrawnPressed) {
    poll({nothing, ok, nothing});
    EXPECT_EQ(drawnPerPoll.at(1), frame("", "FGCOLOR 17A72A\n" + okButton, "FLAT|2"));
}

TEST_F(InputWidgetTest, SlidingFromOneKeyOntoAnotherEntersTheLatterAndDrawsNothingBefore) {
    poll({nothing, '5', '6', nothing, back, nothing});
    EXPECT_EQ(drawnPerPoll.at(2), "");
    EXPECT_EQ(drawnPerPoll.at(3), frame("6"));
}

TEST_F(InputWidgetTest, SlidingOntoTheBackgroundEntersTheKeyWhileTheFingerIsStillDown) {
    poll({nothing, '5', background, background, nothing, back, nothing});
    EXPECT_EQ(drawnPerPoll.at(2), frame("5"));
    EXPECT_EQ(drawnPerPoll.at(3), "");
    EXPECT_EQ(drawnPerPoll.at(4), "");
}

TEST_F(InputWidgetTest, SlidingFromBackOntoAKeyDoesNotLeave) {
    EXPECT_EQ(poll({nothing, back, '7', nothing, ok, background}), 7.0);
}

TEST_F(InputWidgetTest, EveryCallStartsWithAnEmptyText) {
    typed("12");
    typed("");
    EXPECT_EQ(drawnPerPoll.at(0),
              keypadPicture("Title") + frame("", "FGCOLOR 17A72A\n" + okButton, "FLAT|2"));
}

} // namespace
