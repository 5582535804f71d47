#pragma once

#include <cstdint>
#include <vector>

namespace controllertest {

inline std::vector<std::uint32_t> operator+(std::vector<std::uint32_t> a,
                                            const std::vector<std::uint32_t>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

} // namespace controllertest
