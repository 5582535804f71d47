#include "widgetcommands.h"

#include "commandfault.h"
#include "fontrom.h"
#include "formattext.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace controller {

namespace {

constexpr std::uint32_t lastHandle = 31;
constexpr std::uint32_t colorMask = 0xFFFFFF;
constexpr unsigned decimal = 10;
constexpr unsigned highestBase = 36;
constexpr std::uint32_t widestFill = 0xFFFF;

void checkHandle(std::uint32_t handle) {
    if (handle > lastHandle) {
        fault("bitmap handle " + std::to_string(handle) + " out of range");
    }
}

// The first two words of most widgets.
Place placeOf(const Call& call) {
    return {call.low(0), call.high(0), call.low(1), call.high(1)};
}

Gradient gradientOf(const Call& call) {
    return {call.low(0), call.high(0), call[1], call.low(2), call.high(2), call[3]};
}

RoundPlace roundPlaceOf(const Call& call) {
    return {call.low(0), call.high(0), call.low(1)};
}

} // namespace

void WidgetCommands::addTo(CommandSet& set) {
    set.add(Command::FgColor, *this, &WidgetCommands::foregroundColor);
    set.add(Command::BgColor, *this, &WidgetCommands::backgroundColor);
    set.add(Command::GradColor, *this, &WidgetCommands::gradientColor);
    set.add(Command::Gradient, *this, &WidgetCommands::gradient);
    set.add(Command::GradientA, *this, &WidgetCommands::gradientA);
    set.add(Command::FillWidth, *this, &WidgetCommands::fillWidth);
    set.add(Command::Text, *this, &WidgetCommands::text);
    set.add(Command::Number, *this, &WidgetCommands::number);
    set.add(Command::Button, *this, &WidgetCommands::button);
    set.add(Command::Keys, *this, &WidgetCommands::keys);
    set.add(Command::Progress, *this, &WidgetCommands::progress);
    set.add(Command::Slider, *this, &WidgetCommands::slider);
    set.add(Command::Scrollbar, *this, &WidgetCommands::scrollbar);
    set.add(Command::Toggle, *this, &WidgetCommands::toggle);
    set.add(Command::Gauge, *this, &WidgetCommands::gauge);
    set.add(Command::Clock, *this, &WidgetCommands::clock);
    set.add(Command::Dial, *this, &WidgetCommands::dial);
    set.add(Command::SetFont, *this, &WidgetCommands::setFont);
    set.add(Command::SetFont2, *this, &WidgetCommands::setFont2);
    set.add(Command::RomFont, *this, &WidgetCommands::romFont);
    set.add(Command::ResetFonts, *this, &WidgetCommands::resetFonts);
    set.add(Command::SetScratch, *this, &WidgetCommands::setScratch);
    set.add(Command::SetBase, *this, &WidgetCommands::setBase);
}

void WidgetCommands::reset() {
    m_colors = {};
    m_fonts.reset();
    m_base = decimal;
    m_fillWidth = 0;
}

template<typename Draw>
void WidgetCommands::draw(Draw drawing) {
    Words words;
    WidgetWriter writer(words, m_machine.generation, m_colors);
    drawing(writer);
    m_machine.list.put(words);
}

Font WidgetCommands::fontOf(std::uint32_t number) const {
    std::optional<Font> font = m_fonts.find(number);
    if (!font) {
        fault("no font " + std::to_string(number));
    }
    return *std::move(font);
}

std::string WidgetCommands::textOf(const Call& call) const {
    if (m_machine.generation != Generation::E3 || !(call.textOptions() & option::format)) {
        return call.text;
    }
    const auto string = [this](std::uint32_t address) {
        std::string text;
        constexpr std::size_t longest = 1024;
        for (std::uint8_t c = 0;
             text.size() < longest && (c = m_machine.memory.read8(address)) != 0; ++address) {
            text += static_cast<char>(c);
        }
        return text;
    };
    return formatText(call.text, call.formatWords, string);
}

void WidgetCommands::foregroundColor(const Call& call) {
    m_colors.foreground = call[0] & colorMask;
}

void WidgetCommands::backgroundColor(const Call& call) {
    m_colors.background = call[0] & colorMask;
}

void WidgetCommands::gradientColor(const Call& call) {
    m_colors.gradient = call[0] & colorMask;
}

GradientCanvas WidgetCommands::canvas() const {
    return {m_machine.generation, romRamp(m_machine.generation), m_fonts.scratchHandle(),
            m_machine.pictureWidth(), m_machine.pictureHeight()};
}

void WidgetCommands::gradient(const Call& call) {
    Words words;
    appendGradient(words, canvas(), gradientOf(call));
    m_machine.list.put(words);
}

void WidgetCommands::gradientA(const Call& call) {
    Words words;
    appendAlphaGradient(words, canvas(), gradientOf(call));
    m_machine.list.put(words);
}

void WidgetCommands::fillWidth(const Call& call) {
    m_fillWidth = static_cast<int>(std::min(call[0], widestFill));
}

Label WidgetCommands::labelOf(const Call& call, const Font& font) const {
    const bool filled =
        m_machine.generation == Generation::E3 && (call.textOptions() & option::fill);
    return {font, filled ? brokenText(font, textOf(call), m_fillWidth) : textOf(call)};
}

void WidgetCommands::text(const Call& call) {
    const Font font = fontOf(call.lowUnsigned(1));
    draw([&](WidgetWriter& writer) {
        writer.text({call.low(0), call.high(0), call.textOptions()}, labelOf(call, font));
    });
}

void WidgetCommands::number(const Call& call) {
    const Font font = fontOf(call.lowUnsigned(1));
    const unsigned options = call.highUnsigned(1);
    draw([&](WidgetWriter& writer) {
        writer.text({call.low(0), call.high(0), options},
                    {font, numberText(call[2], options, m_base)});
    });
}

void WidgetCommands::button(const Call& call) {
    const Font font = fontOf(call.lowUnsigned(2));
    draw([&](WidgetWriter& writer) {
        writer.button(placeOf(call), call.textOptions(), labelOf(call, font));
    });
}

void WidgetCommands::keys(const Call& call) {
    const Font font = fontOf(call.lowUnsigned(2));
    draw([&](WidgetWriter& writer) {
        writer.keys(placeOf(call), call.textOptions(), {font, call.text});
    });
}

void WidgetCommands::progress(const Call& call) {
    const Portion done{call.highUnsigned(2), call.lowUnsigned(3)};
    draw([&](WidgetWriter& writer) { writer.progress(placeOf(call), call.lowUnsigned(2), done); });
}

void WidgetCommands::slider(const Call& call) {
    const Portion position{call.highUnsigned(2), call.lowUnsigned(3)};
    draw(
        [&](WidgetWriter& writer) { writer.slider(placeOf(call), call.lowUnsigned(2), position); });
}

void WidgetCommands::scrollbar(const Call& call) {
    const Portion start{call.highUnsigned(2), call.highUnsigned(3)};
    draw([&](WidgetWriter& writer) {
        writer.scrollbar(placeOf(call), call.lowUnsigned(2), start, call.lowUnsigned(3));
    });
}

void WidgetCommands::toggle(const Call& call) {
    const Font font = fontOf(call.highUnsigned(1));
    draw([&](WidgetWriter& writer) {
        writer.toggle({call.low(0), call.high(0), call.low(1), 0}, call.textOptions(),
                      {font, textOf(call)}, call.highUnsigned(2));
    });
}

void WidgetCommands::gauge(const Call& call) {
    const GaugeTicks ticks{call.lowUnsigned(2), call.highUnsigned(2)};
    const Portion value{call.lowUnsigned(3), call.highUnsigned(3)};
    draw([&](WidgetWriter& writer) {
        writer.gauge(roundPlaceOf(call), call.highUnsigned(1), ticks, value);
    });
}

void WidgetCommands::clock(const Call& call) {
    const TimeOfDay time{call.lowUnsigned(2), call.highUnsigned(2), call.lowUnsigned(3),
                         call.highUnsigned(3)};
    draw([&](WidgetWriter& writer) {
        writer.clock(roundPlaceOf(call), call.highUnsigned(1), time);
    });
}

void WidgetCommands::dial(const Call& call) {
    draw([&](WidgetWriter& writer) {
        writer.dial(roundPlaceOf(call), call.highUnsigned(1), call.lowUnsigned(2));
    });
}

void WidgetCommands::setFont(const Call& call) {
    checkHandle(call[0]);
    m_fonts.setFont(call[0], call[1], 0);
}

// Unlike SETFONT this sets up the handle itself.
void WidgetCommands::setFont2(const Call& call) {
    checkHandle(call[0]);
    m_fonts.setFont(call[0], call[1], call[2]);
    m_machine.list.put(m_fonts.handleSetup(call[0], call[0]));
}

void WidgetCommands::romFont(const Call& call) {
    checkHandle(call[0]);
    if (!m_fonts.setRomFont(call[0], call[1])) {
        fault("no ROM font " + std::to_string(call[1]));
    }
    m_machine.list.put(m_fonts.handleSetup(call[0], call[0]));
}

void WidgetCommands::resetFonts(const Call&) {
    m_fonts.reset();
}

void WidgetCommands::setScratch(const Call& call) {
    checkHandle(call[0]);
    m_fonts.setScratchHandle(call[0]);
}

void WidgetCommands::setBase(const Call& call) {
    m_base = call[0] >= 2 && call[0] <= highestBase ? call[0] : decimal;
}

} // namespace controller
