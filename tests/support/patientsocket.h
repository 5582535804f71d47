#pragma once

#include <vector>

// In a program that links `scripted_server`, each QTcpSocket that the code under test creates keeps
// a record of how long it is told to wait, and does not depend on the machine's speed: it waits for
// a reply that a ScriptedServer gives however long that takes, and does not wait for one that it
// does not give.
struct SocketWaits {
    // The limits asked for, in milliseconds, in order.
    std::vector<int> forConnections;
    std::vector<int> forReplies;
};

// Since the last ScriptedServer was made, or since the program's start.
extern SocketWaits socketWaits;
