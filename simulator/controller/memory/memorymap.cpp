#include "memorymap.h"

#include <algorithm>
#include <cstring>

namespace controller {

namespace {

// Where each region stands in the table, which is in order of use.
enum RegionIndex : std::size_t { general, ring, displayList, rom, palette, coprocessor };

std::uint32_t littleEndian(const std::uint8_t* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8U |
           static_cast<std::uint32_t>(bytes[2]) << 16U |
           static_cast<std::uint32_t>(bytes[3]) << 24U;
}

void putLittleEndian(std::uint8_t* bytes, std::uint32_t value) {
    for (int i = 0; i < 4; ++i, value >>= 8U) {
        bytes[i] = static_cast<std::uint8_t>(value);
    }
}

// A ROM of its own, where one word of it can be written (by the back door only) or the image is not
// all of it; else none.
std::vector<std::uint8_t> ownRom(const RomImage& image, const Span& span) {
    if (!span.contains(chipIdAddress) && image.base == span.base && image.size == span.size) {
        return {};
    }
    std::vector<std::uint8_t> content(span.size);
    if (span.contains(image.base)) {
        const std::size_t offset = image.base - span.base;
        std::copy_n(image.data, std::min<std::size_t>(image.size, content.size() - offset),
                    content.begin() + static_cast<std::ptrdiff_t>(offset));
    }
    return content;
}

} // namespace

MemoryMap::MemoryMap(Generation generation, const RomImage& romImage)
    : m_layout(memoryLayout(generation)), m_general(m_layout.general.size),
      m_rom(ownRom(romImage, m_layout.rom)),
      m_palette(m_layout.palette.size), m_displayLists{std::vector<std::uint8_t>(displayListBytes),
                                                       std::vector<std::uint8_t>(displayListBytes)},
      m_ring(ringBytes), m_coprocessor(m_layout.coprocessor.size) {
    const auto changesOf = [this](std::size_t index, const Span& span) {
        m_pageChanges[index].resize(pagesOf(span.size));
        return m_pageChanges[index].data();
    };
    std::uint8_t* romBytes =
        m_rom.empty() ? const_cast<std::uint8_t*>(romImage.data) // which nobody writes to
                      : m_rom.data();
    m_regions[general] = {m_layout.general, m_general.data(), true, changesOf(0, m_layout.general)};
    m_regions[ring] = {m_layout.ring, m_ring.data()};
    m_regions[rom] = {m_layout.rom, romBytes, false, changesOf(1, m_layout.rom)};
    m_regions[palette] = {m_layout.palette, m_palette.data(), true, changesOf(2, m_layout.palette)};
    m_regions[coprocessor] = {m_layout.coprocessor, m_coprocessor.data()};
    selectDisplayList();
}

void MemoryMap::clear() {
    for (std::vector<std::uint8_t>* ram :
         {m_displayLists.data(), &m_displayLists[1], &m_ring, &m_coprocessor}) {
        std::fill(ram->begin(), ram->end(), std::uint8_t{0});
    }
    m_written = 0;
    selectDisplayList();
    clear(m_regions[general]);
    clear(m_regions[palette]);
    m_cleared = m_moment;
}

void MemoryMap::clear(const Region& region) {
    for (std::size_t page = 0; page < pagesOf(region.span.size); ++page) {
        if (region.changes[page] > m_cleared) {
            std::memset(region.bytes + page * pageBytes, 0, pageBytes);
            noteChanges(region, static_cast<std::uint32_t>(page * pageBytes), pageBytes);
        }
    }
}

void MemoryMap::selectDisplayList() {
    m_regions[displayList] = {m_layout.displayList, m_displayLists[m_written].data()};
}

const MemoryMap::Region* MemoryMap::find(std::uint32_t address) const {
    for (const Region& region : m_regions) {
        if (region.span.contains(address)) {
            return &region;
        }
    }
    return nullptr;
}

void MemoryMap::noteChanges(std::uint32_t address, std::uint32_t length) {
    if (const Region* region = find(address)) {
        noteChanges(*region, address - region->span.base, length);
    }
}

void MemoryMap::noteChanges(const Region& region, std::uint32_t offset, std::uint32_t length) {
    if (region.changes == nullptr || length == 0) {
        return;
    }
    ++m_moment;
    std::fill(region.changes + offset / pageBytes,
              region.changes + (offset + length - 1) / pageBytes + 1, m_moment);
}

std::uint8_t MemoryMap::read8(std::uint32_t address) const {
    const Region* region = find(address);
    return region ? region->bytes[address - region->span.base] : std::uint8_t{0};
}

std::uint32_t MemoryMap::read32(std::uint32_t address) const {
    std::uint32_t value = 0;
    for (std::uint32_t i = 0; i < 4; ++i) {
        value |= static_cast<std::uint32_t>(read8(address + i)) << 8 * i;
    }
    return value;
}

void MemoryMap::write8(std::uint32_t address, std::uint8_t value) {
    const Region* region = find(address);
    if (!region || !region->writable) {
        return;
    }
    region->bytes[address - region->span.base] = value;
    noteChanges(*region, address - region->span.base, 1);
}

void MemoryMap::write32(std::uint32_t address, std::uint32_t value) {
    for (std::uint32_t i = 0; i < 4; ++i, value >>= 8U) {
        write8(address + i, static_cast<std::uint8_t>(value));
    }
}

void MemoryMap::putChipId(std::uint32_t word) {
    const Region* region = find(chipIdAddress);
    putLittleEndian(region->bytes + (chipIdAddress - region->span.base), word);
    noteChanges(chipIdAddress, 4);
}

MemoryMap::Stretch MemoryMap::stretchAt(std::uint32_t address) const {
    if (const Region* region = find(address)) {
        return {region->bytes + (address - region->span.base), region->writable,
                region->span.end() - address};
    }
    std::uint32_t end = addressMask + 1;
    for (const Region& region : m_regions) {
        if (region.span.size != 0 && region.span.base > address) {
            end = std::min(end, region.span.base);
        }
    }
    return {nullptr, false, end > address ? end - address : 1};
}

std::uint32_t MemoryMap::ringWord(std::uint32_t offset) const {
    return littleEndian(&m_ring[offset & (ringBytes - 4)]);
}

void MemoryMap::setRingWord(std::uint32_t offset, std::uint32_t word) {
    putLittleEndian(&m_ring[offset & (ringBytes - 4)], word);
}

std::uint32_t MemoryMap::listWord(std::size_t index) const {
    return littleEndian(&m_displayLists[m_written][index % displayListWords * 4]);
}

void MemoryMap::setListWord(std::size_t index, std::uint32_t word) {
    putLittleEndian(&m_displayLists[m_written][index % displayListWords * 4], word);
}

void MemoryMap::exchangeDisplayLists() {
    m_written = 1 - m_written;
    selectDisplayList();
}

void MemoryMap::readShownList(DisplayList& words) const {
    const std::uint8_t* bytes = m_displayLists[1 - m_written].data();
    for (std::uint32_t& word : words) {
        word = littleEndian(bytes);
        bytes += 4;
    }
}

GraphicsMemory MemoryMap::graphicsView() const {
    const auto view = [this](RegionIndex index) {
        const Region& region = m_regions[index];
        return GraphicsMemory::Region{region.span.base, region.bytes, region.span.size,
                                      region.changes};
    };
    return {view(general), view(rom), view(palette), m_moment};
}

} // namespace controller
