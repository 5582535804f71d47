#pragma once

#include "addressspace.h"
#include "bitmapmatrix.h"
#include "commandtable.h"
#include "font.h"
#include "frame.h"
#include "inflater.h"
#include "painter.h"
#include "power.h"
#include "registers.h"
#include "serialflash.h"
#include "widgets.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace controller {

// What the coprocessor asks of the rest of the chip.
class CoprocessorPort {
public:
    virtual ~CoprocessorPort() = default;
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

// The small processor that reads commands from the ring.
//
// Words are taken one by one as they come: a command whose arguments are cut by the end of a burst
// goes on with the next one, and data may be longer than the ring. REG_CMD_READ stands behind the
// last word taken, except that a command's last argument counts as taken only when the command is
// done; so a command that waits keeps the ring from being empty. Commands take no time.
//
// An error is a fault, as the chip has it: REG_CMD_READ is 0xFFF, on E3 a text says why, and
// nothing runs before a reset through REG_CPURESET. Commands that exist but are not modelled are
// taken with their arguments and complained about: self-tests (CRC, HAMMERAUX, MARCH, IDCT,
// EXECUTE), images and video (LOADIMAGE, PLAYVIDEO, VIDEO...), the media FIFO, E3's animations,
// GRADIENTA, FILLWIDTH, SHA1 and HMAC.
//
// This class is the ring reader and the commands' common state; the commands are grouped in
// drawingcommands.cpp, matrixcommands.cpp, memorycommands.cpp, animationcommands.cpp and
// flashcommands.cpp.
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
    // Whether words are left although nothing is waited for: a bounded number is taken at a time.
    bool hasMore() const { return m_more; }
    // A frame has been scanned and a pending swap been made: animations go on.
    void frameEnded();
    // The host has set REG_CMD_DL.
    void listMoved() { m_listFull = false; }
    // RAM_CMD takes a word at CMD_WRITE (REG_CMDB_WRITE).
    void feed(std::uint32_t word);
    std::uint32_t freeBytes() const;
    bool isFaulty() const { return m_faulty; }
    // Whether an animation decides what the panel shows.
    bool animates() const { return m_overlay.has_value(); }

private:
    // What a command's handler says: finished, call again later, or finished with the ring's
    // pointers already set.
    enum class Outcome : std::uint8_t { Done, Wait, Restarted };
    using Handler = Outcome (Coprocessor::*)();
    using HandlerTable = std::array<Handler, 256>;
    // Takes bytes of a command's data; true when that was the last of them.
    using DataSink = std::function<bool(const std::uint8_t* bytes, std::size_t count)>;
    enum class Phase : std::uint8_t { Command, Arguments, Text, FormatArguments, Data };
    struct Fault {
        std::string text;
    };

    // --- ring reader (coprocessor.cpp)
    static HandlerTable makeHandlers();
    bool step();
    Outcome accept(std::uint32_t word);
    Outcome acceptCommand(std::uint32_t word);
    Outcome acceptArgument(std::uint32_t word);
    Outcome acceptText(std::uint32_t word);
    Outcome acceptFormatArgument(std::uint32_t word);
    Outcome acceptData(std::uint32_t word);
    Outcome fixedArgumentsComplete();
    Outcome textComplete();
    Outcome call();
    Outcome startData();
    void commandDone();
    void fail(const Fault& reason);
    void resetState();
    std::uint32_t readOffset() const;

    // --- for the commands
    std::uint32_t argument(std::size_t index) const { return m_arguments[index]; }
    int low(std::size_t index) const;
    int high(std::size_t index) const;
    unsigned lowUnsigned(std::size_t index) const { return m_arguments[index] & 0xFFFFU; }
    unsigned highUnsigned(std::size_t index) const { return m_arguments[index] >> 16U; }
    void putResult(std::size_t index, std::uint32_t value);
    void putWord(std::uint32_t word);
    void putWords(const Words& words);
    std::size_t listLength() const; // words in the list so far
    [[noreturn]] static void fault(const std::string& text) { throw Fault{text}; }
    void notModelled();
    bool hasOption(unsigned bits, std::size_t index) const;
    int panelWidth() const { return static_cast<int>(m_registers[Register::HSize]); }
    int panelHeight() const { return static_cast<int>(m_registers[Register::VSize]); }

    // --- drawingcommands.cpp
    Outcome dlStart();
    Outcome swap();
    Outcome foregroundColor();
    Outcome backgroundColor();
    Outcome gradientColor();
    Outcome gradient();
    Outcome text();
    Outcome number();
    Outcome button();
    Outcome keys();
    Outcome progress();
    Outcome slider();
    Outcome scrollbar();
    Outcome toggle();
    Outcome gauge();
    Outcome clock();
    Outcome dial();
    Outcome setBitmap();
    Outcome setFont();
    Outcome setFont2();
    Outcome romFont();
    Outcome resetFonts();
    Outcome setScratch();
    Outcome setBase();
    Outcome setRotate();
    Font fontOf(std::uint32_t number) const;
    std::string formattedText(unsigned options) const;
    void checkHandle(std::uint32_t handle) const;
    template<typename Draw>
    Outcome drawWidget(Draw draw);

    // --- matrixcommands.cpp
    Outcome loadIdentity();
    Outcome translate();
    Outcome scale();
    Outcome rotate();
    Outcome rotateAround();
    Outcome setMatrix();
    Outcome getMatrix();
    Outcome bitmapTransform();
    Outcome touchTransform();
    void putTransform(const Affine& transform);
    std::optional<Affine> argumentTransform(std::int32_t unit) const;
    void setTouchTransform(const Affine& transform);

    // --- memorycommands.cpp
    Outcome append();
    Outcome memWrite();
    Outcome memSet();
    Outcome memZero();
    Outcome memCpy();
    Outcome memCrc();
    Outcome regRead();
    Outcome getPtr();
    Outcome getProps();
    Outcome inflate();
    Outcome inflate2();
    Outcome image();
    Outcome snapshot();
    Outcome snapshot2();
    Outcome interrupt();
    void appendBytes(const std::function<std::uint8_t(std::uint32_t)>& read, std::uint32_t count);
    DataSink inflateSink(std::uint32_t destination);
    void storePicture(std::uint32_t format, std::uint32_t destination, int x, int y, int width,
                      int height);

    // --- animationcommands.cpp
    Outcome spinner();
    Outcome stop();
    Outcome calibrate();
    Outcome logo();
    Outcome screenSaver();
    Outcome sketch();
    Outcome cSketch();
    Outcome track();
    Outcome sync();
    Outcome coldStart();
    Outcome nothing() { return Outcome::Done; }
    void startOverlay(std::function<void(Words&, std::uint32_t frame)> draw);
    void stopAnimations();
    void showOverlay();
    void drawScreenSaver();
    void drawSketch();
    void followTracks();
    void watchCalibration();

    // --- flashcommands.cpp
    Outcome flashErase();
    Outcome flashWrite();
    Outcome flashRead();
    Outcome flashUpdate();
    Outcome flashDetach();
    Outcome flashAttach();
    Outcome flashFast();
    Outcome flashSpiDesel();
    Outcome flashSpiTx();
    Outcome flashSpiRx();
    Outcome flashSource();
    Outcome appendF();
    bool requireAttached();
    bool requireDetached();

    Generation m_generation;
    MemoryMap& m_memory;
    AddressSpace& m_bus;
    Registers& m_registers;
    SerialFlash& m_flash;
    CoprocessorPort& m_port;

    // The ring reader.
    bool m_held = false;
    bool m_resetDue = false; // as soon as the command that asks for it is done
    bool m_faulty = false;
    bool m_running = false;
    bool m_more = false;
    bool m_listFull = false;
    Phase m_phase = Phase::Command;
    bool m_waiting = false; // the command's handler wants to be called again
    const CommandInfo* m_command = nullptr;
    std::vector<std::uint32_t> m_arguments;
    std::vector<std::uint32_t> m_offsets; // where in the ring they stand
    std::string m_text;
    std::vector<std::uint32_t> m_formatArguments;
    std::size_t m_formatCount = 0;
    DataSink m_sink;

    // State of the commands; all of it outlives DLSTART.
    WidgetColors m_colors;
    BitmapMatrix m_matrix;
    FontTable m_fonts;
    unsigned m_base = 10;
    std::uint32_t m_pointer = 0; // behind the last data unpacked
    std::uint32_t m_flashSource = 0;

    // An animation behind the list as it stood when it began.
    struct Overlay {
        DisplayList list{};
        std::size_t length = 0;
        std::function<void(Words&, std::uint32_t frame)> draw;
        std::uint32_t frame = 0;
    };
    std::optional<Overlay> m_overlay;

    struct Calibration {
        std::array<PointPair, 3> points{};
        std::size_t touched = 0;
        bool released = true; // the finger has been off the panel since the last touch
    };
    std::optional<Calibration> m_calibration;
    std::optional<std::uint32_t> m_syncFrame;
    std::optional<std::uint32_t> m_logoFrame;  // frames of the logo so far
    std::optional<std::uint32_t> m_saverFrame; // frames of the screen saver so far
    struct Sketch {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        std::uint32_t address = 0;
        bool oneBit = false;
    };
    std::optional<Sketch> m_sketch;
    struct Track {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        std::uint32_t tag = 0;
    };
    std::vector<Track> m_tracks;
    std::uint32_t m_trackedTag = 0; // the tag the touch began on
};

} // namespace controller
