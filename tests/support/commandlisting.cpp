#include "commandlisting.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <sstream>

namespace {

std::string hex(uint32_t value, int digits) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%0*X", digits, value);
    return text.data();
}

std::string primitiveName(uint32_t primitive) {
    static constexpr std::array<const char*, 9> names{
        "BITMAPS",      "POINTS",       "LINES",        "LINE_STRIP", "EDGE_STRIP_R",
        "EDGE_STRIP_L", "EDGE_STRIP_A", "EDGE_STRIP_B", "RECTS",
    };
    const bool known = primitive >= 1 && primitive <= names.size();
    return known ? names.at(primitive - 1) : std::to_string(primitive);
}

std::string optionNames(uint32_t options) {
    struct Option {
        uint32_t bits;
        const char* name;
    };
    static constexpr std::array<Option, 5> known{{{0x600, "CENTER"},
                                                  {0x200, "CENTERX"},
                                                  {0x400, "CENTERY"},
                                                  {0x800, "RIGHTX"},
                                                  {0x100, "FLAT"}}};
    std::string names;
    const auto add = [&names](const std::string& name) {
        names += (names.empty() ? "" : "|") + name;
    };
    for (const Option& option : known) {
        if ((options & option.bits) == option.bits) {
            add(option.name);
            options &= ~option.bits;
        }
    }
    if (options != 0 || names.empty()) {
        add(std::to_string(options));
    }
    return names;
}

// The name of a display-list instruction and the widths of its fields, first the highest.
struct Instruction {
    uint32_t opcode; // bits 24..31
    const char* name;
    std::vector<int> fields;
};

const Instruction* findInstruction(uint32_t word) {
    static const std::vector<Instruction> instructions{
        {0x00, "DISPLAY", {}},
        {0x03, "TAG", {8}},
        {0x05, "BITMAP_HANDLE", {5}},
        {0x0D, "POINT_SIZE", {13}},
        {0x0E, "LINE_WIDTH", {12}},
        {0x14, "TAG_MASK", {1}},
        {0x1B, "SCISSOR_XY", {11, 11}},
        {0x1C, "SCISSOR_SIZE", {12, 12}},
        {0x21, "END", {}},
        {0x2A, "PALETTE_SOURCE", {22}},
    };
    for (const Instruction& instruction : instructions) {
        int bits = 0;
        for (const int width : instruction.fields) {
            bits += width;
        }
        const uint32_t rest = word & 0xFFFFFFU;
        if (instruction.opcode == word >> 24 && rest >> bits == 0) {
            return &instruction;
        }
    }
    return nullptr;
}

class Listing {
public:
    explicit Listing(const std::vector<uint32_t>& words) : m_words(words) {}

    std::string text() {
        while (m_next < m_words.size()) {
            const uint32_t word = next();
            if (word >> 30 == 2) {
                listVertex(word);
            } else {
                endVertices();
                list(word);
            }
        }
        endVertices();
        return m_text.str();
    }

private:
    // Past the end of the words: a value that shows in the listing.
    uint32_t next() { return m_next < m_words.size() ? m_words[m_next++] : 0xDEADDEADU; }

    void listVertex(uint32_t word) {
        const uint32_t x = (word >> 21) & 0x1FFU;
        const uint32_t y = (word >> 12) & 0x1FFU;
        const uint32_t bitmap = word & 0xFFFU;
        m_text << (m_inVertices ? " (" : "VERTEX2II (") << x << "," << y;
        if (bitmap != 0) {
            m_text << ",handle " << (bitmap >> 7) << ",cell " << (bitmap & 0x7FU);
        }
        m_text << ")";
        m_inVertices = true;
    }

    void endVertices() {
        if (m_inVertices) {
            m_text << "\n";
        }
        m_inVertices = false;
    }

    void list(uint32_t word) {
        if (word >> 8 == 0xFFFFFFU) {
            listCommand(word & 0xFFU);
        } else if (word >> 24 == 0x04) {
            m_text << "COLOR_RGB " << hex(word & 0xFFFFFFU, 6);
        } else if (word >> 4 == 0x1F00000U) {
            m_text << "BEGIN " << primitiveName(word & 0xFU);
        } else if (const Instruction* instruction = findInstruction(word)) {
            listInstruction(*instruction, word);
        } else {
            m_text << "WORD " << hex(word, 8);
        }
        m_text << "\n";
    }

    void listInstruction(const Instruction& instruction, uint32_t word) {
        m_text << instruction.name;
        int shift = 0;
        for (const int width : instruction.fields) {
            shift += width;
        }
        for (const int width : instruction.fields) {
            shift -= width;
            m_text << " " << ((word >> shift) & ((1U << width) - 1));
        }
    }

    void listCommand(uint32_t code) {
        switch (code) {
        case 0x00:
            m_text << "DLSTART";
            break;
        case 0x01:
            m_text << "SWAP";
            break;
        case 0x09:
            m_text << "BGCOLOR";
            color();
            break;
        case 0x0A:
            m_text << "FGCOLOR";
            color();
            break;
        case 0x0B:
            m_text << "GRADIENT";
            pair();
            color();
            pair();
            color();
            break;
        case 0x0C:
            m_text << "TEXT";
            pair();
            fontAndOptions();
            string();
            break;
        case 0x0D:
            m_text << "BUTTON";
            pair();
            pair();
            fontAndOptions();
            string();
            break;
        case 0x0E:
            m_text << "KEYS";
            pair();
            pair();
            fontAndOptions();
            string();
            break;
        case 0x16:
            m_text << "SPINNER";
            pair();
            pair();
            break;
        case 0x1D:
            m_text << "MEMCPY";
            numbers(3);
            break;
        case 0x1E:
            m_text << "APPEND";
            numbers(2);
            break;
        case 0x21:
            m_text << "BITMAP_TRANSFORM";
            numbers(13);
            break;
        case 0x22:
            m_text << "INFLATE";
            numbers(1);
            break;
        case 0x43:
            m_text << "SETBITMAP";
            numbers(1);
            pair();
            numbers(1);
            break;
        default:
            m_text << "WORD " << hex(0xFFFFFF00U | code, 8);
        }
    }

    void numbers(int count) {
        for (int i = 0; i < count; ++i) {
            m_text << " " << static_cast<int32_t>(next());
        }
    }

    void pair() {
        const uint32_t word = next();
        m_text << " " << static_cast<int16_t>(word & 0xFFFFU) << " "
               << static_cast<int16_t>(word >> 16);
    }

    void color() { m_text << " " << hex(next(), 6); }

    void fontAndOptions() {
        const uint32_t word = next();
        m_text << " font " << (word & 0xFFFFU) << " " << optionNames(word >> 16);
    }

    void string() {
        m_text << " \"";
        for (bool ended = m_next >= m_words.size(); !ended;) {
            const uint32_t word = next();
            for (int shift = 0; shift < 32 && !ended; shift += 8) {
                const char character = static_cast<char>((word >> shift) & 0xFFU);
                ended = character == '\0';
                if (!ended) {
                    m_text << character;
                }
            }
            ended = ended || m_next >= m_words.size();
        }
        m_text << "\"";
    }

    const std::vector<uint32_t>& m_words;
    std::size_t m_next = 0;
    bool m_inVertices = false;
    std::ostringstream m_text;
};

} // namespace

std::string listCommands(const std::vector<uint32_t>& words) {
    return Listing(words).text();
}
