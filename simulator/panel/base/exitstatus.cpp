#include "exitstatus.h"

#include <array>

namespace panel {

namespace {

struct StatusText {
    ExitStatus status;
    const char* text;
};

constexpr std::array<StatusText, 15> statusTexts{{
    {ExitStatus::Success, "the session was played to its end, or the user quit"},
    {ExitStatus::Usage, "the command line was wrong"},
    {ExitStatus::ScriptError, "the script could not be read or holds a mistake"},
    {ExitStatus::TimeLimit, "the session took longer than its time limit"},
    {ExitStatus::NotMet, "what the script waits for or expects did not come true"},
    {ExitStatus::ApplicationExited, "the application ended unexpectedly"},
    {ExitStatus::PictureDiffers, "a screenshot differs from its stored picture, or there is none"},
    {ExitStatus::FileNotWritten, "a picture, the trace or a recording could not be written"},
    {ExitStatus::PortTaken, "the measurement server's port is in use"},
    {ExitStatus::Complaint, "the controller was sent something it does not accept"},
    {ExitStatus::BoardFailed, "the virtual board could not be set up"},
    {ExitStatus::ApplicationNotStarted, "the application could not be started"},
    {ExitStatus::Interrupted, "a session was stopped by the user or a signal"},
    {ExitStatus::NotShared, "the panel could not be shared: --remote and what belongs to it"},
    {ExitStatus::NoDisplay, "the display for the window could not be opened"},
}};

} // namespace

QString exitStatusHelp() {
    QString help;
    for (const StatusText& entry : statusTexts) {
        help += QStringLiteral("  %1  %2\n").arg(static_cast<int>(entry.status), 2).arg(entry.text);
    }
    return help;
}

} // namespace panel
