#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace panel {

// A mutex that is granted in the order in which it was asked for, so that a thread that locks it
// again at once cannot keep the others out. For std::lock_guard.
class FairMutex {
public:
    void lock() {
        std::unique_lock guard(m_mutex);
        const std::uint64_t turn = m_asked++;
        m_nextTurn.wait(guard, [&] { return turn == m_granted; });
    }

    void unlock() {
        {
            const std::lock_guard guard(m_mutex);
            ++m_granted;
        }
        m_nextTurn.notify_all();
    }

    // How many threads hold it or wait for it.
    std::uint64_t claims() const {
        const std::lock_guard guard(m_mutex);
        return m_asked - m_granted;
    }

private:
    mutable std::mutex m_mutex; // guards the counts; never held for long
    std::condition_variable m_nextTurn;
    std::uint64_t m_asked = 0;
    std::uint64_t m_granted = 0;
};

} // namespace panel
