#pragma once

#include "memorymap.h"
#include "registers.h"
#include "workbudget.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace controller {

// Is told what is put into the list.
class ListObserver {
public:
    virtual ~ListObserver() = default;
    virtual void listWordPut(std::size_t index, std::uint32_t word) = 0;
};

// Puts words behind the display list that is being written: at REG_CMD_DL, which moves along.
//
// REG_CMD_DL has room for offsets inside the list only, so it reads 0 behind the list's last word
// as it does at its start; which of them it is, is known here. A word too many is a fault.
class ListWriter {
public:
    ListWriter(MemoryMap& memory, Registers& registers, WorkBudget& budget, ListObserver& observer)
        : m_memory(memory), m_registers(registers), m_budget(budget), m_observer(observer) {}

    void put(std::uint32_t word);
    void put(const std::vector<std::uint32_t>& words);
    // The list's words so far.
    std::size_t length() const;
    // An empty list: REG_CMD_DL is 0.
    void restart();
    // Somebody else has set REG_CMD_DL.
    void moved() { m_full = false; }

private:
    MemoryMap& m_memory;
    Registers& m_registers;
    WorkBudget& m_budget;
    ListObserver& m_observer;
    bool m_full = false;
};

} // namespace controller
