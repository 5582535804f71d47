#include "workbudget.h"

#include <algorithm>

namespace controller {

Nanoseconds WorkBudget::refilledAt() const {
    const std::int64_t missing = m_left < 0 ? -m_left : 0;
    return (m_slice + static_cast<Nanoseconds>(missing / perSlice) + 1) * slice;
}

void WorkBudget::refill(Nanoseconds now) {
    const Nanoseconds current = now / slice;
    if (current <= m_slice) {
        return;
    }
    // More slices than fill it up change nothing.
    const auto enough = static_cast<Nanoseconds>((perSlice - m_left) / perSlice + 1);
    const auto slices = static_cast<std::int64_t>(std::min(current - m_slice, enough));
    m_left = std::min(perSlice, m_left + slices * perSlice);
    m_slice = current;
}

} // namespace controller
