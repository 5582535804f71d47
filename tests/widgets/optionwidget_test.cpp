#include "datareader.h"
#include "debuglog.h"
#include "keypadscript.h"
#include "optionwidget.h"
#include "qtprinting.h"
#include "screentest.h"
#include "scriptedserver.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const std::string optionsPicture = R"(GRADIENT 21 13 CACACA 455 268 F3F3F3
COLOR_RGB 19190C
TEXT 240 28 font 31 CENTER "Options"
FGCOLOR 00A1DD
TAG_MASK 1
TAG 1
BUTTON 9 8 40 40 font 27 FLAT ""
TAG 2
BUTTON 400 65 60 30 font 27 FLAT "Set"
TAG 3
BUTTON 400 105 60 30 font 27 FLAT "Set"
TAG 4
BUTTON 400 145 60 30 font 27 FLAT "Set"
TAG 5
BUTTON 400 185 60 30 font 27 FLAT "Set"
TAG 6
BUTTON 400 225 60 30 font 27 FLAT "Set"
TAG_MASK 0
LINE_WIDTH 28
BEGIN LINES
VERTEX2II (18,28) (42,28) (16,28) (28,16) (16,28) (28,40)
END
LINE_WIDTH 16
BEGIN LINE_STRIP
VERTEX2II (10,60) (470,60) (470,260) (10,260) (10,60)
END
LINE_WIDTH 8
BEGIN LINES
VERTEX2II (20,100) (460,100) (20,140) (460,140) (20,180) (460,180) (20,220) (460,220)
END
TEXT 17 80 font 29 CENTERY "Time constant:"
TEXT 17 120 font 29 CENTERY "Trigger[0]:"
TEXT 17 160 font 29 CENTERY "Trigger[1]:"
TEXT 17 200 font 29 CENTERY "Trigger[2]:"
TEXT 17 240 font 29 CENTERY "Trigger[3]:"
)";

std::string values(const std::array<std::string, 5>& texts) {
    std::string listing;
    for (std::size_t row = 0; row < texts.size(); ++row) {
        listing += "TEXT 379 " + std::to_string(80 + 40 * row) + " font 29 CENTERY|RIGHTX \"" +
                   texts.at(row) + "\"\n";
    }
    return listing;
}

const std::string optionsZeros = values({"0 sec", "0 mV", "0 mV", "0 mV", "0 mV"});

class OptionWidgetTest : public TouchedScreenTest {
protected:
    FTWidget& touchedScreen() override { return screen; }

    // Taps a "Set" button, then the keys of `keys` on the keypad, and after them the tag `last`.
    // Returns what the screen draws in the end.
    std::string set(std::uint32_t tag, const std::string& keys, std::uint32_t last) {
        passTouching(tag);
        keypad.clear();
        board.onSleep([this, tags = typing(keys, last)](unsigned) mutable {
            keypad += drawn();
            touch(tags.front());
            tags.pop_front();
        });
        std::string redrawn = passTouching(0);
        board.onSleep(nullptr);
        return redrawn;
    }

    static constexpr std::uint32_t back = 1;
    static constexpr std::uint32_t ok = 2;

    ScriptedServer server;
    DataReader client;
    OptionWidget screen{&host, &client};
    QSignalSpy backClicked{&screen, &OptionWidget::backClicked};
    std::string keypad; // what was drawn while it was up
};

TEST_F(OptionWidgetTest, OffersOneSignal) {
    EXPECT_THAT(methodsOf(OptionWidget::staticMetaObject), ElementsAre("backClicked()"));
}

TEST_F(OptionWidgetTest, ExecDrawsThePictureAndTheClientsParametersWithoutAskingTheServer) {
    screen.exec();
    EXPECT_EQ(drawn(), staticFrame(optionsPicture) + redraw(optionsZeros));
    EXPECT_EQ(server.connections(), 0);
}

TEST_F(OptionWidgetTest, ShowsSecondsAndMillivoltsInSixDigits) {
    server.answer("PARAMS?",
                  {R"({"TimeConst":0.001,"Ref0":0.25,"Ref1":0.1234567,"Ref2":-0.15,"Ref3":5000})",
                   R"({"TimeConst":1e-05,"Ref0":1e-9,"Ref1":0,"Ref2":0,"Ref3":0})"});
    client.updateParams();
    show();
    screen.update();
    EXPECT_EQ(passTouching(0),
              redraw(values({"0.001 sec", "250 mV", "123.457 mV", "-150 mV", "5e+06 mV"})));
    client.updateParams();
    screen.update();
    EXPECT_EQ(passTouching(0), redraw(values({"1e-05 sec", "1e-06 mV", "0 mV", "0 mV", "0 mV"})));
}

TEST_F(OptionWidgetTest, TheHeldBackButtonIsDrawnPressedAndItsReleaseLeavesTheScreen) {
    show();
    EXPECT_EQ(passTouching(1), redraw(R"(FGCOLOR 007C9E
BUTTON 9 8 40 40 font 27 FLAT ""
LINE_WIDTH 28
BEGIN LINES
VERTEX2II (18,28) (42,28) (16,28) (28,16) (16,28) (28,40)
END
)" + optionsZeros));
    bool stoppedAtSignal = true;
    QObject::connect(&screen, &OptionWidget::backClicked, &screen,
                     [&] { stoppedAtSignal = screen.isStoped(); });
    EXPECT_EQ(passTouching(0), "");
    EXPECT_EQ(backClicked.count(), 1);
    EXPECT_FALSE(stoppedAtSignal);
    EXPECT_TRUE(screen.isStoped());
}

TEST_F(OptionWidgetTest, AHeldSetButtonIsDrawnPressed) {
    show();
    for (std::uint32_t tag = 2; tag <= 6; ++tag) {
        EXPECT_EQ(passTouching(tag),
                  redraw("FGCOLOR 007C9E\nBUTTON 400 " + std::to_string(65 + 40 * (tag - 2)) +
                         " 60 30 font 27 FLAT \"Set\"\n" + optionsZeros));
        set(tag, "", back);
    }
}

TEST_F(OptionWidgetTest, SettingTheTimeConstantSendsItAndShowsIt) {
    show();
    const std::string redrawn = set(2, "0.5", ok);
    EXPECT_THAT(keypad, HasSubstr("\"Time constant, sec\""));
    EXPECT_EQ(redrawn.substr(redrawn.find("DLSTART\nAPPEND 100000")),
              redraw(values({"0.5 sec", "0 mV", "0 mV", "0 mV", "0 mV"})));
    EXPECT_THAT(server.waitForRequests(2), ElementsAre("START 0.5\n", "STOP\n"));
    EXPECT_FALSE(screen.isStoped());
    EXPECT_EQ(backClicked.count(), 0);
}

TEST_F(OptionWidgetTest, ZeroAndNegativeTimeConstantsArePassedOnToTheClientWhichClampsThem) {
    show();
    set(2, "0", ok);
    set(2, "5-", ok);
    EXPECT_THAT(server.waitForRequests(4),
                ElementsAre("START 0.01\n", "STOP\n", "START 0.01\n", "STOP\n"));
}

TEST_F(OptionWidgetTest, Entering250ForTrigger2SendsAQuarterVoltForChannel2) {
    server.answer("PARAMS?", {R"({"TimeConst":1,"Ref2":0.25})"});
    show();
    const std::string redrawn = set(5, "250", ok);
    EXPECT_THAT(keypad, HasSubstr("\"Trigger level [2], mV\""));
    EXPECT_THAT(server.waitForRequests(2), ElementsAre("DAC 2,0.25\n", "PARAMS?\n"));
    EXPECT_EQ(redrawn.substr(redrawn.find("DLSTART\nAPPEND 100000")),
              redraw(values({"1 sec", "0 mV", "0 mV", "250 mV", "0 mV"})));
}

TEST_F(OptionWidgetTest, EachTriggerRowSetsItsOwnChannelWhateverTheSign) {
    show();
    set(3, "1", ok);
    set(4, "20-", ok);
    set(6, "0", ok);
    EXPECT_THAT(server.waitForRequests(6),
                ElementsAre("DAC 0,0.001\n", "PARAMS?\n", "DAC 1,-0.02\n", "PARAMS?\n", "DAC 3,0\n",
                            "PARAMS?\n"));
}

TEST_F(OptionWidgetTest, LeavingTheKeypadWithTheBackButtonChangesNothingAndSendsNothing) {
    show();
    for (std::uint32_t tag = 2; tag <= 6; ++tag) {
        const std::string redrawn = set(tag, "12", back);
        EXPECT_EQ(redrawn.substr(redrawn.find("DLSTART\nAPPEND 100000")), redraw(optionsZeros));
    }
    EXPECT_EQ(server.connections(), 0);
    EXPECT_FALSE(screen.isStoped());
}

TEST_F(OptionWidgetTest, TextThatIsNoNumberNeverReachesTheServer) {
    show();
    for (std::uint32_t tag = 2; tag <= 6; ++tag) {
        set(tag, "", ok);
        set(tag, ".-", ok);
        set(tag, std::string(310, '9'), ok); // more than a double holds
    }
    EXPECT_EQ(server.connections(), 0);
}

TEST_F(OptionWidgetTest, OnlyTheTimeConstantIsLogged) {
    show();
    const DebugLog log;
    set(2, "2.5", ok);
    EXPECT_EQ(log.messages(), QStringList{"2.5"});
    set(2, "", back);
    EXPECT_EQ(log.messages(), (QStringList{"2.5", "nan"}));
}

TEST_F(OptionWidgetTest, TheTriggerPathLogsNothingOfItsOwn) {
    server.answer("PARAMS?", {"{}"});
    show();
    const DebugLog log;
    set(3, "250", ok);
    // The client's own line: channel and level.
    EXPECT_EQ(log.messages(), QStringList{"0 0.25"});
}

TEST_F(OptionWidgetTest, OtherTagsOnlyRedraw) {
    show();
    for (const int tag : {7, 48, 254}) {
        screen.buttonReleased(tag);
        EXPECT_EQ(passTouching(0), redraw(optionsZeros)) << tag;
    }
    EXPECT_EQ(backClicked.count(), 0);
}

} // namespace
