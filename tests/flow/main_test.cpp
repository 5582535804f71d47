// The whole of main(), in a process of its own for each test: what it logs and how it ends, with
// every sleep of the board printed in between instead of slept.

#include "commandlisting.h"
#include "recordingboard.h"
#include "scriptedserver.h"

#include <QCoreApplication>
#include <QMetaType>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

int frontpanelMain(int argc, char* argv[]);

namespace {

using testing::AllOf;
using testing::ExitedWithCode;
using testing::HasSubstr;
using testing::Not;

constexpr std::uint32_t regId = 0x302000;
constexpr std::uint32_t regTouchTag = 0x30212C;
constexpr std::uint32_t regTouchTransformA = 0x302150;
constexpr std::uint32_t regTouchTransformF = 0x302164;

// The last things that a process prints: the end of what it has drawn, what the touch transform
// registers hold, and how it has used the board.
void printOutcome() {
    const std::string all = listCommands(board.commandWords());
    std::fprintf(stderr, "picture: %s", all.substr(all.rfind("GRADIENT")).c_str());
    for (std::uint32_t reg = regTouchTransformA; reg <= regTouchTransformF; reg += 4) {
        std::fprintf(stderr, "touch %d\n", static_cast<std::int32_t>(board.peek(reg)));
    }
    std::fprintf(stderr, "board:");
    for (const std::string& event : board.events()) {
        if (event == "init" || event == "open" || event == "close") {
            std::fprintf(stderr, " %s", event.c_str());
        }
    }
    std::fprintf(stderr, "\n");
}

// Runs main() before an EVE_3 controller and ends the process with its result. `onSecond` is called
// at each sleep of at least a second with the number of it, from 1.
[[noreturn]] void runProgram(const std::function<void(int)>& onSecond = [](int) {}) {
    board.reset();
    board.poke(0xC0000, 0x00011508);
    board.poke(regId, 0x7C);
    int seconds = 0;
    board.onSleep([&](unsigned ms) {
        if (ms >= 1000) {
            std::fprintf(stderr, "sleep %u\n", ms);
            onSecond(++seconds);
        }
    });
    listCommands({0x1F000001, 0}); // builds all its tables: later ones would be gone at the exit
    std::atexit(printOutcome);

    std::string name = "frontpanel";
    std::array<char*, 2> arguments{name.data(), nullptr};
    std::exit(frontpanelMain(1, arguments.data()));
}

class MainTest : public testing::Test {
protected:
    MainTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_F(MainTest, WithoutAServerLogsOnceAfterTheTenthSleepAndEndsWithStatus1OnTheErrorPicture) {
    EXPECT_EXIT(runProgram(), ExitedWithCode(1),
                AllOf(HasSubstr("Start client application\n"
                                "Display Settings done!!! 2\n"
                                "sleep 1000\n" // the wait screen
                                "sleep 1000\nsleep 1000\nsleep 1000\nsleep 1000\nsleep 1000\n"
                                "sleep 1000\nsleep 1000\nsleep 1000\nsleep 1000\nsleep 1000\n"
                                "Can't connect to server\n"
                                "picture: GRADIENT 21 13 CACACA 455 268 F3F3F3\n"
                                "COLOR_RGB DADADA\n"),
                      HasSubstr("\"Error: Can't connect to server!\"\n"
                                "MEMCPY 100000 3145728 0\n"
                                "DISPLAY\n"
                                "SWAP\n"
                                "touch 24916\ntouch 0\ntouch -591770\n"
                                "touch 372\ntouch 22707\ntouch 10494\n")));
}

TEST_F(MainTest, PlaysTheLogoAndThenShowsTheWaitScreen) {
    const auto printStart = [](int second) {
        if (second > 1) {
            return;
        }
        const std::string all = listCommands(board.commandWords());
        int frames = 0;
        const std::string logo = "SETBITMAP 0 6 470 85\n";
        for (auto at = all.find(logo); at != std::string::npos; at = all.find(logo, at + 1)) {
            ++frames;
        }
        std::fprintf(stderr, "%d frames of the logo, then %s", frames,
                     all.substr(all.rfind("GRADIENT")).c_str());
    };
    EXPECT_EXIT(runProgram(printStart), ExitedWithCode(1),
                AllOf(HasSubstr("sleep 1000\n24 frames of the logo, then GRADIENT"),
                      HasSubstr("\"Please wait\""), HasSubstr("SPINNER 236 196 3 1\n")));
}

TEST_F(MainTest, ClosesTheBoardThatTheDetectionHasOpenedBeforeTheBringUpOpensIt) {
    EXPECT_EXIT(runProgram(), ExitedWithCode(1), HasSubstr("\nboard: init open close init open\n"));
}

TEST_F(MainTest, MakesTheClientsRecordsKnownByName) {
    const auto printRecords = [](int second) {
        for (const char* name : {"DataReaderData", "DataReaderParams"}) {
            const bool known = QMetaType::type(name) != QMetaType::UnknownType;
            std::fprintf(stderr, "%d: %s is %s\n", second, name, known ? "known" : "unknown");
        }
    };
    EXPECT_EXIT(runProgram(printRecords), ExitedWithCode(1),
                HasSubstr("1: DataReaderData is known\n1: DataReaderParams is known\n"));
}

// Runs main() with a server that is there from the given second on, and ends it with status 42 when
// `script`, which begins once the event loop runs, is done.
[[noreturn]] void runWithServer(int secondsUntilServer,
                                const std::function<void(ScriptedServer&)>& script) {
    std::unique_ptr<ScriptedServer> server;
    runProgram([&](int second) {
        if (second == secondsUntilServer) {
            server = std::make_unique<ScriptedServer>();
            QTimer::singleShot(0, qApp, [&] {
                script(*server);
                server.reset();
                QCoreApplication::exit(42);
            });
        }
    });
}

void printFirstRequest(ScriptedServer& server) {
    for (const QByteArray& request : server.waitForRequests(1)) {
        std::fprintf(stderr, "request: %s", request.constData());
    }
}

TEST_F(MainTest, WithAServerReadsTheParametersAndShowsTheCounterScreen) {
    EXPECT_EXIT(runWithServer(1, printFirstRequest), ExitedWithCode(42),
                AllOf(HasSubstr("Start client application\n"
                                "Display Settings done!!! 2\n"
                                "sleep 1000\n"
                                "Invalid JSON.. \"\"\n" // the scripted server does not answer
                                "request: PARAMS?\n"
                                "picture: GRADIENT"),
                      HasSubstr("\"COUNTER MODE\""), Not(HasSubstr("Can't connect"))));
}

TEST_F(MainTest, AServerThatAcceptsOnTheThirdAttemptIsUsedAndTheErrorScreenNeverBuilt) {
    EXPECT_EXIT(runWithServer(3, printFirstRequest), ExitedWithCode(42),
                AllOf(HasSubstr("Display Settings done!!! 2\n"
                                "sleep 1000\n" // the wait screen
                                "sleep 1000\nsleep 1000\n"
                                "Invalid JSON.. \"\"\n"
                                "request: PARAMS?\n"),
                      HasSubstr("\"COUNTER MODE\""), Not(HasSubstr("Can't connect"))));
}

// Lets the event loop run until `condition` holds; a process that waits in vain ends.
template<class Condition>
void waitUntil(const char* what, Condition condition) {
    if (!QTest::qWaitFor(condition, 20000)) {
        std::fprintf(stderr, "waited in vain for: %s\n", what);
        std::_Exit(1);
    }
}

// Puts the finger on an item and waits until a pass of the screen has seen it there.
void touch(std::uint32_t tag) {
    const auto looks = [] { return board.transactions(Transaction::Read, regTouchTag).size(); };
    const std::size_t before = looks();
    board.poke(regTouchTag, tag);
    waitUntil("a look at the touch", [&] { return looks() >= before + 2; });
}

void tap(std::uint32_t tag) {
    touch(tag);
    touch(0);
}

// Waits until something has been drawn since the last call.
void waitUntilDrawn(const std::string& listed) {
    static std::size_t seen = 0;
    std::size_t at = std::string::npos;
    waitUntil(listed.c_str(), [&] {
        at = listCommands(board.commandWords()).find(listed, seen);
        return at != std::string::npos;
    });
    seen = at + 1;
}

// A run on either measurement screen, and the way between all screens.
void visitEverything(ScriptedServer& server) {
    constexpr std::uint32_t run = 2;
    constexpr std::uint32_t otherScreen = 3;
    constexpr std::uint32_t openOptions = 4;
    constexpr std::uint32_t back = 1;

    server.answer("PARAMS?", {R"({"TimeConst":0.05})"});
    server.answer("START", {"Ok"});
    server.answer("DATA?", {R"({"TimeConst":0.05,"Channel0":50})"});
    waitUntilDrawn("\"COUNTER MODE\"");
    tap(run);
    waitUntilDrawn("TEXT 219 112 font 31 CENTERY|RIGHTX \"    50\"");
    tap(run);
    tap(openOptions);
    waitUntilDrawn("\"Options\"");
    tap(back);
    waitUntilDrawn("\"COUNTER MODE\"");
    tap(otherScreen);
    waitUntilDrawn("\"PNR MODE\"");
    server.answer("DATA?", {R"({"TimeConst":0.05,"Channel3":7})", R"({"TimeConst":0.05})"});
    tap(run);
    waitUntilDrawn("TEXT 405 70 font 27 CENTER \"     7\"");
    tap(run);
    tap(openOptions);
    waitUntilDrawn("\"Options\"");
    tap(back);
    waitUntilDrawn("\"PNR MODE\"");
    tap(otherScreen);
    waitUntilDrawn("\"COUNTER MODE\"");

    waitUntil("the last STOP", [&] {
        const std::vector<QByteArray> requests = server.requests();
        return std::count(requests.begin(), requests.end(), "STOP\n") == 4;
    });
    for (const QByteArray& request : server.requests()) {
        if (request != "DATA?\n") {
            std::fprintf(stderr, "request: %s", request.constData());
        }
    }
}

TEST_F(MainTest, ConnectsEveryScreenToTheClientAndToTheOthers) {
    EXPECT_EXIT(runWithServer(1, visitEverything), ExitedWithCode(42),
                HasSubstr("request: PARAMS?\n"
                          "request: PARAMS?\nrequest: START 0.05\nrequest: STOP\n"
                          "request: STOP\n"
                          "request: PARAMS?\nrequest: START 0.05\nrequest: STOP\n"
                          "request: STOP\n"
                          "picture: GRADIENT"));
}

} // namespace
