#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace server {

// How a server may misbehave. The name in a script or on a command line stands beside each. A
// command is carried out all the same; only its reply suffers, and a command without a reply has
// nothing to suffer, except from CloseConnection.
enum class Fault {
    None,            // "none"
    Silent,          // "silent": never replies
    Late,            // "late": replies after 100 ms, when the panel waits no longer
    Cut,             // "cut": only the first half of the reply
    NotJson,         // "not-json": text that is not JSON
    NotObject,       // "not-object": JSON, but an array
    MissingMembers,  // "missing-members": without "TimeConst", "Channel3" and "Ref3"
    NulByte,         // "nul-byte": a NUL byte in the middle of the reply
    Huge,            // "huge": 1 MB (1 048 576 bytes) of good JSON
    CloseConnection, // "close-connection": hangs up instead of replying
};

// The fault of that name; nothing if there is none.
std::optional<Fault> faultFromName(const QString& name);

// All names, in the order of the enumeration.
QStringList faultNames();

// What becomes of the bytes of a reply under `fault`. Silent, Late and CloseConnection change when
// a reply is sent, not what it says.
QByteArray spoiled(const QByteArray& reply, Fault fault);

} // namespace server
