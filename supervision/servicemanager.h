#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

// The service manager that may have started this program, and what it wants to hear: how far the
// start has come, and that the panel is alive. It is told by datagrams to the socket that the
// environment variable NOTIFY_SOCKET names. Without one, everything here does nothing.
//
// Nothing blocks and nothing fails: what the socket does not take is offered again with what
// follows. One thread only.
class ServiceManager {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    // Looks at the environment: NOTIFY_SOCKET, a path or, after '@', an abstract name; and
    // WATCHDOG_USEC, how many microseconds may pass between two signs of life, with WATCHDOG_PID,
    // the process that this is about.
    explicit ServiceManager(Clock now = std::chrono::steady_clock::now);
    ServiceManager(const ServiceManager&) = delete;
    ServiceManager& operator=(const ServiceManager&) = delete;
    ~ServiceManager();

    // The start goes on, and its next step is here within `patience`. `status` is one line for the
    // person who asks how the service is doing.
    void starting(const std::string& status, std::chrono::seconds patience);

    // The start is over and well.
    void ready(const std::string& status);

    // To be called at least every tenth of the time that WATCHDOG_USEC grants. A sign of life goes
    // out when half of that time is over; otherwise this costs a look at the clock.
    void alive();

private:
    void tell(const std::string& lines);
    bool send(const std::string& lines) const;

    std::string m_address; // as the socket takes it; empty: nobody wants to hear anything
    int m_socket = -1;
    std::string m_untold;
    Clock m_now;
    std::optional<std::chrono::microseconds> m_period; // of signs of life; none are wanted without
    std::optional<std::chrono::steady_clock::time_point> m_lastSign;
};
