// The whole of main(), in a process of its own for each test: what it logs and how it ends, with
// every sleep of the board printed in between instead of slept.

#include "commandlisting.h"
#include "recordingboard.h"
#include "scriptedserver.h"

#include <QCoreApplication>
#include <QTimer>

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>

int frontpanelMain(int argc, char* argv[]);

namespace {

using testing::AllOf;
using testing::ExitedWithCode;
using testing::HasSubstr;
using testing::Not;

constexpr std::uint32_t regId = 0x302000;
constexpr std::uint32_t regTouchTransformA = 0x302150;
constexpr std::uint32_t regTouchTransformF = 0x302164;

// The last thing that a process prints: the end of what it has drawn, and what the touch transform
// registers hold.
void printPicture() {
    const std::string all = listCommands(board.commandWords());
    std::fprintf(stderr, "picture: %s", all.substr(all.rfind("GRADIENT")).c_str());
    for (std::uint32_t reg = regTouchTransformA; reg <= regTouchTransformF; reg += 4) {
        std::fprintf(stderr, "touch %d\n", static_cast<std::int32_t>(board.peek(reg)));
    }
}

// Runs main() before an EVE_3 controller and ends the process with its result. `onSleep` is called
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
    std::atexit(printPicture);

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

// The part of a run with a server that tests look at: it ends with status 42 once the event loop
// runs and the first request has arrived.
[[noreturn]] void runWithServer(int secondsUntilServer) {
    std::unique_ptr<ScriptedServer> server;
    runProgram([&](int second) {
        if (second == secondsUntilServer) {
            server = std::make_unique<ScriptedServer>();
            QTimer::singleShot(0, qApp, [&] {
                for (const QByteArray& request : server->waitForRequests(1)) {
                    std::fprintf(stderr, "request: %s", request.constData());
                }
                server.reset();
                QCoreApplication::exit(42);
            });
        }
    });
}

TEST_F(MainTest, WithAServerReadsTheParametersAndShowsTheCounterScreen) {
    EXPECT_EXIT(runWithServer(1), ExitedWithCode(42),
                AllOf(HasSubstr("Start client application\n"
                                "Display Settings done!!! 2\n"
                                "sleep 1000\n"
                                "Invalid JSON.. \"\"\n" // the scripted server does not answer
                                "request: PARAMS?\n"
                                "picture: GRADIENT"),
                      HasSubstr("\"COUNTER MODE\""), Not(HasSubstr("Can't connect"))));
}

TEST_F(MainTest, AServerThatAcceptsOnTheThirdAttemptIsUsedAndTheErrorScreenNeverBuilt) {
    EXPECT_EXIT(runWithServer(3), ExitedWithCode(42),
                AllOf(HasSubstr("Display Settings done!!! 2\n"
                                "sleep 1000\n" // the wait screen
                                "sleep 1000\nsleep 1000\n"
                                "Invalid JSON.. \"\"\n"
                                "request: PARAMS?\n"),
                      HasSubstr("\"COUNTER MODE\""), Not(HasSubstr("Can't connect"))));
}

} // namespace
