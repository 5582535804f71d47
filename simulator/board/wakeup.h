#pragma once

#include "board.h"

#include <cerrno>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace board {

// Wakes a thread that polls.
class WakeUp {
public:
    WakeUp() : m_event(eventfd(0, EFD_CLOEXEC)) {
        if (m_event < 0) {
            throw BoardError("cannot make an eventfd: " + std::generic_category().message(errno));
        }
    }
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;
    ~WakeUp() { close(m_event); }

    int fileDescriptor() const { return m_event; }
    void wake() const { eventfd_write(m_event, 1); }

private:
    int m_event;
};

} // namespace board
