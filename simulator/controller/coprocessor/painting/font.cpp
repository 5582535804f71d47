#include "font.h"

#include "dlwords.h"
#include "fontrom.h"

namespace controller {

namespace {

constexpr std::uint32_t handles = 32;
constexpr std::uint32_t defaultScratchHandle = 15;

// Words of a metric block, behind the widths.
namespace field {
constexpr std::uint32_t format = 128;
constexpr std::uint32_t stride = 132;
constexpr std::uint32_t width = 136;
constexpr std::uint32_t height = 140;
constexpr std::uint32_t pixels = 144;
} // namespace field

} // namespace

int Font::widthOf(const std::string& text) const {
    int width = 0;
    for (const char c : text) {
        width += widthOf(static_cast<unsigned char>(c));
    }
    return width;
}

std::string brokenText(const Font& font, const std::string& text, int width) {
    if (width <= 0) {
        return text;
    }
    std::string result = text;
    int used = 0;                          // of the line, up to here
    std::size_t blank = std::string::npos; // the line's last
    int behindBlank = 0;                   // used up to and with that
    for (std::size_t i = 0; i < result.size(); ++i) {
        if (result[i] == '\n') {
            used = 0;
            blank = std::string::npos;
            continue;
        }
        const bool isBlank = result[i] == ' ';
        used += font.widthOf(static_cast<unsigned char>(result[i]));
        if (used > width && !isBlank && blank != std::string::npos) {
            result[blank] = '\n';
            used -= behindBlank;
            blank = std::string::npos;
        }
        if (isBlank) {
            blank = i;
            behindBlank = used;
        }
    }
    return result;
}

FontTable::FontTable(Generation generation, const MemoryMap& memory)
    : m_generation(generation), m_memory(memory) {
    reset();
}

std::uint32_t FontTable::lastRomFont() const {
    return m_generation == Generation::E1 ? handles - 1 : controller::lastRomFont;
}

std::uint32_t FontTable::romBlock(std::uint32_t font) const {
    return m_memory.read32(m_memory.layout().fontTable) + (font - firstRomFont) * fontBlockBytes;
}

void FontTable::reset() {
    m_entries.fill({});
    for (std::uint32_t font = firstRomFont; font <= lastRomFont(); ++font) {
        m_entries[font] = {true, romBlock(font), 0};
    }
    m_scratchHandle = defaultScratchHandle;
}

void FontTable::setFont(std::uint32_t font, std::uint32_t block, std::uint32_t firstCharacter) {
    if (font < handles) {
        m_entries[font] = {true, block, firstCharacter};
    }
}

bool FontTable::setRomFont(std::uint32_t font, std::uint32_t romFont) {
    if (font >= handles || romFont < firstRomFont || romFont > lastRomFont()) {
        return false;
    }
    m_entries[font] = {true, romBlock(romFont), 0};
    return true;
}

std::optional<Font> FontTable::find(std::uint32_t number) const {
    if (number >= m_entries.size() || !m_entries[number].isSet) {
        return std::nullopt;
    }
    const Entry& entry = m_entries[number];
    Font font;
    for (std::uint32_t i = 0; i < font.widths.size(); ++i) {
        font.widths[i] = m_memory.read8(entry.block + i);
    }
    font.height = m_memory.read32(entry.block + field::height) & 0xFFFU;
    font.firstCharacter = entry.firstCharacter;
    font.handle = number;
    if (number >= handles) {
        font.handle = m_scratchHandle;
        font.setup = handleSetup(number, m_scratchHandle);
    }
    return font;
}

std::vector<std::uint32_t> FontTable::handleSetup(std::uint32_t font, std::uint32_t handle) const {
    if (font >= m_entries.size()) {
        return {};
    }
    const std::uint32_t block = m_entries[font].block;
    const std::uint32_t stride = m_memory.read32(block + field::stride);
    const std::uint32_t width = m_memory.read32(block + field::width);
    const std::uint32_t height = m_memory.read32(block + field::height);
    std::vector<std::uint32_t> words = {
        dl::bitmapHandle(handle), dl::bitmapSource(m_memory.read32(block + field::pixels)),
        dl::bitmapLayout(m_memory.read32(block + field::format), stride, height),
        dl::bitmapSize(width, height)};
    if (m_generation != Generation::E1) {
        words.push_back(dl::bitmapLayoutH(stride, height));
        words.push_back(dl::bitmapSizeH(width, height));
    }
    return words;
}

} // namespace controller
