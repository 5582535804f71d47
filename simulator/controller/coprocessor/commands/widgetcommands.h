#pragma once

#include "commandset.h"
#include "font.h"
#include "gradient.h"
#include "machine.h"
#include "widgets.h"

#include <cstdint>
#include <string>

namespace controller {

// Text, numbers, widgets and gradients, with the colours, the fonts and the number base they use.
class WidgetCommands {
public:
    explicit WidgetCommands(Machine& machine)
        : m_machine(machine), m_fonts(machine.generation, machine.memory) {}
    void addTo(CommandSet& set);
    void reset();

    const WidgetColors& colors() const { return m_colors; }

private:
    void foregroundColor(const Call& call);
    void backgroundColor(const Call& call);
    void gradientColor(const Call& call);
    void gradient(const Call& call);
    void gradientA(const Call& call);
    void fillWidth(const Call& call);
    void text(const Call& call);
    void number(const Call& call);
    void button(const Call& call);
    void keys(const Call& call);
    void progress(const Call& call);
    void slider(const Call& call);
    void scrollbar(const Call& call);
    void toggle(const Call& call);
    void gauge(const Call& call);
    void clock(const Call& call);
    void dial(const Call& call);
    void setFont(const Call& call);
    void setFont2(const Call& call);
    void romFont(const Call& call);
    void resetFonts(const Call& call);
    void setScratch(const Call& call);
    void setBase(const Call& call);

    Font fontOf(std::uint32_t number) const;
    std::string textOf(const Call& call) const;
    // What a command with the option FILL writes, in lines.
    Label labelOf(const Call& call, const Font& font) const;
    GradientCanvas canvas() const;
    template<typename Draw>
    void draw(Draw drawing);

    Machine& m_machine;
    WidgetColors m_colors;
    FontTable m_fonts;
    unsigned m_base = 10;
    int m_fillWidth = 0; // pixels; 0: text is not broken
};

} // namespace controller
