#pragma once

#include "clientmodel.h"
#include "displaymodule.h"

#include <chrono>
#include <mutex>
#include <string>
#include <vector>

namespace soak {

// What the application did that the model has to be told.
struct Event {
    enum class Kind { TagRead, Request, OutOfStep, InStep };
    Kind kind = Kind::TagRead;
    int tag = 0;
    std::string request;
    Reply reply;
    Milliseconds time = 0;
};

inline Milliseconds now() {
    using namespace std::chrono;
    return duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

// Collects events from the board's and the server's threads. Both add theirs before the application
// gets its answer, so they stand in the order in which the application did what they tell; but a
// request that it does not wait for, or no longer, may come behind what it did next.
class EventQueue {
public:
    void add(Event event) {
        event.time = now();
        const std::lock_guard lock(m_mutex);
        m_events.push_back(std::move(event));
    }
    std::vector<Event> take() {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_events, {});
    }

private:
    std::mutex m_mutex;
    std::vector<Event> m_events;
};

// Sees each read of the touched tag on the bus.
class TagWatcher : public panel::Watcher {
public:
    explicit TagWatcher(EventQueue& events) : m_events(events) {}
    void touchTagRead(int tag) override;

private:
    EventQueue& m_events;
};

} // namespace soak
