#pragma once

#include "frame.h"
#include "generation.h"
#include "memorylayout.h"
#include "pixelhistory.h"
#include "placedtext.h"
#include "ringcommand.h"
#include "rowloops.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace controller {

// One chip-select bracket as it crossed the bus.
struct Transaction {
    Nanoseconds start = 0;
    Nanoseconds end = 0;
    std::vector<std::uint8_t> sent;
    std::vector<std::uint8_t> received; // as many as sent
};

enum class Pin : std::uint8_t { PowerDown, ChipSelect };

// Called from inside the bus door and advance(), on the caller's thread. An observer must not
// call back into the controller except through the const back door.
class Observer {
public:
    virtual ~Observer() = default;
    // A frame has been scanned; `number` counts up from 1 since power-on (REG_FRAMES).
    virtual void frameScanned(std::uint32_t /*number*/, Nanoseconds /*now*/) {}
    // The list shown from now on is a new one (host swap or coprocessor animation).
    virtual void listSwapped(Nanoseconds /*now*/) {}
    virtual void transactionEnded(const Transaction& /*transaction*/) {}
    // The power-down pin, or chip select, has changed.
    virtual void pinChanged(Pin /*pin*/, bool /*high*/, Nanoseconds /*now*/) {}
    // All memory has been forgotten.
    virtual void powerLost() {}

    // What the coprocessor does. What it puts and writes is of the last command taken, or of an
    // animation that this one has begun.
    virtual void commandTaken(const RingCommand& /*command*/, Nanoseconds /*now*/) {}
    virtual void listWordPut(std::size_t /*index*/, std::uint32_t /*word*/) {}
    virtual void bytesWritten(std::uint32_t /*address*/, std::uint32_t /*count*/) {}
    virtual void bytesCopied(std::uint32_t /*destination*/, std::uint32_t /*source*/,
                             std::uint32_t /*count*/) {}
    // A word at this offset of the ring came through REG_CMDB_WRITE, in the transaction under way.
    virtual void ringFed(std::uint32_t /*offset*/) {}
    // The list that was written is the one shown, and the other way round.
    virtual void listsExchanged() {}

    // Something the chip would not accept: an unknown command, word, register or a fault.
    virtual void complained(const std::string& /*text*/) {}
};

// What the panel behind the chip looks like from outside.
struct PanelState {
    bool scanning = false;      // powered, and the pixel clock runs
    bool displayOn = false;     // the DISP line is driven high
    int backlight = 128;        // 0 dark .. 128 full
    double framesPerSecond = 0; // of the scan; 0 while nothing is scanned
    // Why nothing may be scanned:
    bool powered = true; // the PD pin is high
    bool awake = true;   // the chip's clock runs
};

struct Options {
    std::size_t flashSize = 0;         // bytes behind an E3 controller; 0: no flash chip fitted
    Vectors vectors = widestVectors(); // what to draw with; the pictures are the same
};

// A software model of the display controller with its panel.
//
// Two doors: the bus door takes exactly what the host's wires do; the back door is for tests,
// scripts and viewers. Time is an argument everywhere. Not thread-safe: one thread at a time.
class Controller {
public:
    explicit Controller(Generation generation, const Options& options = {});
    ~Controller();
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;

    // --- bus door
    void setPowerDown(bool high, Nanoseconds now);  // PD pin: low holds the chip in power-down
    void setChipSelect(bool high, Nanoseconds now); // CS pin: low selects the chip
    std::uint8_t exchange(std::uint8_t sent, Nanoseconds now); // one byte, full duplex

    // Brings the model up to `now`: frames, swaps, animations, touch. Every bus-door call does
    // this too.
    void advance(Nanoseconds now);

    // --- back door
    Generation generation() const;
    void setObserver(Observer* observer); // not owned; null for none

    // A finger is at panel pixel (x, y) from the next frame on. Fingers are numbered from 0 to 4;
    // those behind the first show only with CTOUCH_EXTENDED 0 on E2 and E3.
    void touch(int x, int y, std::size_t finger = 0);
    void release(std::size_t finger = 0);

    PanelState panel() const;
    // What the list now shown draws, whatever the backlight does. Drawn on demand.
    const Frame& frame() const;
    std::uint32_t framesScanned() const;
    std::uint32_t listsSwapped() const;

    Nanoseconds time() const; // how far the model has been brought
    // The words that the panel shows.
    const DisplayList& listShown() const;
    // Which of them a pixel of the panel comes from; nothing outside of the panel.
    PixelHistory historyOf(int x, int y) const;
    // The pixels of the panel that these words reach, in one rectangle.
    PixelRect areaOf(const std::vector<std::size_t>& words) const;

    std::uint8_t peek8(std::uint32_t address) const; // without side effects on the chip
    std::uint32_t peek32(std::uint32_t address) const;
    // Text of the strings on the panel, top to bottom, left to right; a run of characters of one
    // font on one line is one string.
    std::vector<std::string> textOnPanel() const;
    std::vector<PlacedText> placedTextOnPanel() const; // the same, and where they stand
    // How often the host has read REG_TOUCH_TAG, and its value at the last read.
    std::uint32_t touchTagReads() const;
    std::uint8_t lastTouchTagRead() const;

    // --- faults, on request
    void setIdentity(std::uint32_t chipId); // the word at 0x0C0000 instead of the generation's own
    void setOwnIdentity();                  // the generation's own again
    void setAnswering(bool answering);      // false: every read gives 0, as with no chip fitted
    void setStartTime(Nanoseconds time);    // from the next start's ACTIVE to readable memory

    // true: the coprocessor takes no more commands, as if it had hung, until let go.
    void setCoprocessorStalled(bool stalled);
    // Stops the coprocessor with a fault, as a command that it does not know would.
    void breakCoprocessor();

    // true: it takes them only one by one, by stepCoprocessor(), which says whether it has done
    // one; otherwise it has none, or what it is at waits for something else.
    void setCoprocessorHalted(bool halted);
    bool stepCoprocessor();

    // What the coprocessor has done since power-on, counted and not timed: a unit is about a
    // nanosecond of a core of 2 GHz. It does no more than some two million in a millisecond.
    std::int64_t coprocessorWork() const;

    // The flash chip's content (empty without one), for tests and scripts.
    std::vector<std::uint8_t>& flash();

private:
    class Chip;
    std::unique_ptr<Chip> m_chip;
};

} // namespace controller
