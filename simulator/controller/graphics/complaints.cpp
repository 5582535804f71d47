#include "complaints.h"

#include <array>
#include <cinttypes>
#include <cstdio>

namespace controller {

void Complaints::addUnknownWord(std::uint32_t word) {
    addOnce(word >> 24, "display list: unknown word " + hexadecimal(word));
}

void Complaints::addOnce(std::size_t kind, const std::string& text) {
    if (!m_seen.test(kind)) {
        m_seen.set(kind);
        m_lines.push_back(text);
    }
}

std::string hexadecimal(std::uint32_t word) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%08" PRIX32, word);
    return text.data();
}

} // namespace controller
