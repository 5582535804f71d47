#pragma once

#include <QString>

namespace panel {

// What panelsim's exit status says: one status for each kind of failure.
enum class ExitStatus : int {
    Success = 0,
    Usage = 2,
    ScriptError = 3,
    TimeLimit = 4,
    NotMet = 5,
    ApplicationExited = 6,
    PictureDiffers = 7,
    FileNotWritten = 8,
    PortTaken = 9,
    Complaint = 10,
    BoardFailed = 11,
    ApplicationNotStarted = 12,
    Interrupted = 13,
    NotShared = 14,
    NoDisplay = 15,
};

// One line for each status, for `--help`.
QString exitStatusHelp();

} // namespace panel
