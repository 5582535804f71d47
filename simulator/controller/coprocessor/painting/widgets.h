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

// Each function appends the words of one widget; positions are in pixels and may lie anywhere.
// Shapes take the widget colours; text, where there is some, the colour current in the list.
class WidgetWriter {
public:
    WidgetWriter(Words& words, Generation generation, const WidgetColors& colors)
        : m_words(words), m_generation(generation), m_colors(colors) {}

    void text(const Font& font, int x, int y, unsigned options, const std::string& text);
    void button(const Place& place, const Font& font, unsigned options, const std::string& label);
    // One key per character. The key whose character is the options' low byte is pressed.
    void keys(const Place& place, const Font& font, unsigned options, const std::string& labels);
    // The part `value` of `range`.
    void progress(const Place& place, unsigned options, unsigned value, unsigned range);
    void slider(const Place& place, unsigned options, unsigned value, unsigned range);
    void scrollbar(const Place& place, unsigned options, unsigned value, unsigned size,
                   unsigned range);
    // `state` from 0, off, to 65535, on; labels are separated by a byte of 255.
    void toggle(int x, int y, int width, const Font& font, unsigned options, unsigned state,
                const std::string& labels);
    void gauge(int x, int y, int radius, unsigned options, unsigned major, unsigned minor,
               unsigned value, unsigned range);
    void clock(int x, int y, int radius, unsigned options, unsigned hours, unsigned minutes,
               unsigned seconds, unsigned milliseconds);
    // `value` turns the mark: 65536 a turn, from straight down, clockwise.
    void dial(int x, int y, int radius, unsigned options, unsigned value);

private:
    Painter painter() { return Painter(m_words, m_generation); }
    // A raised shape, or a plain one when FLAT.
    void raised(Painter& painter, const Box& box, int radius, std::uint32_t color,
                unsigned options) const;
    void roundFace(Painter& painter, int x, int y, int radius, std::uint32_t color,
                   unsigned options) const;
    void groove(Painter& painter, const Box& box, unsigned options) const;

    Words& m_words;
    Generation m_generation;
    WidgetColors m_colors;
};

// A number as text: in `base` (2 to 36), with at least as many digits as the options' low byte
// says, and as a signed one with SIGNED.
std::string numberText(std::uint32_t number, unsigned options, unsigned base);

} // namespace controller
