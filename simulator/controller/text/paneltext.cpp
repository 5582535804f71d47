#include "paneltext.h"

#include "fontrom.h"

#include <algorithm>
#include <tuple>

namespace controller {

namespace {

int advanceOf(Generation generation, const DrawnCharacter& character) {
    if (character.handle < firstRomFont) {
        return 0;
    }
    return romFont(generation, character.handle).widths[character.cell % 128U];
}

auto position(const DrawnCharacter& character) {
    return std::make_tuple(character.y, character.handle, character.x, character.cell);
}

struct Run {
    int x = 0;
    int y = 0;
    std::string text;
};

} // namespace

std::vector<std::string> stringsOf(Generation generation, const Frame& frame) {
    std::vector<DrawnCharacter> characters = frame.characters;
    std::sort(
        characters.begin(), characters.end(),
        [](const DrawnCharacter& a, const DrawnCharacter& b) { return position(a) < position(b); });
    std::vector<Run> runs;
    int nextX = 0;
    const DrawnCharacter* previous = nullptr;
    for (const DrawnCharacter& character : characters) {
        if (previous && position(*previous) == position(character)) {
            continue;
        }
        const bool goesOn = previous && previous->y == character.y &&
                            previous->handle == character.handle && character.x == nextX;
        if (!goesOn) {
            runs.push_back({character.x, character.y, {}});
        }
        runs.back().text += static_cast<char>(character.cell);
        nextX = character.x + advanceOf(generation, character);
        previous = &character;
    }
    std::stable_sort(runs.begin(), runs.end(), [](const Run& a, const Run& b) {
        return std::tie(a.y, a.x) < std::tie(b.y, b.x);
    });
    std::vector<std::string> strings;
    strings.reserve(runs.size());
    for (Run& run : runs) {
        strings.push_back(std::move(run.text));
    }
    return strings;
}

} // namespace controller
