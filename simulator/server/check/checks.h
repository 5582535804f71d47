#pragma once

#include "probe.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace servercheck {

// Where the server is, and how long the panel waits for a reply.
struct Target {
    QString host = QStringLiteral("127.0.0.1");
    quint16 port = 9800;
    milliseconds patience{50};
};

// One thing that docs/protocol.md asks of a server.
struct Check {
    const char* name;
    const char* asked; // what the protocol asks for
    const char* panel; // what the panel does where that is not so
    bool advice;       // the panel gets along without it
    // What is wrong; empty if nothing is. Throws Gone.
    QString (*run)(const Target& target);
};

// All of them, in a good order. They start and stop runs, and put time constant and levels back.
const std::vector<Check>& allChecks();

} // namespace servercheck
