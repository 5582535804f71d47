#pragma once

#include "fault.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

// What can be broken: one table for scripts, the command line, the window's menu and the docs.
namespace panel {

enum class Breaks : std::uint8_t {
    BusDead,
    BusFailsAt,
    BusFailsRandomly,
    BusCorrupts,
    BusSlow,
    PinsForbidden,
    PinsFail,
    CoprocessorFault,
    CoprocessorStalled,
    ControllerSlowBoot,
    ControllerBrownOut,
    ControllerWrongId,
    ControllerSilent,
    ServerOff,
    Server, // one of the server's own
};

constexpr unsigned everythingPercent = 100;

// A fault as somebody has ordered it, and what is to be known of it. What does not concern it is
// not looked at.
struct FaultOrder {
    Breaks breaks = Breaks::BusDead;
    QString name;                      // as in the table
    QString text;                      // as it was asked for
    unsigned number = 1;               // of a message, from 1; or percent
    bool bursts = false;               // count only messages of more than four bytes
    std::uint32_t seed = 1;            // of what is random
    std::uint32_t word = 0;            // a chip id
    std::chrono::milliseconds time{0}; // how long
    server::FaultRule rule;            // of the server's own
    std::chrono::milliseconds after{0};

    bool endsByItself() const {
        return endsAtOnce() || breaks == Breaks::BusFailsAt || breaks == Breaks::BusCorrupts;
    }
    // Strikes when it begins, and is over.
    bool endsAtOnce() const {
        return breaks == Breaks::CoprocessorFault || breaks == Breaks::ControllerBrownOut;
    }
};

struct FaultEntry {
    Breaks breaks;
    QString name;
    QString arguments; // that may follow; all can be left out
    QString help;
};

// Every fault; those of the server are called "server-" and their own name.
const std::vector<FaultEntry>& faultTable();

// Reads "NAME [ARGUMENT]... [after TIME]"; nothing if that is no fault, and `error` says why.
std::optional<FaultOrder> parseFaultOrder(const QStringList& words, QString* error);

QStringList faultNames();
// One line for each, for help texts.
QString faultHelp();

} // namespace panel
