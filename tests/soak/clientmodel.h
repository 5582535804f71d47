#pragma once

#include <array>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace soak {

using Milliseconds = double; // since any fixed moment
using FourValues = std::array<double, 4>;

// What the client makes of a reply.
struct Reply {
    bool ok = false; // it came and holds "Ok"
    struct Object {
        double timeConst = 0;
        FourValues levels{};
        FourValues channels{};
    };
    std::optional<Object> object; // it is a JSON object
};

// A request that should not have been, or that should have been and was not.
struct Violation {
    std::string text;       // in words
    std::string missing{};  // the request that did not come; may be empty
    std::string unwanted{}; // the request that came; may be empty
};
using Verdict = std::optional<Violation>; // nothing: all is well

// What the panel asks of the measurement server, as the user's actions and the server's replies
// have it.
//
// While client and server are in step every reply is read by the request it belongs to, and each
// request is predicted to the letter. A reply that comes too late, or a lost connection, puts them
// out of step: requests must then only be such as can be, and what the client knows is unknown here
// until it is said again.
//
// A run that is started while the timer of an earlier one is still armed makes a second chain of
// polls beside the first; the model keeps at least as many chains as there are.
class ClientModel {
public:
    // The operations. Those that ask the server expect their requests from now on.
    void readParams();
    void start();
    void stop();
    void setTimeConst(double seconds);
    void setTriggerLevel(int channel, double volts);

    // A request has arrived, and the server replies so.
    Verdict request(const std::string& line, const Reply& reply, Milliseconds now);
    // The application does something else: what it was to ask must have been asked.
    Verdict wentOn();

    bool inStep() const { return m_inStep; }
    void fallOutOfStep();
    // A new connection to a server in good order.
    void fallInStep(Milliseconds now);

    bool isBusy() const { return !m_expected.empty() && !m_expected.front().open; }
    std::optional<bool> stopped() const { return m_stopped; }
    std::optional<double> timeConst() const { return m_timeConst; }
    const std::optional<FourValues>& levels() const { return m_levels; }
    std::size_t chains() const { return m_chains.size(); }

    // In step: replies so far that the client must have reported as no JSON.
    int uselessReplies() const { return m_uselessReplies; }
    // START requests that were repeated although the first was answered with "Ok": late replies.
    int repeatedStarts() const { return m_repeatedStarts; }
    // Whether a poll is overdue: a run is active and none has come though it had long to.
    bool isPollOverdue(Milliseconds now) const;

private:
    enum class Kind { Params, Start, Line };
    struct Expected {
        Kind kind = Kind::Line;
        std::string line{}; // of Line
        int attempt = 1;    // of Start
        bool open = false;  // may come or not: it is not known whether a run is active
    };
    struct Chain {
        Milliseconds due = 0;    // the earliest time of the next poll
        Milliseconds latest = 0; // unless the application is busy
    };

    void settleOpen(bool came);
    Verdict poll(const Reply& reply, Milliseconds now);
    Verdict matched(const std::string& line, const Reply& reply, Milliseconds now);
    Verdict outOfStep(const std::string& line, const Reply& reply, Milliseconds now);
    void takeParams(const Reply& reply);
    void started(Milliseconds now);
    void arm(Milliseconds now);
    void dropDeadChains(Milliseconds now);
    std::string text(const Expected& expected) const;

    bool m_inStep = true;
    std::deque<Expected> m_expected;
    std::optional<bool> m_stopped = true;
    std::optional<double> m_timeConst = 0.0;
    std::optional<FourValues> m_levels = FourValues{};
    std::vector<Chain> m_chains;
    std::string m_lastStart; // the START that was answered with "Ok", until something else comes
    int m_uselessReplies = 0;
    int m_repeatedStarts = 0;
};

// A number with that many significant digits at most, as the panel's toolkit writes it.
std::string inDigits(double value, int digits);
// As it stands in requests and on the options screen.
std::string inSixDigits(double value);

} // namespace soak
