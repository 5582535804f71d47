#include "applicationcommands.h"
#include "expectationcommands.h"
#include "faultcommands.h"
#include "fingercommands.h"
#include "framecommands.h"
#include "inspectioncommands.h"
#include "script.h"
#include "servercommands.h"
#include "sessioncommands.h"
#include "waitcommands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace panel::script {
namespace {

using testing::StartsWith;

Script parsed(const char* text) {
    return parse(QString::fromUtf8(text), QStringLiteral("s.txt"));
}

std::string errorOf(const char* text) {
    return parsed(text).errors.join('\n').toStdString();
}

// The action of the script's last line, which must be one of kind T.
template<typename T>
std::shared_ptr<const T> last(const char* text) {
    const Script script = parsed(text);
    EXPECT_EQ(script.errors.join('\n').toStdString(), "");
    const auto action = script.statements.empty()
                            ? nullptr
                            : std::dynamic_pointer_cast<const T>(script.statements.back().action);
    if (!action) {
        throw std::runtime_error(std::string("no statement of the wanted kind: ") + text);
    }
    return action;
}

// The same of its only line.
template<typename T>
std::shared_ptr<const T> only(const char* text) {
    EXPECT_EQ(parsed(text).statements.size(), 1U) << text;
    return last<T>(text);
}

TEST(Script, WaitsForTimeFramesAndSwaps) {
    EXPECT_EQ(only<WaitTime>("wait time 1.5s")->duration.count(), 1500);
    EXPECT_EQ(only<WaitTime>("wait time 20ms")->duration.count(), 20);
    EXPECT_EQ(only<WaitFrames>("wait frames 3")->count, 3U);
    EXPECT_EQ(only<WaitSwaps>("wait swaps 12")->count, 12U);
    EXPECT_EQ(only<WaitReads>("wait reads 2")->count, 2U);
    only<WaitQuiet>("wait quiet");
}

TEST(Script, WaitsForTextAndItsEnd) {
    EXPECT_EQ(only<WaitText>("wait text \"COUNTER MODE\"")->text.pattern, "COUNTER MODE");
    EXPECT_TRUE(only<WaitText>("wait text 12")->present);
    EXPECT_FALSE(only<WaitText>("wait no-text \"Please wait\"")->present);
}

TEST(Script, WaitsForRequestsAndConnections) {
    EXPECT_EQ(only<WaitRequest>("wait request \"START *\"")->pattern, "START *");
    EXPECT_EQ(only<WaitLog>("wait log \"start *\"")->pattern, "start *");
    EXPECT_TRUE(only<WaitConnection>("wait connection")->connected);
    EXPECT_FALSE(only<WaitConnection>("wait no-connection")->connected);
}

TEST(Script, WaitsForTheApplicationsEnd) {
    EXPECT_FALSE(only<WaitExit>("wait exit")->status.has_value());
    EXPECT_EQ(only<WaitExit>("wait exit 1")->status, 1);
    EXPECT_EQ(only<WaitExit>("wait exit signal 6")->signal, 6);
}

TEST(Script, MovesTheFinger) {
    const auto press = only<Finger>("press 479 271");
    EXPECT_EQ(press->kind, Finger::Kind::Press);
    EXPECT_EQ(std::get<QPoint>(press->target), QPoint(479, 271));
    EXPECT_FALSE(press->now);
    EXPECT_TRUE(last<Finger>("press 1 2\nmove 10 20 now")->now);
    EXPECT_EQ(last<Finger>("press 1 2\nmove 10 20")->kind, Finger::Kind::Move);
    EXPECT_EQ(last<Finger>("press 1 2\nrelease")->kind, Finger::Kind::Release);
    EXPECT_TRUE(last<Finger>("press 1 2\nrelease now")->now);
    EXPECT_EQ(only<Finger>("tap 0 0")->kind, Finger::Kind::Tap);
}

TEST(Script, TheFingerGoesToTextsAndTags) {
    EXPECT_EQ(std::get<SoughtText>(only<Finger>("tap \"Ok\"")->target).pattern, "Ok");
    EXPECT_EQ(std::get<SoughtText>(only<Finger>("press \"5\" at 10 20 now")->target).at,
              QPoint(10, 20));
    EXPECT_TRUE(only<Finger>("press \"5\" now")->now);
    EXPECT_EQ(std::get<int>(only<Finger>("tap tag 3")->target), 3);
    EXPECT_EQ(std::get<int>(last<Finger>("press 1 2\nmove tag 4")->target), 4);
    EXPECT_EQ(std::get<SoughtText>(only<Finger>("tap \"tag\" within 3s")->target).pattern, "tag");
    EXPECT_THAT(errorOf("tap tag 256"), StartsWith("s.txt:1: the tag must be a whole number"));
    EXPECT_THAT(errorOf("tap Ok"), StartsWith("s.txt:1: X must be a whole number"));
}

TEST(Script, TakesScreenshots) {
    EXPECT_EQ(only<Screenshot>("screenshot counter-1")->name, "counter-1");
    EXPECT_FALSE(only<Screenshot>("screenshot counter")->now);
    EXPECT_TRUE(only<Screenshot>("screenshot counter now")->now);
}

TEST(Script, CommandsTheServer) {
    EXPECT_TRUE(only<ServerSwitch>("server start")->on);
    EXPECT_FALSE(only<ServerSwitch>("server stop")->on);
    const std::array<double, 4> values{1, -2.5, 3e6, 0};
    EXPECT_EQ(only<ServerValues>("server values 1 -2.5 3e6 0")->values, values);
    EXPECT_FALSE(only<ServerValues>("server values random")->values.has_value());
    EXPECT_EQ(only<ServerFault>("server fault nul-byte")->rule.fault, server::Fault::NulByte);
    const auto reply = only<ServerReply>("server reply START Error");
    EXPECT_EQ(reply->command, "START");
    EXPECT_EQ(reply->reply, QByteArray("Error\n"));
    EXPECT_EQ(only<ServerReply>("server reply DATA? \"\"")->reply, QByteArray(""));
    EXPECT_FALSE(only<ServerReply>("server reply START default")->reply.has_value());
    const auto params = only<ServerParams>("server params 0.2 0.1 0.2 0.3 0.4");
    EXPECT_EQ(params->timeConstant, 0.2);
    EXPECT_EQ(params->levels[3], 0.4);
}

TEST(Script, CommandsApplicationBoardAndController) {
    EXPECT_TRUE(only<ApplicationSwitch>("application start")->on);
    EXPECT_FALSE(only<ApplicationSwitch>("application kill")->on);
    EXPECT_FALSE(only<BoardTransfers>("board transfers failing")->working);
    EXPECT_TRUE(only<BoardTransfers>("board transfers working")->working);
    EXPECT_EQ(only<ControllerIdentity>("controller identity 0x00011308")->word, 0x11308U);
    EXPECT_FALSE(only<ControllerAnswering>("controller answering no")->answering);
    EXPECT_TRUE(only<CoprocessorStalled>("controller coprocessor stalled")->stalled);
    EXPECT_EQ(only<AllowComplaint>("allow complaint \"unknown*\"")->pattern, "unknown*");
}

TEST(Script, MarksExpectsAndReports) {
    only<Mark>("mark");
    only<Report>("report");
    only<End>("end");
    EXPECT_TRUE(only<ExpectText>("expect text Ok")->present);
    EXPECT_FALSE(only<ExpectText>("expect no-text Ok")->present);
    const auto requests = only<ExpectRequests>("expect requests \"START 1\" STOP");
    EXPECT_EQ(requests->patterns, QStringList({"START 1", "STOP"}));
    EXPECT_FALSE(requests->withData);
    EXPECT_TRUE(only<ExpectRequests>("expect all-requests DATA?")->withData);
    EXPECT_EQ(only<ExpectNoRequest>("expect no-request STOP")->pattern, "STOP");
    EXPECT_EQ(only<ExpectLog>("expect log one \"two *\"")->patterns, QStringList({"one", "two *"}));
    const auto held = only<ExpectRegister>("expect register REG_TOUCH_TRANSFORM_C -591770");
    EXPECT_EQ(held->id, controller::Register::TouchTransformC);
    EXPECT_EQ(held->value, -591770);
    EXPECT_EQ(only<ExpectPixel>("expect pixel 1 2 0xCACACA")->colour, 0xCACACAU);
    EXPECT_EQ(only<ExpectDrawnBy>("expect drawn-by 1 2 \"CMD_TEXT * \\\"Ok\\\"\"")->pattern,
              "CMD_TEXT * \"Ok\"");
    EXPECT_EQ(only<DumpList>("dump list list.txt")->file, "list.txt");
    EXPECT_EQ(only<DumpRegisters>("dump registers all.txt")->file, "all.txt");
    EXPECT_EQ(only<ExpectMemoryGrowth>("expect memory-growth 64")->atMostKilobytes, 64);
}

TEST(Script, KeepsLineNumbersAndSkipsCommentsAndEmptyLines) {
    const Script script = parsed("# a session\n\n  tap 1 2   # the start button\n\nend\n");
    ASSERT_EQ(script.statements.size(), 2U);
    EXPECT_EQ(script.statements[0].line, 3);
    EXPECT_EQ(script.statements[0].text, "tap 1 2   # the start button");
    EXPECT_EQ(script.statements[1].line, 5);
}

TEST(Script, LimitsWaitsOnRequest) {
    EXPECT_EQ(parsed("wait request STOP within 2s").statements[0].limit.count(), 2000);
    EXPECT_EQ(parsed("screenshot a now within 1s").statements[0].limit.count(), 1000);
    EXPECT_EQ(parsed("wait request STOP").statements[0].limit, defaultWaitLimit);
    EXPECT_EQ(errorOf("mark within 2s"),
              "s.txt:1: \"within\" has no meaning for \"mark\"; leave it out");
    EXPECT_EQ(errorOf("wait quiet within soon"),
              "s.txt:1: the limit must be a time such as 500ms or 2s, not \"soon\"");
}

TEST(Script, QuotedTextMayHoldAnything) {
    EXPECT_EQ(only<WaitText>(R"(wait text "a \"b\" # \\ c")")->text.pattern, R"(a "b" # \ c)");
    EXPECT_EQ(errorOf("end\nwait text \"open"),
              "s.txt:2: a quotation mark is not closed; end the text with \"");
}

TEST(Script, NamesTheCommandsWhenOneIsUnknown) {
    EXPECT_THAT(errorOf("tpa 1 2"),
                StartsWith("s.txt:1: there is no command \"tpa\"; there is wait frames, wait "));
    EXPECT_EQ(
        errorOf("server restart"),
        "s.txt:1: there is no command \"server restart\"; there is server start, server stop, "
        "server values, server reply, server params, server fault");
    EXPECT_EQ(errorOf("wait"), "s.txt:1: the second word of \"wait\" is missing");
}

TEST(Script, SaysWhatIsMissingOrTooMuch) {
    EXPECT_EQ(errorOf("tap 5"), "s.txt:1: Y is missing");
    EXPECT_EQ(errorOf("wait text"), "s.txt:1: the text is missing");
    EXPECT_EQ(errorOf("expect requests"), "s.txt:1: a request is missing");
    EXPECT_EQ(errorOf("wait text COUNTER MODE"),
              "s.txt:1: \"MODE\" is too much; put texts with blanks in quotation marks");
    EXPECT_THAT(errorOf("tap 1 2 now"), StartsWith("s.txt:1: \"now\" is too muc"));
}

TEST(Script, SaysWhatIsNoNumber) {
    EXPECT_EQ(errorOf("tap 480 0"), "s.txt:1: X must be a whole number from 0 to 479, not \"480\"");
    EXPECT_EQ(errorOf("tap 0 272"), "s.txt:1: Y must be a whole number from 0 to 271, not \"272\"");
    EXPECT_EQ(errorOf("wait frames 0"),
              "s.txt:1: the count must be a whole number from 1 to 1000000, not \"0\"");
    EXPECT_EQ(errorOf("wait time 5"),
              "s.txt:1: TIME must be a time such as 500ms or 2s, not \"5\"");
    EXPECT_THAT(errorOf("wait time -1s"), StartsWith("s.txt:1: TIME must be a"));
    EXPECT_EQ(errorOf("server values 1 2 x 4"),
              "s.txt:1: a channel's value (four, or \"random\") must be a number, not \"x\"");
    EXPECT_THAT(errorOf("controller identity zz"), StartsWith("s.txt:1: the identity must be "));
    EXPECT_THAT(errorOf("wait exit 256"), StartsWith("s.txt:1: the exit status must be "));
}

TEST(Script, SaysWhichWordsThereAre) {
    EXPECT_EQ(errorOf("board transfers broken"),
              "s.txt:1: the state must be \"working\" or \"failing\", not \"broken\"");
    EXPECT_THAT(errorOf("server fault slow"),
                StartsWith("s.txt:1: there is no fault \"slow\"; there is none, si"));
    EXPECT_EQ(errorOf("screenshot ../a"),
              "s.txt:1: a picture's name has letters, digits, '-', '_' and '.' only, not \"../a\"");
}

TEST(Script, TellsEveryMistake) {
    EXPECT_EQ(parsed("tap x y\nwait quiet\nnonsense\nwait time 1").errors.size(), 3);
    EXPECT_EQ(errorOf("tap x y\nwait quiet\nwait time 1"),
              "s.txt:1: X must be a whole number from 0 to 479, not \"x\"\n"
              "s.txt:3: TIME must be a time such as 500ms or 2s, not \"1\"");
}

TEST(Script, AFingerGoesDownOnceAndUpOnce) {
    EXPECT_EQ(errorOf("press 1 2\nmove 3 4\nrelease\ntap 1 2\npress 5 6\nrelease now"), "");
    EXPECT_EQ(errorOf("press 1 2\npress 3 4"),
              "s.txt:2: the finger is down since line 1; \"release\" it first, or \"move\" it");
    EXPECT_THAT(errorOf("press 1 2\nwait quiet\ntap 3 4"),
                StartsWith("s.txt:3: the finger is down since line 1; "));
    EXPECT_EQ(errorOf("move 1 2"), "s.txt:1: the finger is not down; \"press\" first");
    EXPECT_EQ(errorOf("tap 1 2\nrelease"), "s.txt:2: the finger is not down; \"press\" first");
}

TEST(Script, PicturesHaveDifferentNames) {
    EXPECT_EQ(errorOf("screenshot a\nscreenshot b now"), "");
    EXPECT_EQ(errorOf("screenshot a\nend\nscreenshot a"),
              "s.txt:3: the picture of line 1 has the name \"a\", too; give each its own");
}

TEST(Script, RepliesAreToRequestsThatThereAre) {
    for (const char* word : {"PARAMS?", "DATA?", "START", "STOP", "DAC"}) {
        EXPECT_EQ(errorOf((std::string("server reply ") + word + " Ok").c_str()), "") << word;
    }
    EXPECT_EQ(errorOf("server reply DATA Ok"),
              "s.txt:1: the server knows no command \"DATA\"; it knows PARAMS?, DATA?, START, "
              "STOP, DAC");
}

TEST(Script, TextsMayHaveAPlace) {
    const auto anywhere = only<ExpectText>("expect text 2");
    EXPECT_FALSE(anywhere->text.at || anywhere->text.in);
    EXPECT_EQ(only<ExpectText>("expect text 2 at 30 40")->text.at, QPoint(30, 40));
    EXPECT_EQ(only<WaitText>("wait no-text 2 in 30 40 100 50")->text.in, QRect(30, 40, 100, 50));
    EXPECT_EQ(only<WaitText>("wait text at at 1 2 within 3s")->text.pattern, "at");
    EXPECT_EQ(errorOf("wait text 2 at 30"), "s.txt:1: Y is missing");
    EXPECT_EQ(errorOf("wait text 2 in 1 2 3"), "s.txt:1: HEIGHT is missing");
    EXPECT_THAT(errorOf("wait text 2 in 1 2 0 4"), StartsWith("s.txt:1: WIDTH must be a whole"));
}

TEST(Script, AnEmptyScriptIsGood) {
    EXPECT_EQ(errorOf(""), "");
    EXPECT_TRUE(parsed("# nothing\n").statements.empty());
}

TEST(Script, TimesAreFromNothingToADay) {
    EXPECT_EQ(only<WaitTime>("wait time 0s")->duration.count(), 0);
    EXPECT_EQ(only<WaitTime>("wait time 86400s")->duration.count(), 86400000);
    EXPECT_THAT(errorOf("wait time 86400001ms"), StartsWith("s.txt:1: TIME must be a time"));
    EXPECT_THAT(errorOf("wait time nans"), StartsWith("s.txt:1: TIME must be a time"));
    EXPECT_THAT(errorOf("wait time s"), StartsWith("s.txt:1: TIME must be a time"));
}

TEST(Script, TimesAreRoundedToMilliseconds) {
    EXPECT_EQ(only<WaitTime>("wait time 1.6ms")->duration.count(), 2);
    EXPECT_EQ(only<WaitTime>("wait time 0.0004s")->duration.count(), 0);
}

TEST(Script, NumbersReachTheirBoundsAndNoFurther) {
    EXPECT_EQ(only<WaitFrames>("wait frames 1")->count, 1U);
    EXPECT_EQ(only<WaitFrames>("wait frames 1000000")->count, 1000000U);
    EXPECT_EQ(only<WaitExit>("wait exit 0")->status, 0);
    EXPECT_EQ(only<WaitExit>("wait exit 255")->status, 255);
    EXPECT_EQ(only<WaitExit>("wait exit signal 1")->signal, 1);
    EXPECT_EQ(only<WaitExit>("wait exit signal 64")->signal, 64);
    EXPECT_EQ(errorOf("wait exit signal 0"),
              "s.txt:1: the signal must be a whole number from 1 to 64, not \"0\"");
    EXPECT_EQ(only<ExpectMemoryGrowth>("expect memory-growth 0")->atMostKilobytes, 0);
    EXPECT_EQ(only<ExpectMemoryGrowth>("expect memory-growth 1048576")->atMostKilobytes, 1048576);
    EXPECT_EQ(errorOf("expect memory-growth 1048577"),
              "s.txt:1: KILOBYTES must be a whole number from 0 to 1048576, not \"1048577\"");
    EXPECT_EQ(errorOf("wait exit -1"),
              "s.txt:1: the exit status must be a whole number from 0 to 255, not \"-1\"");
    EXPECT_EQ(errorOf("move -1 0"), "s.txt:1: X must be a whole number from 0 to 479, not \"-1\"");
    EXPECT_EQ(errorOf("move 0 -1"), "s.txt:1: Y must be a whole number from 0 to 271, not \"-1\"");
}

TEST(Script, RegistersHoldAnySignedWord) {
    EXPECT_EQ(only<ExpectRegister>("expect register REG_ID -2147483648")->value, INT32_MIN);
    EXPECT_EQ(only<ExpectRegister>("expect register REG_ID 2147483647")->value, INT32_MAX);
    EXPECT_EQ(errorOf("expect register REG_NONE 1"),
              "s.txt:1: the controller has no register \"REG_NONE\"");
}

TEST(Script, ServerParamsGiveEveryTriggerLevel) {
    const std::array<double, 4> levels{0.1, -0.2, 30, 0};
    EXPECT_EQ(only<ServerParams>("server params 0.2 0.1 -0.2 30 0")->levels, levels);
    EXPECT_EQ(errorOf("server params 0.2 0.1 -0.2 30"),
              "s.txt:1: a trigger level (four) is missing");
}

TEST(Script, StatesHaveTwoWords) {
    EXPECT_TRUE(only<ControllerAnswering>("controller answering yes")->answering);
    EXPECT_FALSE(only<CoprocessorStalled>("controller coprocessor running")->stalled);
    EXPECT_EQ(errorOf("controller coprocessor"), "s.txt:1: the state is missing");
}

TEST(Script, WithinIsALimitOnlyAfterAnotherWordAndBeforeTheLast) {
    EXPECT_THAT(errorOf("within 2s"), StartsWith("s.txt:1: there is no command \"within\""));
    EXPECT_EQ(only<WaitText>("wait text within")->text.pattern, "within");
    EXPECT_EQ(only<WaitText>("wait text within within 1s")->text.pattern, "within");
}

TEST(Script, LimitsWhateverWaits) {
    for (const char* line :
         {"wait frames 1 within 3s", "wait text a within 3s", "screenshot a within 3s",
          "wait request a within 3s", "wait log a within 3s", "wait connection within 3s",
          "wait exit within 3s", "tap 1 2 within 3s"}) {
        const Script script = parsed(line);
        ASSERT_EQ(script.statements.size(), 1U) << line << script.errors.join('\n').toStdString();
        EXPECT_EQ(script.statements[0].limit.count(), 3000) << line;
    }
    for (const char* line : {"expect text a within 3s", "wait time 1s within 3s",
                             "server start within 3s", "end within 3s"}) {
        EXPECT_THAT(errorOf(line), testing::HasSubstr("\"within\" has no meaning")) << line;
    }
}

TEST(Script, PictureNamesStartWithALetterOrDigit) {
    EXPECT_EQ(only<Screenshot>("screenshot 1_a.B-c")->name, "1_a.B-c");
    EXPECT_THAT(errorOf("screenshot .a"), StartsWith("s.txt:1: a picture's name has"));
    EXPECT_THAT(errorOf("screenshot a/b"), StartsWith("s.txt:1: a picture's name has"));
}

TEST(Script, QuotedTextMayBeEmptyAndHoldsItsBlanks) {
    EXPECT_EQ(only<WaitText>("wait text \"\"")->text.pattern, "");
    EXPECT_EQ(only<WaitText>("wait text \" a  b \"")->text.pattern, " a  b ");
    EXPECT_EQ(only<WaitText>("wait text a\\\"b")->text.pattern, "a\\\"b"); // not a quotation
    EXPECT_EQ(errorOf("wait text \"open\\\""),
              "s.txt:1: a quotation mark is not closed; end the text with \"");
}

TEST(Script, HelpHasAnEntryForEachCommandWithItsTextInAColumn) {
    const QStringList lines = help().split('\n');
    EXPECT_TRUE(lines.contains(QStringLiteral("  wait frames N") + QString(25, ' ') +
                               QStringLiteral("until N more frames have been scanned")));
    // What an entry's second line says stands below what its first one says.
    EXPECT_TRUE(lines.contains(QString(40, ' ') + QStringLiteral("shows what the last run left")));
    EXPECT_TRUE(help().contains(QStringLiteral("  FAULT is one of")));
}

TEST(Script, BreaksAndMends) {
    EXPECT_EQ(only<FaultOn>("fault bus-slow 7ms")->order.time.count(), 7);
    EXPECT_EQ(only<FaultOn>("fault server-late 70ms for DATA? after 2s")->order.rule.command,
              "DATA?");
    EXPECT_EQ(only<FaultOff>("fault off")->name, "");
    EXPECT_EQ(only<FaultOff>("fault off bus-slow")->name, "bus-slow");
    EXPECT_EQ(only<WaitFault>("wait fault bus-slow within 1s")->name, "bus-slow");
    EXPECT_EQ(only<ServerFault>("server fault late 70ms for DATA?")->rule.delay.count(), 70);
    EXPECT_THAT(errorOf("fault off slow"), StartsWith("s.txt:1: there is no fault \"slow\""));
    EXPECT_THAT(errorOf("wait fault slow"), StartsWith("s.txt:1: there is no fault \"slow\""));
    EXPECT_THAT(errorOf("fault bus-slow 7"), StartsWith("s.txt:1: it is written \"bus-slow"));
}

TEST(Script, HelpNamesEveryFault) {
    for (const QString& name : faultNames()) {
        EXPECT_TRUE(help().contains(name)) << name.toStdString();
    }
}

} // namespace
} // namespace panel::script
