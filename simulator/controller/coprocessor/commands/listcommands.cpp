#include "listcommands.h"

#include "commandfault.h"
#include "dlwords.h"
#include "flashcommands.h"

#include <string>

namespace controller {

namespace {

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

void ListCommands::addTo(CommandSet& set) {
    set.add(Command::DlStart, *this, &ListCommands::dlStart);
    set.add(Command::Swap, *this, &ListCommands::swap);
    set.add(Command::Sync, *this, &ListCommands::sync);
    set.add(Command::Interrupt, *this, &ListCommands::interrupt);
    set.add(Command::Append, *this, &ListCommands::append);
    set.add(Command::AppendF, *this, &ListCommands::appendF);
    set.add(Command::SetBitmap, *this, &ListCommands::setBitmap);
    set.add(Command::Nop, *this, &ListCommands::nothing);
    set.add(Command::ClearCache, *this, &ListCommands::nothing);
}

Outcome ListCommands::dlStart(const Call&) {
    return [this] {
        if (m_machine.port.isSwapPending()) {
            return Progress::Waiting;
        }
        m_animations.stop();
        m_machine.list.restart();
        return Progress::Done;
    };
}

void ListCommands::swap(const Call&) {
    m_machine.bus.write32(registerInfo(Register::DlSwap).address(m_machine.generation),
                          swapAtFrame);
}

Outcome ListCommands::sync(const Call&) {
    return [this, frame = m_machine.port.framesScanned()] {
        const bool sameFrame =
            m_machine.port.isScanning() && frame == m_machine.port.framesScanned();
        return sameFrame ? Progress::Waiting : Progress::Done;
    };
}

void ListCommands::interrupt(const Call& call) {
    m_machine.port.interruptAfter(call[0] * millisecond);
}

void ListCommands::appendBytes(const std::function<std::uint8_t(std::uint32_t)>& read,
                               std::uint32_t count) {
    const std::uint32_t words = count / 4;
    if (words > displayListWords - m_machine.list.length()) {
        fault("display list overflow");
    }
    for (std::uint32_t i = 0; i < words; ++i) {
        std::uint32_t word = 0;
        for (std::uint32_t byte = 0; byte < 4; ++byte) {
            word |= static_cast<std::uint32_t>(read(i * 4 + byte)) << 8 * byte;
        }
        m_machine.list.put(word);
    }
}

void ListCommands::append(const Call& call) {
    appendBytes(
        [&](std::uint32_t i) { return m_machine.memory.read8((call[0] + i) & addressMask); },
        call[1]);
}

// APPEND from flash.
void ListCommands::appendF(const Call& call) {
    if (call[0] % flashReadAlignment != 0) {
        fault("flash address is not a multiple of 64");
    }
    if (requireAttachedFlash(m_machine, call)) {
        appendBytes([&](std::uint32_t i) { return m_machine.flash.read(std::size_t{call[0]} + i); },
                    call[1]);
    }
}

void ListCommands::setBitmap(const Call& call) {
    const std::uint32_t bitmapFormat = call.lowUnsigned(1);
    const std::uint32_t width = call.highUnsigned(1);
    const std::uint32_t height = call.lowUnsigned(2);
    const std::uint32_t stride = strideOf(bitmapFormat, width);
    if (stride == 0 && width != 0) {
        m_machine.port.complain("SETBITMAP: format " + std::to_string(bitmapFormat) +
                                " is not modelled");
        return;
    }
    m_machine.list.put({dl::bitmapSource(call[0]), dl::bitmapLayout(bitmapFormat, stride, height),
                        dl::bitmapLayoutH(stride, height), dl::bitmapSize(width, height),
                        dl::bitmapSizeH(width, height)});
}

} // namespace controller
