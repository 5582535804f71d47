#pragma once

#include "callreader.h"
#include "commandfault.h"
#include "commandgroups.h"
#include "machine.h"

#include <cstddef>
#include <cstdint>
#include <variant>

namespace controller {

// The small processor that reads commands from the ring.
//
// Words are taken one by one as they come: a command whose arguments are cut by the end of a burst
// goes on with the next one, and data may be longer than the ring. REG_CMD_READ stands behind the
// last word taken, except that a command's last argument counts as taken only when the command is
// done; so a command that waits keeps the ring from being empty.
//
// Commands take no time as long as they are little work. Each slice of time has room for a certain
// amount (workbudget.h); a command that is more keeps the coprocessor busy until later slices have
// paid for it.
//
// An error is a fault, as the chip has it: REG_CMD_READ is 0xFFF, on E3 a text says why, and
// nothing runs before a reset through REG_CPURESET.
//
// This class is the reader of the ring. What the commands do is in commands/, what they add to the
// list in painting/, what goes on after them in animations/.
class Coprocessor {
public:
    Coprocessor(Generation generation, MemoryMap& memory, AddressSpace& bus, Registers& registers,
                SerialFlash& flash, CoprocessorPort& port);
    Coprocessor(const Coprocessor&) = delete;
    Coprocessor& operator=(const Coprocessor&) = delete;

    // Power-on state.
    void reset();
    // REG_CPURESET: held in reset or let go.
    void hold(bool held);
    // Takes what is in the ring. Must be called when the ring, or what a command waits for, may
    // have changed.
    void run();
    // Takes one command, or a word for the list, with its data, as far as they are there and there
    // is nothing to wait for. Whether it is done.
    bool runOne();
    // When it goes on by itself with what it had no time for; `never` if there is nothing.
    Nanoseconds resumesAt() const;
    // All the work done so far, in the units of WorkBudget.
    std::int64_t workDone() const { return m_machine.budget.spent(); }
    // A frame has been scanned and a pending swap been made: animations go on.
    void frameEnded();
    // The host has set REG_CMD_DL.
    void listMoved() { m_machine.list.moved(); }
    // RAM_CMD takes a word at CMD_WRITE (REG_CMDB_WRITE).
    void feed(std::uint32_t word);
    std::uint32_t freeBytes() const;
    // A fault out of nothing, for tests.
    void breakDown();
    bool isFaulty() const { return std::holds_alternative<Faulty>(m_state); }
    // Whether an animation decides what the panel shows.
    bool animates() const { return m_commands.animate(); }

private:
    // What the next word of the ring is, or what keeps it from being taken:
    //
    //              +------ list word, or a command that is done at once -----+
    //              v                                                        |
    //            Ready ----- command ----> Reading -- all of it is there --> +--> Busy
    //              ^                                                        |      |
    //              |                         Taking <--- data follow -------+      |
    //              +------- the last byte -----+                                   |
    //              +------- done ---------------------------------------------------+
    //
    // A fault leads to Faulty from anywhere, and only a reset out of it, to Ready.
    struct Ready {};
    struct Reading {
        CallReader reader;
        std::uint32_t start; // where in the ring the command stands
    };
    struct Busy { // the last word is not taken before all is done, and paid for
        const CommandInfo* command;
        Task task;
    };
    struct Taking {
        const CommandInfo* command;
        DataSink sink;
        std::uint32_t left; // bytes, for Trailer::Bytes
    };
    struct Faulty {};
    using State = std::variant<Ready, Reading, Busy, Taking, Faulty>;

    bool step();
    Progress accept(std::uint32_t word);
    Progress begin(std::uint32_t word);
    Progress read(Reading& reading, std::uint32_t word);
    Progress execute(const Call& call, std::uint32_t start);
    void tell(RingCommand command, std::uint32_t start);
    Progress proceed(Busy& busy);
    Progress take(Taking& taking, std::uint32_t word);
    Progress pay(Progress progress);
    void fail(const Fault& reason);
    void resetState();
    bool isRingEmpty() const;
    std::uint32_t readOffset() const;
    const CommandInfo* currentCommand() const;

    Machine m_machine;
    Commands m_commands;
    State m_state;
    bool m_held = false;     // as REG_CPURESET says
    std::int64_t m_paid = 0; // of the work that memory and flash count
    // A command or an animation may write to the registers of the ring or to REG_CPURESET; the
    // first is noticed, and the second done, when it has returned.
    bool m_executing = false;
    bool m_resetDue = false;
};

} // namespace controller
