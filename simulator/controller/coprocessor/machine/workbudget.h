#pragma once

#include "power.h"

#include <cstdint>

namespace controller {

// What the coprocessor may do in a slice of time, counted in what it costs and not timed, so that
// every machine does the same. One unit is about a nanosecond of a core of 2 GHz.
//
// What is left of a slice may be overdrawn by one step, which is small or has its own bound (a
// whole memory moved, a flash chip erased); the slices after it then pay for that first.
class WorkBudget {
public:
    static constexpr Nanoseconds slice = millisecond;
    static constexpr std::int64_t perSlice = 2'000'000;

    // Prices. Bytes that commands move count by themselves.
    static constexpr std::int64_t ringWord = 20;
    static constexpr std::int64_t command = 250;
    static constexpr std::int64_t listWord = 30;

    // It is `now`; what slices begun since the last call give is there to be spent.
    void refill(Nanoseconds now);
    void spend(std::int64_t work) {
        m_left -= work;
        m_spent += work;
    }
    bool isUsedUp() const { return m_left <= 0; }
    // When it is not any more.
    Nanoseconds refilledAt() const;
    // All that has been spent.
    std::int64_t spent() const { return m_spent; }

private:
    Nanoseconds m_slice = 0; // number of the slice that it was filled in
    std::int64_t m_left = perSlice;
    std::int64_t m_spent = 0;
};

} // namespace controller
