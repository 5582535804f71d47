#pragma once

#include "addressspace.h"
#include "frame.h"
#include "listwriter.h"
#include "memorymap.h"
#include "power.h"
#include "registers.h"
#include "ringcommand.h"
#include "serialflash.h"
#include "turn.h"
#include "workbudget.h"

#include <cstdint>
#include <string>

namespace controller {

// What the coprocessor asks of the rest of the chip.
class CoprocessorPort : public ListObserver {
public:
    virtual Nanoseconds now() const = 0;
    virtual bool isScanning() const = 0;
    virtual bool isSwapPending() const = 0;
    virtual std::uint32_t framesScanned() const = 0;
    // The picture that is shown, for SNAPSHOT.
    virtual const Frame& pictureShown() = 0;
    // What drawing has cost for whoever has looked at the picture, in the units of WorkBudget. A
    // picture counts each time, whether it had to be drawn or not: that depends on who else looks.
    virtual std::int64_t pictureWork() const = 0;
    // From the end of this frame on the panel shows `list`, whatever the host swaps in.
    virtual void showList(const DisplayList& list) = 0;
    virtual void interruptAfter(Nanoseconds delay) = 0;
    virtual void ringEmptied() = 0;
    // Whether anybody wants to know what is taken from the ring; if so, it is about to be done.
    virtual bool wantsCommands() const = 0;
    virtual void commandTaken(const RingCommand& command) = 0;
    virtual void complain(const std::string& text) = 0;
};

// The chip as the coprocessor's commands and animations see it: what they may read and change.
struct Machine {
    // The picture's size in pixels: the panel's, unless it is turned to portrait.
    int pictureWidth() const { return size(isPortrait() ? Register::VSize : Register::HSize); }
    int pictureHeight() const { return size(isPortrait() ? Register::HSize : Register::VSize); }

    Generation generation;
    MemoryMap& memory; // plain memory, without side effects
    AddressSpace& bus; // the same with the registers in it, and what they do
    Registers& registers;
    SerialFlash& flash;
    CoprocessorPort& port;
    WorkBudget budget{};
    ListWriter list{memory, registers, budget, port};

    bool isPortrait() const {
        return generation != Generation::E1 && Turn::of(registers[Register::Rotate]).portrait;
    }
    int size(Register id) const { return static_cast<int>(registers[id]); }
};

} // namespace controller
