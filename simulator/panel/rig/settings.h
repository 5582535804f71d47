#pragma once

#include "faultorder.h"
#include "generation.h"
#include "serverthread.h"
#include "virtualboard.h"

#include <QString>

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace panel {

// What the user wants of the virtual instrument.
struct Settings {
    controller::Generation generation = controller::Generation::E3;
    board::Options board;
    QString boardDevice; // of the kernel's board; empty: umockdev shows one
    QString application; // path of the program
    bool startApplication = true;
    bool quietApplication = false; // what it writes is not passed on, nor how to start it by hand
    bool startServer = true;
    ServerPlace realServer; // in place of ours
    bool serverAnswersEverything = false;
    std::uint32_t seed = 1; // of the server's pulses
    bool headless = false;
    int zoom = 2;         // window pixels per panel pixel
    QString script;       // empty: none
    QString record;       // file for what the user does; empty: none
    bool verbose = false; // says each line of the script as it is played
    std::chrono::milliseconds timeLimit{300000};
    QString screenshots = QStringLiteral("screenshots"); // directory
    QString stored; // directory of stored pictures; empty: none
    bool renew = false;
    QString trace;           // file; empty: none
    bool traceIsVcd = false; // otherwise text
    bool statistics = false;
    bool inspect = false;           // answer what is asked on standard input
    double speed = 1;               // of the panel's time beside the clock's
    std::vector<FaultOrder> faults; // that are on from the start

    std::optional<quint16> remotePort; // where VNC viewers find the panel; none: nowhere; 0: any
    QString remoteAddress;             // an IP address of this machine
    QString remotePassword;            // file; empty: viewers need no password
};

} // namespace panel
