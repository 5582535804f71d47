#include "clientmodel.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <regex>

namespace soak {

namespace {

constexpr double shortestTimeConst = 0.01; // seconds
constexpr double longestTimeConst = 10.0;  // seconds
constexpr Milliseconds longestInterval = 2e9;
constexpr Milliseconds coarseFrom = 2000;    // from here on a timer may be 5 % early or late
constexpr Milliseconds tolerance = 3;        // of clocks and timers
constexpr Milliseconds lateness = 1000;      // of a timer on a busy machine
constexpr Milliseconds patience = 5000;      // of whoever waits for a poll there
constexpr Milliseconds longestUsual = 12000; // interval, when the time constant is not known
constexpr int startAttempts = 2;

Milliseconds intervalOf(const std::optional<double>& timeConst) {
    const double interval = timeConst.value_or(0.0) * 1000.0;
    return interval > 0 ? std::floor(std::min(interval, longestInterval)) : 0;
}

Milliseconds earliest(Milliseconds interval) {
    return interval >= coarseFrom ? interval * 0.94 : interval;
}

bool isLegal(const std::string& line) {
    static const std::regex legal(R"(DATA\?|PARAMS\?|STOP|START [-+.0-9e]+|DAC [0-3],[-+.0-9e]+)");
    return std::regex_match(line, legal);
}

} // namespace

// The C library rounds what lies exactly in the middle to the even digit, the panel's toolkit away
// from zero.
std::string inDigits(double value, int digits) {
    char exact[64];
    std::snprintf(exact, sizeof exact, "%.40e", std::fabs(value));
    std::string mantissa = std::string(1, exact[0]) + (exact + 2);
    const std::string exponent = mantissa.substr(mantissa.find('e'));
    const auto count = static_cast<std::size_t>(digits);
    const bool up = mantissa[count] >= '5';
    long rounded = std::strtol(mantissa.substr(0, count).c_str(), nullptr, 10) + (up ? 1 : 0);
    rounded = std::signbit(value) ? -rounded : rounded;
    const std::string text = std::to_string(rounded) + "e" +
                             std::to_string(std::atoi(exponent.c_str() + 1) - (digits - 1));
    char shown[32];
    std::snprintf(shown, sizeof shown, "%.*g", digits, std::strtod(text.c_str(), nullptr));
    return shown;
}

std::string inSixDigits(double value) {
    return inDigits(value, 6);
}

void ClientModel::readParams() {
    m_expected.push_back({Kind::Params, {}});
}

void ClientModel::start() {
    readParams();
    m_expected.push_back({Kind::Start, {}});
}

void ClientModel::stop() {
    m_stopped = true;
    m_expected.push_back({Kind::Line, "STOP"});
}

void ClientModel::setTimeConst(double seconds) {
    const double clamped = std::clamp(seconds, shortestTimeConst, longestTimeConst);
    m_expected.push_back({Kind::Line, "START " + inSixDigits(clamped)});
    if (m_stopped.value_or(true)) {
        m_expected.push_back({Kind::Line, "STOP", 1, !m_stopped});
    }
    m_timeConst = clamped;
}

void ClientModel::setTriggerLevel(int channel, double volts) {
    m_expected.push_back({Kind::Line, "DAC " + std::to_string(channel) + ',' + inSixDigits(volts)});
    readParams();
}

void ClientModel::fallOutOfStep() {
    m_inStep = false;
    m_timeConst.reset();
    m_levels.reset();
    if (m_stopped && !*m_stopped) {
        m_stopped.reset();
    }
}

// Out of step, polls may have come and gone unseen.
void ClientModel::fallInStep(Milliseconds now) {
    m_inStep = true;
    m_expected.clear();
    for (Chain& chain : m_chains) {
        chain.latest = std::max(chain.latest, now + longestUsual);
    }
}

// Whether the STOP that ends the setting of a time constant while no run is active came.
void ClientModel::settleOpen(bool came) {
    if (!m_expected.empty() && m_expected.front().open) {
        m_expected.pop_front();
        if (m_inStep) {
            m_stopped = came;
        }
    }
}

Verdict ClientModel::wentOn() {
    m_lastStart.clear();
    settleOpen(false);
    if (m_expected.empty()) {
        return std::nullopt;
    }
    const std::string missing = text(m_expected.front());
    m_expected.clear();
    if (!m_inStep) {
        return std::nullopt; // the server may not have got it
    }
    return Violation{"the request \"" + missing + "\" did not come", missing, {}};
}

Verdict ClientModel::request(const std::string& line, const Reply& reply, Milliseconds now) {
    if (!isLegal(line)) {
        return Violation{'"' + line + "\" is no request", {}, line};
    }
    if (!m_inStep) {
        return outOfStep(line, reply, now);
    }
    if (line == m_lastStart) { // its "Ok" came too late
        ++m_repeatedStarts;
        fallOutOfStep();
        return outOfStep(line, reply, now);
    }
    if (line == "DATA?") {
        settleOpen(false);
    }
    if (line == "DATA?" && m_expected.empty()) {
        return poll(reply, now);
    }
    if (m_expected.empty()) {
        return Violation{'"' + line + "\" came unasked", {}, line};
    }
    if (m_expected.front().kind == Kind::Start && !m_timeConst && line.rfind("START ", 0) == 0) {
        m_timeConst = std::strtod(line.c_str() + 6, nullptr); // now it is known
    }
    const std::string awaited = text(m_expected.front());
    if (line != awaited) {
        return Violation{'"' + line + "\" came instead of \"" + awaited + '"', awaited, line};
    }
    return matched(line, reply, now);
}

Verdict ClientModel::matched(const std::string& line, const Reply& reply, Milliseconds now) {
    const Expected expected = m_expected.front();
    if (expected.open) {
        settleOpen(true);
        return std::nullopt;
    }
    m_expected.pop_front();
    if (expected.kind == Kind::Params) {
        takeParams(reply);
    } else if (expected.kind == Kind::Start && reply.ok) {
        m_lastStart = line;
        started(now);
    } else if (expected.kind == Kind::Start && expected.attempt < startAttempts) {
        m_expected.push_front({Kind::Start, {}, expected.attempt + 1});
    }
    return std::nullopt;
}

void ClientModel::takeParams(const Reply& reply) {
    if (reply.object) {
        m_timeConst = reply.object->timeConst;
        m_levels = reply.object->levels;
    } else {
        ++m_uselessReplies;
    }
}

Verdict ClientModel::poll(const Reply& reply, Milliseconds now) {
    m_lastStart.clear();
    if (m_stopped.value_or(false)) {
        return Violation{"\"DATA?\" came although no run is active", {}, "DATA?"};
    }
    const auto next =
        std::min_element(m_chains.begin(), m_chains.end(),
                         [](const Chain& a, const Chain& b) { return a.due < b.due; });
    if (next == m_chains.end()) {
        return Violation{"\"DATA?\" came although no poll is armed", {}, "DATA?"};
    }
    if (next->due > now + tolerance) {
        return Violation{"\"DATA?\" came " + inSixDigits(next->due - now) + " ms too early for " +
                             std::to_string(m_chains.size()) + " chain(s) of polls",
                         {},
                         {}};
    }
    m_chains.erase(next);
    m_stopped = false;
    if (reply.object) {
        m_timeConst = reply.object->timeConst;
    } else {
        ++m_uselessReplies;
    }
    arm(now);
    return std::nullopt;
}

// The request may have been sent long ago, and its reply may be read with another's.
Verdict ClientModel::outOfStep(const std::string& line, const Reply& reply, Milliseconds now) {
    if (line == "DATA?" || line == "PARAMS?") {
        m_timeConst.reset();
        if (line == "PARAMS?") {
            m_levels.reset();
        }
    } else if (line.rfind("START", 0) == 0 && reply.ok) {
        // Whether from the run button or not, whether the reply was seen or not.
        arm(now);
        if (m_stopped.value_or(false)) {
            m_stopped.reset();
        }
    }
    return std::nullopt;
}

void ClientModel::started(Milliseconds now) {
    dropDeadChains(now);
    m_stopped = false;
    arm(now);
}

void ClientModel::arm(Milliseconds now) {
    const Milliseconds interval = intervalOf(m_timeConst);
    const Milliseconds latest = m_timeConst ? interval * 1.12 : longestUsual;
    m_chains.push_back({now + earliest(interval), now + latest});
}

// A chain ends when its time comes while no run is active.
void ClientModel::dropDeadChains(Milliseconds now) {
    if (!m_inStep || !m_stopped.value_or(false)) {
        return;
    }
    const auto isDead = [now](const Chain& chain) { return chain.latest + lateness < now; };
    m_chains.erase(std::remove_if(m_chains.begin(), m_chains.end(), isDead), m_chains.end());
}

bool ClientModel::isPollOverdue(Milliseconds now) const {
    if (!m_inStep || m_stopped.value_or(true) || m_chains.empty()) {
        return false;
    }
    return std::all_of(m_chains.begin(), m_chains.end(),
                       [now](const Chain& chain) { return chain.latest + patience < now; });
}

std::string ClientModel::text(const Expected& expected) const {
    switch (expected.kind) {
    case Kind::Params:
        return "PARAMS?";
    case Kind::Start:
        return "START " + (m_timeConst ? inSixDigits(*m_timeConst) : std::string("?"));
    case Kind::Line:
        break;
    }
    return expected.line;
}

} // namespace soak
