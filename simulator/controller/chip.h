#pragma once

#include "addressspace.h"
#include "controller.h"
#include "coprocessor.h"
#include "display.h"
#include "frametiming.h"
#include "hostinterface.h"
#include "machine.h"
#include "memorymap.h"
#include "power.h"
#include "registers.h"
#include "serialflash.h"
#include "touchengine.h"

#include <optional>
#include <string>
#include <vector>

namespace controller {

// The chip: its parts, wired to each other, and the order in which time passes through them.
//
// Wires in: the four of SPI (one byte at a time, mode 0, one data line each way), the power-down
// pin, the touch panel. Wires out: SPI data, and what the panel shows. The interrupt line is not
// connected on the board; its flags are there to be read.
//
// Modelled: host interface, memory map, registers with widths, reset values and access, power and
// clock states, frame timing, double-buffered lists, touch and tags, the coprocessor, a flash chip
// beside an E3. At the end of each frame: touch coordinates and tag are noted, the frame counts as
// scanned, a swap that was asked for is made, animations put their next list on the panel, and
// the coprocessor goes on with what waited for any of this.
//
// Not modelled, as nothing here could show it: sound (over at once), dithering, colour swizzle and
// sync polarity, pin drive, dual and quad SPI, tearing by a swap in mid-frame (drawn as if at its
// end). Not modelled and complained about: the
// commands that commandgroups.h names.
class Controller::Chip : private HostTarget, private RegisterBehaviour, private CoprocessorPort {
public:
    Chip(Generation generation, const Options& options);
    Chip(const Chip&) = delete;
    Chip& operator=(const Chip&) = delete;

    void setPowerDown(bool high, Nanoseconds now);
    void setChipSelect(bool high, Nanoseconds now);
    std::uint8_t exchange(std::uint8_t sent, Nanoseconds now);
    void advance(Nanoseconds now);

    Generation generation() const { return m_generation; }
    void setObserver(Observer* observer) { m_observer = observer; }
    void touch(int x, int y, std::size_t finger) { m_touch.touch({x, y}, finger); }
    void release(std::size_t finger) { m_touch.release(finger); }
    PanelState panel() const;
    const Frame& frame() { return m_display.frame(); }
    std::uint32_t framesScanned() const override { return m_registers[Register::Frames]; }
    std::uint32_t listsSwapped() const { return m_listsSwapped; }
    Nanoseconds now() const override { return m_now; }
    const DisplayList& listShown() const { return m_display.list(); }
    PixelHistory historyOf(int x, int y) const { return m_display.historyOf(x, y); }
    PixelRect areaOf(const std::vector<std::size_t>& words) const {
        return m_display.areaOf(words);
    }
    std::uint8_t peek8(std::uint32_t address) const { return m_bus.peek8(address); }
    std::uint32_t peek32(std::uint32_t address) const { return m_bus.peek32(address); }
    std::uint32_t touchTagReads() const { return m_touchTagReads; }
    std::uint8_t lastTouchTagRead() const { return m_lastTouchTagRead; }
    void setIdentity(std::optional<std::uint32_t> chipId);
    void setStartTime(Nanoseconds time) { m_power.setStartTime(time); }
    void breakCoprocessor();
    void setAnswering(bool answering) { m_answering = answering; }
    void setCoprocessorStalled(bool stalled);
    void setCoprocessorHalted(bool halted);
    bool stepCoprocessor();
    std::int64_t coprocessorWork() const { return m_coprocessor.workDone(); }
    std::vector<std::uint8_t>& flash() { return m_flash.content(); }

private:
    // HostTarget
    std::uint8_t hostRead(std::uint32_t address) override;
    void hostWrite(std::uint32_t address, std::uint8_t value) override;
    void hostBurstEnded() override;
    std::uint32_t nextHostWrite(std::uint32_t address) const override;
    void hostCommand(std::uint8_t command, std::uint8_t parameter) override;
    std::size_t dummyBytes() const override;
    // RegisterBehaviour
    std::uint32_t readRegister(Register id) override;
    std::uint32_t peekRegister(Register id) const override;
    void writeRegister(Register id, std::uint32_t value) override;
    void complainOfAccess(const char* what, std::uint32_t address) override;
    void bytesWritten(std::uint32_t address, std::uint32_t count) override;
    void bytesCopied(std::uint32_t destination, std::uint32_t source, std::uint32_t count) override;
    // CoprocessorPort
    bool isScanning() const override { return m_timing.isScanning(); }
    bool isSwapPending() const override { return m_registers[Register::DlSwap] != 0; }
    const Frame& pictureShown() override { return lookAtPicture(); }
    std::int64_t pictureWork() const override { return m_pictureWork; }
    void showList(const DisplayList& list) override;
    void interruptAfter(Nanoseconds delay) override { m_interruptAt = m_now + delay; }
    void ringEmptied() override;
    bool wantsCommands() const override { return m_observer != nullptr; }
    void commandTaken(const RingCommand& command) override;
    void listWordPut(std::size_t index, std::uint32_t word) override;
    // HostTarget and CoprocessorPort
    void complain(const std::string& text) override;

    const Frame& lookAtPicture() const;
    Nanoseconds nextEvent() const;
    void takeEvent();
    void powerEvent();
    void started();
    void powerLost();
    void followPower();
    void followScan();
    Nanoseconds frameDuration() const;
    void frameEnded();
    void noteTouch();
    void requestSwap(std::uint32_t kind);
    void swapNow();
    void runCoprocessor();
    bool coprocessorCanRun() const { return m_power.enginesRun() && !m_coprocessorStalled; }
    bool coprocessorRuns() const { return coprocessorCanRun() && !m_coprocessorHalted; }
    Nanoseconds coprocessorResumesAt() const {
        return coprocessorRuns() ? m_coprocessor.resumesAt() : never;
    }
    void raise(std::uint32_t interruptBits);

    Generation m_generation;
    Observer* m_observer = nullptr;
    Nanoseconds m_now = 0;
    Nanoseconds m_lastByteAt = 0; // on the bus

    MemoryMap m_memory;
    Registers m_registers;
    AddressSpace m_bus;
    HostInterface m_host;
    Power m_power;
    FrameTiming m_timing;
    TouchEngine m_touch;
    SerialFlash m_flash;
    mutable Display m_display; // draws when somebody looks
    mutable std::int64_t m_pictureWork = 0;
    Coprocessor m_coprocessor;

    Transaction m_transaction; // recorded while there is an observer
    Nanoseconds m_lineSwapAt = never;
    Nanoseconds m_interruptAt = never;
    std::uint32_t m_listsSwapped = 0;
    std::uint32_t m_touchTagReads = 0;
    std::uint8_t m_lastTouchTagRead = 0;
    std::optional<std::uint32_t> m_identity;
    bool m_answering = true;
    bool m_coprocessorStalled = false;
    bool m_coprocessorHalted = false;
    bool m_powerDownHigh = false;
};

} // namespace controller
