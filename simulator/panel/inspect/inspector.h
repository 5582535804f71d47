#pragma once

#include "displaymodule.h"
#include "ledger.h"

#include <QByteArray>
#include <QRect>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace panel {

// Something that has put words where they are.
struct Cause {
    std::uint32_t number = 0; // counts all there have been
    QString text; // "CMD_TEXT 160 28 30 OPT_CENTER \"COUNTER MODE\""; a word that the host has put
                  // into the ring; "written by the host"
    QString transactions; // what brought it: "transaction 812 at 3.402113 s, W RAM_CMD+16, 104
                          // bytes"; empty: unknown
};

struct WordReport {
    std::size_t index = 0; // in the list
    std::uint32_t word = 0;
    QString text;              // "BEGIN RECTS"
    std::vector<Cause> causes; // from what put it into the list to what made it; empty: unknown
};

// A primitive, or CLEAR, that has left something on a pixel.
struct StepReport {
    std::vector<WordReport> words; // BEGIN and the primitive's vertices; or CLEAR
    std::uint32_t before = 0;      // the pixel's colour, 0xRRGGBB
    std::uint32_t after = 0;
    bool colours = false; // the colour, or a part of it, comes from here
    bool covers = false;  // and nothing of the colour before shows any more
    bool tags = false;    // so does the tag

    const WordReport& drawing() const { return words.back(); }
    std::vector<std::size_t> indices() const; // of those words that draw
};

struct PixelReport {
    int x = 0;
    int y = 0;
    bool isOnPanel = false;
    std::uint32_t colour = 0; // 0xRRGGBB
    int tag = 0;
    std::vector<StepReport> steps; // in the order of drawing

    // What the colour comes from above all; null: nothing.
    const StepReport* top() const;
};

struct RegisterReport {
    QString name;
    std::uint32_t address = 0;
    std::uint32_t value = 0;
};

// Explains what the panel shows and what the controller holds. It knows what has happened since it
// was made; what was before has no causes.
//
// What takes a controller is to be called with the module locked; the rest locks it.
class Inspector {
public:
    explicit Inspector(DisplayModule& module);
    ~Inspector();
    Inspector(const Inspector&) = delete;
    Inspector& operator=(const Inspector&) = delete;

    PixelReport pixel(const controller::Controller& controller, int x, int y) const;
    PixelReport pixel(int x, int y) const;

    // The list that is shown: up to its DISPLAY, or its last word where it jumps.
    std::vector<WordReport> list(const controller::Controller& controller) const;
    std::vector<WordReport> list() const;
    // How often another list has been shown so far.
    std::uint32_t listNumber() const;

    // The pixels that these words of the list reach; empty when there are none.
    QRect outline(const std::vector<std::size_t>& words) const;

    std::vector<RegisterReport> registers(const controller::Controller& controller) const;
    std::vector<RegisterReport> registers() const;
    QByteArray memory(std::uint32_t address, std::size_t count) const;
    QString placeName(std::uint32_t address) const; // "RAM_G+100000"
    // "RAM_G+100000", "RAM_DL", "REG_ID", "100000", "0x186A0".
    std::optional<std::uint32_t> addressOf(const QString& place) const;

    // The last command that the coprocessor has taken.
    std::optional<Cause> lastCommand() const;

    DisplayModule& module() const { return m_module; }

private:
    Cause causeOf(const Deed& deed) const;
    WordReport wordReport(const controller::Controller& controller, std::size_t index) const;
    StepReport stepReport(const controller::Controller& controller,
                          const controller::PixelStep& step) const;

    DisplayModule& m_module;
    const controller::Generation m_generation;
    Ledger m_ledger; // guarded by the module's lock
};

// Whether a step comes from something like `pattern` (matchesPattern()): the whole text of a
// command or word on the way to it, or its name alone: "CMD_TEXT", "CMD_TEXT * \"Ok\"", "BEGIN
// RECTS".
bool comesFrom(const StepReport& step, const QString& pattern);

// As lines, with what is foldable in a window indented.
QStringList linesOf(const PixelReport& pixel);
QStringList linesOf(const std::vector<WordReport>& list);
QStringList linesOf(const std::vector<RegisterReport>& registers);
QStringList linesOf(std::uint32_t address, const QByteArray& memory);

// "0x19190C"
QString colourText(std::uint32_t rgb);

} // namespace panel
