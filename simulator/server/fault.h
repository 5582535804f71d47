#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <cstdint>
#include <optional>
#include <random>
#include <vector>

namespace server {

// How a server may misbehave; faultTable() says what each does. A command is carried out all the
// same; only its reply suffers, and a command without a reply has nothing to suffer, except from
// CloseConnection, Hang and Garbage.
enum class Fault {
    None,
    Silent,
    Late,
    Cut,
    NotJson,
    NotObject,
    MissingMembers,
    NulByte,
    Huge,
    CloseConnection,
    Pieces,
    Hang,
    Garbage,
};

struct FaultEntry {
    Fault fault;
    const char* name;      // in a script or on a command line
    const char* arguments; // that may follow, for help texts
    const char* help;
};

// Every fault, in the order of the enumeration.
const std::vector<FaultEntry>& faultTable();

// A fault with what is to be known of it. The defaults are those of the table.
struct FaultRule {
    Fault fault = Fault::None;
    std::chrono::milliseconds delay{0}; // of Late, and between the Pieces
    unsigned number = 0;                // CloseConnection: at this request only; 0: at each
    std::uint32_t seed = 1;             // of Garbage
    QByteArray command;                 // requests with this first word only; empty: all
};

// The rule of that fault without arguments.
FaultRule faultRule(Fault fault);

// Reads "NAME [ARGUMENT] [for COMMAND]"; nothing if that is no fault, and `error` says why.
std::optional<FaultRule> parseFault(QStringList words, QString* error);

// All names, in the order of the enumeration.
QStringList faultNames();
QString faultName(Fault fault);
// One line for each but "none", for help texts.
QString faultHelp();
// The fault of that name; nothing if there is none.
std::optional<Fault> faultFromName(const QString& name);

// What becomes of the bytes of a reply under `fault`, Garbage apart, which is no function of them.
// Silent, Late, CloseConnection, Pieces and Hang change when a reply is sent, not what it says.
QByteArray spoiled(const QByteArray& reply, Fault fault);

// A fault in force: which requests it strikes, and how.
class ActiveFault {
public:
    explicit ActiveFault(const FaultRule& rule) : m_rule(rule), m_random(rule.seed) {}

    const FaultRule& rule() const { return m_rule; }
    // Whether it strikes a request that begins with `command`; to be asked once for each request.
    bool strikes(const QByteArray& command);
    // Whether it is about requests that begin with `command`.
    bool isAbout(const QByteArray& command) const;
    // What becomes of the bytes of a reply.
    QByteArray spoil(const QByteArray& reply);

private:
    const FaultRule m_rule;
    std::mt19937 m_random;
    unsigned m_requests = 0;
};

} // namespace server
