#include "coprocessor.h"
#include "dlwords.h"
#include "fontrom.h"
#include "formattext.h"
#include "gradient.h"

// The coprocessor's commands that add to the display list.

namespace controller {

namespace {

constexpr std::uint32_t lastHandle = 31;
constexpr unsigned decimal = 10;
// CMD_SWAP asks for the swap at the end of the frame.
constexpr std::uint32_t swapAtFrame = 2;

struct FormatSize {
    std::uint32_t format;
    std::uint32_t bitsPerPixel;
};

constexpr FormatSize formatSizes[] = {
    {format::Argb1555, 16},   {format::L1, 1},           {format::L4, 4},
    {format::L8, 8},          {format::Rgb332, 8},       {format::Argb2, 8},
    {format::Argb4, 16},      {format::Rgb565, 16},      {format::Paletted, 8},
    {format::Paletted565, 8}, {format::Paletted4444, 8}, {format::Paletted8, 8},
    {format::L2, 2},
};

// Bytes a line of `width` pixels takes; 0 for a format that is none.
std::uint32_t strideOf(std::uint32_t bitmapFormat, std::uint32_t width) {
    for (const FormatSize& known : formatSizes) {
        if (known.format == bitmapFormat) {
            return (width * known.bitsPerPixel + 7) / 8;
        }
    }
    return 0;
}

} // namespace

template<typename Draw>
Coprocessor::Outcome Coprocessor::drawWidget(Draw draw) {
    Words words;
    WidgetWriter writer(words, m_generation, m_colors);
    draw(writer);
    putWords(words);
    return Outcome::Done;
}

Font Coprocessor::fontOf(std::uint32_t number) const {
    std::optional<Font> font = m_fonts.find(number);
    if (!font) {
        fault("no font " + std::to_string(number));
    }
    return *std::move(font);
}

void Coprocessor::checkHandle(std::uint32_t handle) const {
    if (handle > lastHandle) {
        fault("bitmap handle " + std::to_string(handle) + " out of range");
    }
}

std::string Coprocessor::formattedText(unsigned options) const {
    if (m_generation != Generation::E3 || !(options & option::format)) {
        return m_text;
    }
    const auto string = [this](std::uint32_t address) {
        std::string text;
        constexpr std::size_t longest = 1024;
        for (std::uint8_t c = 0; text.size() < longest && (c = m_memory.read8(address)) != 0;
             ++address) {
            text += static_cast<char>(c);
        }
        return text;
    };
    return formatText(m_text, m_formatArguments, string);
}

Coprocessor::Outcome Coprocessor::dlStart() {
    if (m_port.isSwapPending()) {
        return Outcome::Wait;
    }
    stopAnimations();
    m_listFull = false;
    m_registers.set(Register::CmdDl, 0);
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::swap() {
    m_bus.write32(registerInfo(Register::DlSwap).address(m_generation), swapAtFrame);
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::foregroundColor() {
    m_colors.foreground = argument(0) & 0xFFFFFFU;
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::backgroundColor() {
    m_colors.background = argument(0) & 0xFFFFFFU;
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::gradientColor() {
    m_colors.gradient = argument(0) & 0xFFFFFFU;
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::gradient() {
    Gradient gradient;
    gradient.x0 = low(0);
    gradient.y0 = high(0);
    gradient.rgb0 = argument(1);
    gradient.x1 = low(2);
    gradient.y1 = high(2);
    gradient.rgb1 = argument(3);
    Words words;
    appendGradient(words, m_generation, romRamp(m_generation), m_fonts.scratchHandle(),
                   panelWidth(), panelHeight(), gradient);
    putWords(words);
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::text() {
    const unsigned options = highUnsigned(1);
    if (m_generation == Generation::E3 && (options & option::fill)) {
        m_port.complain("option FILL of TEXT is not modelled");
    }
    return drawWidget([&](WidgetWriter& writer) {
        writer.text(fontOf(lowUnsigned(1)), low(0), high(0), options, formattedText(options));
    });
}

Coprocessor::Outcome Coprocessor::number() {
    const unsigned options = highUnsigned(1);
    return drawWidget([&](WidgetWriter& writer) {
        writer.text(fontOf(lowUnsigned(1)), low(0), high(0), options,
                    numberText(argument(2), options, m_base));
    });
}

Coprocessor::Outcome Coprocessor::button() {
    const unsigned options = highUnsigned(2);
    return drawWidget([&](WidgetWriter& writer) {
        writer.button({low(0), high(0), low(1), high(1)}, fontOf(lowUnsigned(2)), options,
                      formattedText(options));
    });
}

Coprocessor::Outcome Coprocessor::keys() {
    return drawWidget([&](WidgetWriter& writer) {
        writer.keys({low(0), high(0), low(1), high(1)}, fontOf(lowUnsigned(2)), highUnsigned(2),
                    m_text);
    });
}

Coprocessor::Outcome Coprocessor::progress() {
    return drawWidget([&](WidgetWriter& writer) {
        writer.progress({low(0), high(0), low(1), high(1)}, lowUnsigned(2), highUnsigned(2),
                        lowUnsigned(3));
    });
}

Coprocessor::Outcome Coprocessor::slider() {
    return drawWidget([&](WidgetWriter& writer) {
        writer.slider({low(0), high(0), low(1), high(1)}, lowUnsigned(2), highUnsigned(2),
                      lowUnsigned(3));
    });
}

Coprocessor::Outcome Coprocessor::scrollbar() {
    return drawWidget([&](WidgetWriter& writer) {
        writer.scrollbar({low(0), high(0), low(1), high(1)}, lowUnsigned(2), highUnsigned(2),
                         lowUnsigned(3), highUnsigned(3));
    });
}

Coprocessor::Outcome Coprocessor::toggle() {
    const unsigned options = lowUnsigned(2);
    return drawWidget([&](WidgetWriter& writer) {
        writer.toggle(low(0), high(0), low(1), fontOf(highUnsigned(1)), options, highUnsigned(2),
                      formattedText(options));
    });
}

Coprocessor::Outcome Coprocessor::gauge() {
    return drawWidget([&](WidgetWriter& writer) {
        writer.gauge(low(0), high(0), low(1), highUnsigned(1), lowUnsigned(2), highUnsigned(2),
                     lowUnsigned(3), highUnsigned(3));
    });
}

Coprocessor::Outcome Coprocessor::clock() {
    return drawWidget([&](WidgetWriter& writer) {
        writer.clock(low(0), high(0), low(1), highUnsigned(1), lowUnsigned(2), highUnsigned(2),
                     lowUnsigned(3), highUnsigned(3));
    });
}

Coprocessor::Outcome Coprocessor::dial() {
    return drawWidget([&](WidgetWriter& writer) {
        writer.dial(low(0), high(0), low(1), highUnsigned(1), lowUnsigned(2));
    });
}

Coprocessor::Outcome Coprocessor::setBitmap() {
    const std::uint32_t bitmapFormat = lowUnsigned(1);
    const std::uint32_t width = highUnsigned(1);
    const std::uint32_t height = lowUnsigned(2);
    const std::uint32_t stride = strideOf(bitmapFormat, width);
    if (stride == 0 && width != 0) {
        m_port.complain("SETBITMAP: format " + std::to_string(bitmapFormat) + " is not modelled");
        return Outcome::Done;
    }
    putWords({dl::bitmapSource(argument(0)), dl::bitmapLayout(bitmapFormat, stride, height),
              dl::bitmapLayoutH(stride, height), dl::bitmapSize(width, height),
              dl::bitmapSizeH(width, height)});
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::setFont() {
    checkHandle(argument(0));
    m_fonts.setFont(argument(0), argument(1), 0);
    return Outcome::Done;
}

// Unlike SETFONT this sets up the handle itself.
Coprocessor::Outcome Coprocessor::setFont2() {
    checkHandle(argument(0));
    m_fonts.setFont(argument(0), argument(1), argument(2));
    putWords(m_fonts.handleSetup(argument(0), argument(0)));
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::romFont() {
    checkHandle(argument(0));
    if (!m_fonts.setRomFont(argument(0), argument(1))) {
        fault("no ROM font " + std::to_string(argument(1)));
    }
    putWords(m_fonts.handleSetup(argument(0), argument(0)));
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::resetFonts() {
    m_fonts.reset();
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::setScratch() {
    checkHandle(argument(0));
    m_fonts.setScratchHandle(argument(0));
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::setBase() {
    m_base = argument(0) >= 2 && argument(0) <= 36 ? argument(0) : decimal;
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::setRotate() {
    m_bus.write32(registerInfo(Register::Rotate).address(m_generation), argument(0));
    return Outcome::Done;
}

} // namespace controller
