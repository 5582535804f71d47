#pragma once

#include "font.h"
#include "painter.h"

#include <cstdint>
#include <string>

namespace controller {

// The coprocessor's widget colours.
struct WidgetColors {
    std::uint32_t foreground = 0x003870;
    std::uint32_t background = 0x002040;
    std::uint32_t gradient = 0xFFFFFF; // tints the lit edges of what is not FLAT
};

// A widget's place in pixels.
struct Place {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

// That of a round one.
struct RoundPlace {
    int x = 0; // centre
    int y = 0;
    int radius = 0;
};

// `value` of `range`; more than all of it counts as all.
struct Portion {
    unsigned value = 0;
    unsigned range = 0;

    // As much of `length`.
    int of(int length) const;
};

// What a gauge's range is divided into, and each of these.
struct GaugeTicks {
    unsigned major = 0;
    unsigned minor = 0;
};

struct TimeOfDay {
    unsigned hours = 0;
    unsigned minutes = 0;
    unsigned seconds = 0;
    unsigned milliseconds = 0;
};

// Text on a widget.
struct Label {
    const Font& font;
    std::string text;
};

// Each function appends the words of one widget; positions are in pixels and may lie anywhere.
// Shapes take the widget colours; text, where there is some, the colour current in the list.
// `options` are those of namespace option that the command takes.
class WidgetWriter {
public:
    WidgetWriter(Words& words, Generation generation, const WidgetColors& colors)
        : m_words(words), m_generation(generation), m_colors(colors) {}

    void text(const TextPlace& place, const Label& label);
    void button(const Place& place, unsigned options, const Label& label);
    // One key per character. The key whose character is the options' low byte is pressed.
    void keys(const Place& place, unsigned options, const Label& labels);
    void progress(const Place& place, unsigned options, const Portion& done);
    void slider(const Place& place, unsigned options, const Portion& position);
    // The bar begins at `start` and takes `size` of the same range.
    void scrollbar(const Place& place, unsigned options, const Portion& start, unsigned size);
    // The height is the font's. `state` from 0, off, to 65535, on; the labels for both are
    // separated by a byte of 255.
    void toggle(const Place& place, unsigned options, const Label& labels, unsigned state);
    void gauge(const RoundPlace& place, unsigned options, const GaugeTicks& ticks,
               const Portion& value);
    void clock(const RoundPlace& place, unsigned options, const TimeOfDay& time);
    // `value` turns the mark: 65536 a turn, from straight down, clockwise.
    void dial(const RoundPlace& place, unsigned options, unsigned value);

private:
    // How a part of a widget is drawn: FLAT, or with an edge.
    struct Look {
        std::uint32_t color = 0;
        unsigned options = 0;
    };

    Painter painter() { return Painter(m_words, m_generation); }
    void raised(Painter& painter, const Box& box, int radius, const Look& look) const;
    void roundFace(Painter& painter, const Disc& disc, const Look& look) const;
    void groove(Painter& painter, const Box& box, unsigned options) const;
    void gaugeTicks(Painter& face, const Disc& disc, const GaugeTicks& ticks) const;
    void gaugeHand(Painter& face, const Disc& disc, const Portion& value) const;

    Words& m_words;
    Generation m_generation;
    WidgetColors m_colors;
};

// A number as text: in `base` (2 to 36), with at least as many digits as the options' low byte
// says, and as a signed one with SIGNED.
std::string numberText(std::uint32_t number, unsigned options, unsigned base);

} // namespace controller
