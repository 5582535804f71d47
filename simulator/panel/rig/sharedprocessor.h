#pragma once

#include <sched.h>

namespace panel {

// One of this machine's processors, for threads that are to run, and stand still, together.
class SharedProcessor {
public:
    SharedProcessor() = default; // none: threads run where there is room

    // That on which the calling thread is just now.
    static SharedProcessor ofThisThread() {
        SharedProcessor processor;
        processor.m_number = sched_getcpu();
        return processor;
    }

    // From now on the calling thread, and what it starts, runs nowhere else; where that cannot be,
    // it goes on as it did. May be called between fork and exec.
    void take() const {
        if (m_number >= 0) {
            cpu_set_t set;
            CPU_ZERO(&set);
            CPU_SET(static_cast<unsigned>(m_number), &set);
            sched_setaffinity(0, sizeof set, &set);
        }
    }

private:
    int m_number = -1;
};

} // namespace panel
