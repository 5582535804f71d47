#include "paneltext.h"

#include "fontrom.h"

#include <algorithm>
#include <tuple>

namespace controller {

namespace {

bool hasRomFont(const DrawnCharacter& character) {
    return character.handle >= firstRomFont;
}

int advanceOf(Generation generation, const DrawnCharacter& character) {
    return hasRomFont(character)
               ? romFont(generation, character.handle).widths[character.cell % 128U]
               : 0;
}

int heightOf(Generation generation, const DrawnCharacter& character) {
    return hasRomFont(character) ? static_cast<int>(romFont(generation, character.handle).height)
                                 : 0;
}

auto position(const DrawnCharacter& character) {
    return std::make_tuple(character.y, character.handle, character.x, character.cell);
}

// A string that grows by a character at its end.
class Run {
public:
    Run(Generation generation, const DrawnCharacter& first)
        : m_generation(generation), m_first(first) {
        m_placed.x = first.x;
        m_placed.y = first.y;
        m_placed.height = heightOf(generation, first);
    }

    bool continuesWith(const DrawnCharacter& next) const {
        return next.y == m_first.y && next.handle == m_first.handle && next.x == m_nextX;
    }

    void add(const DrawnCharacter& character) {
        m_placed.text += static_cast<char>(character.cell);
        m_nextX = character.x + advanceOf(m_generation, character);
        if (character.cell == ' ') {
            return;
        }
        if (!m_hasInk) {
            m_placed.x = character.x;
            m_hasInk = true;
        }
        m_placed.width = m_nextX - m_placed.x;
    }

    const PlacedText& placed() const { return m_placed; }

private:
    Generation m_generation;
    DrawnCharacter m_first;
    PlacedText m_placed;
    int m_nextX = 0;
    bool m_hasInk = false;
};

} // namespace

std::vector<PlacedText> stringsOf(Generation generation, const Frame& frame) {
    std::vector<DrawnCharacter> characters = frame.characters;
    std::sort(
        characters.begin(), characters.end(),
        [](const DrawnCharacter& a, const DrawnCharacter& b) { return position(a) < position(b); });
    std::vector<Run> runs;
    const DrawnCharacter* previous = nullptr;
    for (const DrawnCharacter& character : characters) {
        if (previous && position(*previous) == position(character)) {
            continue;
        }
        if (!previous || !runs.back().continuesWith(character)) {
            runs.emplace_back(generation, character);
        }
        runs.back().add(character);
        previous = &character;
    }
    std::vector<PlacedText> strings;
    strings.reserve(runs.size());
    for (const Run& run : runs) {
        strings.push_back(run.placed());
    }
    std::stable_sort(strings.begin(), strings.end(), [](const PlacedText& a, const PlacedText& b) {
        return std::tie(a.y, a.x) < std::tie(b.y, b.x);
    });
    return strings;
}

} // namespace controller
