#pragma once

#include "fault.h"
#include "registers.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

// A session as text: what each line of a script asks for. scriptHelp() tells how it is written.
namespace panel::script {

using Milliseconds = std::chrono::milliseconds;

// How long one wait may take unless the line says otherwise ("within TIME").
constexpr Milliseconds defaultWaitLimit{30000};

// --- What looks at frames. Lines of this kind that follow each other look at one frame after the
// --- other, each from the frame on at which the line before was content, so none is missed.

struct WaitFrames { // until so many more frames have been scanned
    std::uint32_t count = 0;
};
struct WaitSwaps { // until so many more display lists have been shown
    std::uint32_t count = 0;
};
struct WaitReads { // until the application has read the touch tag so many more times
    std::uint32_t count = 0;
};
struct WaitText { // until a frame shows (or does not show) a text; a pattern
    QString pattern;
    bool present = true;
};
struct WaitQuiet {}; // until the coprocessor is idle and no swap is pending
struct ExpectText {  // the frame at hand shows (or does not show) a text
    QString pattern;
    bool present = true;
};
struct Screenshot {
    QString name;     // of the file, without ".png"
    bool now = false; // of the frame at hand, otherwise of the first quiet one
};
using FrameStep =
    std::variant<WaitFrames, WaitSwaps, WaitReads, WaitText, WaitQuiet, ExpectText, Screenshot>;

// --- Everything else.

struct WaitTime {
    Milliseconds duration{};
};
struct WaitRequest { // until the server has got a request since the last wait or mark; a pattern
    QString pattern;
};
struct WaitLog { // until the application has written a line since the last wait or mark; a pattern
    QString pattern;
};
struct WaitConnection { // until the server has (or has no) client
    bool connected = true;
};
struct WaitExit { // until the application ends; without status or signal any end will do
    std::optional<int> status;
    std::optional<int> signal;
};
struct Finger {
    enum class Action : std::uint8_t { Press, Move, Release, Tap };
    Action action = Action::Tap;
    int x = 0; // panel pixels; none for Release
    int y = 0;
    bool now = false; // do not wait until the application has noticed
};
struct ServerSwitch {
    bool on = true;
};
struct ServerValues { // what DATA? gives; none: random again
    std::optional<std::array<double, 4>> values;
};
struct ServerFault {
    server::Fault fault = server::Fault::None;
};
struct ServerReply { // what a command, by its first word, is answered with
    QByteArray command;
    std::optional<QByteArray> reply; // none: as usual again
};
struct ServerParams { // time constant, seconds, and four trigger levels, volts
    double timeConstant = 0;
    std::array<double, 4> levels{};
};
struct ApplicationSwitch {
    bool on = true;
};
struct BoardTransfers { // whether SPI messages get through
    bool working = true;
};
struct ControllerIdentity {
    std::uint32_t word = 0;
};
struct ControllerAnswering {
    bool answering = true;
};
struct CoprocessorStalled {
    bool stalled = false;
};
struct AllowComplaint { // a pattern
    QString pattern;
};
struct Mark {};
struct ExpectRequests { // exactly these since the mark; patterns
    QStringList patterns;
    bool withData = false; // count DATA? too
};
struct ExpectNoRequest { // none like this since the mark; a pattern
    QString pattern;
};
struct ExpectLog { // the application has written exactly these lines since the mark; patterns
    QStringList patterns;
};
struct ExpectRegister { // of the controller, taken as a signed number
    controller::Register id{};
    std::int32_t value = 0;
};
struct ExpectMemoryGrowth { // of the application since the mark
    int atMostKilobytes = 0;
};
struct Report {};
struct End {};

using Action =
    std::variant<FrameStep, WaitTime, WaitRequest, WaitLog, WaitConnection, WaitExit, Finger,
                 ServerSwitch, ServerValues, ServerFault, ServerReply, ServerParams,
                 ApplicationSwitch, BoardTransfers, ControllerIdentity, ControllerAnswering,
                 CoprocessorStalled, AllowComplaint, Mark, ExpectRequests, ExpectNoRequest,
                 ExpectLog, ExpectRegister, ExpectMemoryGrowth, Report, End>;

struct Statement {
    int line = 0; // in the script, from 1
    QString text; // as written, for messages
    Action action;
    Milliseconds limit = defaultWaitLimit; // how long it may take
};

struct Script {
    std::vector<Statement> statements;
    QString error; // empty, or "NAME:LINE: what is wrong; how to mend it"
};

// `name` is what error messages call the script.
Script parse(const QString& text, const QString& name);

// What a script may hold, one line for each command, for `--help`.
QString help();

} // namespace panel::script
