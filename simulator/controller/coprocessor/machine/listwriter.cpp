#include "listwriter.h"

#include "commandfault.h"

namespace controller {

std::size_t ListWriter::length() const {
    return m_full ? displayListWords : m_registers[Register::CmdDl] % displayListBytes / 4;
}

void ListWriter::put(std::uint32_t word) {
    const std::size_t index = length();
    if (index >= displayListWords) {
        fault("display list overflow");
    }
    m_budget.spend(WorkBudget::listWord);
    m_memory.setListWord(index, word);
    m_observer.listWordPut(index, word);
    m_full = index + 1 == displayListWords;
    m_registers.set(Register::CmdDl,
                    static_cast<std::uint32_t>((index + 1) % displayListWords * 4));
}

void ListWriter::put(const std::vector<std::uint32_t>& words) {
    for (const std::uint32_t word : words) {
        put(word);
    }
}

void ListWriter::restart() {
    m_full = false;
    m_registers.set(Register::CmdDl, 0);
}

} // namespace controller
