#pragma once

#include "addressspace.h"
#include "frame.h"
#include "listwriter.h"
#include "memorymap.h"
#include "power.h"
#include "registers.h"
#include "serialflash.h"
#include "workbudget.h"

#include <cstdint>
#include <string>

namespace controller {

// What the coprocessor asks of the rest of the chip.
class CoprocessorPort {
public:
    virtual ~CoprocessorPort() = default;
    virtual Nanoseconds now() const = 0;
    virtual bool isScanning() const = 0;
    virtual bool isSwapPending() const = 0;
    virtual std::uint32_t framesScanned() const = 0;
    // What the panel shows, for SNAPSHOT.
    virtual const Frame& frameOnPanel() = 0;
    // From the end of this frame on the panel shows `list`, whatever the host swaps in.
    virtual void showList(const DisplayList& list) = 0;
    virtual void interruptAfter(Nanoseconds delay) = 0;
    virtual void ringEmptied() = 0;
    virtual void complain(const std::string& text) = 0;
};

// The chip as the coprocessor's commands and animations see it: what they may read and change.
struct Machine {
    int panelWidth() const { return static_cast<int>(registers[Register::HSize]); }
    int panelHeight() const { return static_cast<int>(registers[Register::VSize]); }

    Generation generation;
    MemoryMap& memory; // plain memory, without side effects
    AddressSpace& bus; // the same with the registers in it, and what they do
    Registers& registers;
    SerialFlash& flash;
    CoprocessorPort& port;
    WorkBudget budget{};
    ListWriter list{memory, registers, budget};
};

} // namespace controller
