// Makes ../romfontdata.cpp, the glyphs of the controller's built-in fonts, from outline fonts.
//
//     makeromfonts ROBOTO.ttf MONO.ttf > ../romfontdata.cpp
//     makeromfonts --sheet FONT ROBOTO.ttf MONO.ttf > sheet.pgm
//
// The second form draws every character of one font, three times enlarged, for looking at.
// Run by hand when a font shall change; see README.md. Not part of the normal build.

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr int firstCharacter = 32;
constexpr int lastCharacter = 126;
constexpr int black = 15; // full ink; L1 fonts use 0 and 15 only

enum class Face { Proportional, Monospaced };
enum class Depth { L1, L4 };

// What the chip's documentation says of a font, and what we choose: the font face.
struct Recipe {
    int number;
    int height;
    int widest; // advance of the widest character
    Depth depth;
    Face face;
};

constexpr std::array<Recipe, 19> recipes{{
    {16, 8, 8, Depth::L1, Face::Monospaced},      {17, 8, 8, Depth::L1, Face::Monospaced},
    {18, 16, 8, Depth::L1, Face::Monospaced},     {19, 16, 8, Depth::L1, Face::Monospaced},
    {20, 13, 11, Depth::L1, Face::Proportional},  {21, 17, 13, Depth::L1, Face::Proportional},
    {22, 20, 17, Depth::L1, Face::Proportional},  {23, 22, 18, Depth::L1, Face::Proportional},
    {24, 29, 25, Depth::L1, Face::Proportional},  {25, 38, 34, Depth::L1, Face::Proportional},
    {26, 16, 13, Depth::L4, Face::Proportional},  {27, 20, 15, Depth::L4, Face::Proportional},
    {28, 25, 19, Depth::L4, Face::Proportional},  {29, 28, 21, Depth::L4, Face::Proportional},
    {30, 36, 28, Depth::L4, Face::Proportional},  {31, 49, 37, Depth::L4, Face::Proportional},
    {32, 63, 49, Depth::L4, Face::Proportional},  {33, 83, 63, Depth::L4, Face::Proportional},
    {34, 108, 82, Depth::L4, Face::Proportional},
}};

// One character in its cell: `widest` x `height` pixels of ink, 0 to 15.
struct Glyph {
    int advance = 0;
    std::vector<int> ink;
};

struct Font {
    Recipe recipe;
    std::vector<Glyph> glyphs; // from firstCharacter on
};

// Index of (x, y) in rows of `width`.
std::size_t indexOf(int x, int y, int width) {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
           static_cast<std::size_t>(x);
}

[[noreturn]] void fail(const std::string& text) {
    std::fprintf(stderr, "makeromfonts: %s\n", text.c_str());
    std::exit(1);
}

// --- sizes, in 26.6 pixels per em

struct Size {
    FT_F26Dot6 horizontal;
    FT_F26Dot6 vertical;
};

int hinting(const Recipe& recipe) {
    if (recipe.face == Face::Monospaced) {
        return FT_LOAD_TARGET_MONO; // the face's own instructions
    }
    return FT_LOAD_FORCE_AUTOHINT |
           (recipe.depth == Depth::L1 ? FT_LOAD_TARGET_MONO : FT_LOAD_TARGET_LIGHT);
}

void setSize(FT_Face face, const Size& size) {
    if (FT_Set_Char_Size(face, size.horizontal, size.vertical, 72, 72) != 0) {
        fail("cannot scale the face");
    }
}

void load(FT_Face face, int character, int flags) {
    if (FT_Load_Char(face, static_cast<FT_ULong>(character), flags) != 0) {
        fail("no glyph for character " + std::to_string(character));
    }
}

// The unhinted advance in 26.6 pixels.
int naturalAdvance(FT_Face face, int character) {
    load(face, character, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP);
    return static_cast<int>((face->glyph->linearHoriAdvance + 512) >> 10);
}

int roundedPixels(int fixed) {
    return (fixed + 32) >> 6;
}

int widest(FT_Face face, const Size& size) {
    setSize(face, size);
    int result = 0;
    for (int c = firstCharacter; c <= lastCharacter; ++c) {
        result = std::max(result, roundedPixels(naturalAdvance(face, c)));
    }
    return result;
}

// The height of the cell is the face's own line height, except that the small one-bit fonts give
// up some of the space between lines for legibility. Horizontally the face is stretched the
// little it takes for the widest character to have the documented width.
Size sizeFor(FT_Face face, const Recipe& recipe) {
    if (recipe.face == Face::Monospaced) {
        const FT_F26Dot6 size = recipe.height == 8 ? 7 * 64 : 13 * 64;
        return {size, size};
    }
    const double lineHeight =
        static_cast<double>(face->ascender - face->descender) / face->units_per_EM;
    const double shareOfCell = recipe.depth == Depth::L1 ? 1.06 : 1.0;
    Size size{};
    size.vertical = static_cast<FT_F26Dot6>(static_cast<double>(recipe.height) * 64.0 / lineHeight *
                                            shareOfCell);
    constexpr FT_F26Dot6 step = 4;
    for (size.horizontal = size.vertical; widest(face, size) > recipe.widest;) {
        size.horizontal -= step;
    }
    while (widest(face, size) < recipe.widest) {
        size.horizontal += step;
    }
    return size;
}

// --- drawing

struct Bitmap {
    int left;
    int top; // above the baseline
    int width;
    int height;
    std::vector<int> ink;
};

int inkAt(const FT_Bitmap& bitmap, int x, int y) {
    const unsigned char* row = bitmap.buffer + static_cast<std::ptrdiff_t>(y) * bitmap.pitch;
    if (bitmap.pixel_mode == FT_PIXEL_MODE_MONO) {
        return (row[x / 8] >> (7 - x % 8) & 1) * black;
    }
    return (row[x] * black + 127) / 255;
}

Bitmap drawn(FT_GlyphSlot slot, Depth depth) {
    if (FT_Render_Glyph(slot, depth == Depth::L1 ? FT_RENDER_MODE_MONO : FT_RENDER_MODE_NORMAL) !=
        0) {
        fail("cannot render");
    }
    Bitmap result{slot->bitmap_left,
                  slot->bitmap_top,
                  static_cast<int>(slot->bitmap.width),
                  static_cast<int>(slot->bitmap.rows),
                  {}};
    for (int y = 0; y < result.height; ++y) {
        for (int x = 0; x < result.width; ++x) {
            result.ink.push_back(inkAt(slot->bitmap, x, y));
        }
    }
    return result;
}

// Capitals stand in the middle of the cell, so that text centred by its cell looks centred.
int baselineFor(FT_Face face, const Recipe& recipe) {
    load(face, 'H', hinting(recipe));
    const Bitmap capital = drawn(face->glyph, recipe.depth);
    return capital.top + (recipe.height - capital.top) / 2;
}

// False when ink falls outside the cell.
bool place(const Bitmap& bitmap, const Recipe& recipe, int baseline, Glyph& glyph) {
    const int left = std::clamp(bitmap.left, 0, std::max(0, recipe.widest - bitmap.width));
    for (int y = 0; y < bitmap.height; ++y) {
        for (int x = 0; x < bitmap.width; ++x) {
            const int ink = bitmap.ink[indexOf(x, y, bitmap.width)];
            const int column = left + x;
            const int line = baseline - bitmap.top + y;
            if (ink == 0) {
                continue;
            }
            if (line < 0 || line >= recipe.height || column >= recipe.widest) {
                return false;
            }
            glyph.ink[indexOf(column, line, recipe.widest)] = ink;
        }
    }
    return true;
}

bool makeGlyph(FT_Face face, const Recipe& recipe, int baseline, int character, Glyph& glyph) {
    const int natural = naturalAdvance(face, character);
    glyph.advance = recipe.face == Face::Monospaced ? recipe.widest : roundedPixels(natural);
    glyph.ink.assign(indexOf(0, recipe.height, recipe.widest), 0);
    load(face, character, hinting(recipe));
    if (recipe.depth == Depth::L4) {
        // Rounding the advance must not move the glyph off the middle of its room.
        FT_Outline_Translate(&face->glyph->outline, (glyph.advance * 64 - natural) / 2, 0);
    }
    return place(drawn(face->glyph, recipe.depth), recipe, baseline, glyph);
}

bool makeGlyphs(FT_Face face, const Recipe& recipe, int baseline, std::vector<Glyph>& glyphs) {
    glyphs.clear();
    for (int c = firstCharacter; c <= lastCharacter; ++c) {
        if (!makeGlyph(face, recipe, baseline, c, glyphs.emplace_back())) {
            return false;
        }
    }
    return true;
}

// The largest size up to the wanted one whose ink fits the cell. The fixed-size one-bit fonts
// cannot shrink and give up the centring instead.
Font makeFont(FT_Face face, const Recipe& recipe) {
    Font font{recipe, {}};
    Size size = sizeFor(face, recipe);
    setSize(face, size);
    int baseline = baselineFor(face, recipe);
    while (!makeGlyphs(face, recipe, baseline, font.glyphs)) {
        if (recipe.face == Face::Monospaced) {
            --baseline;
        } else {
            size.vertical -= 4;
            setSize(face, size);
            baseline = baselineFor(face, recipe);
        }
        if (baseline <= 0) {
            fail("font " + std::to_string(recipe.number) + " does not fit its cell");
        }
    }
    std::fprintf(stderr, "font %d: %.2f x %.2f pixels per em, baseline %d\n", recipe.number,
                 static_cast<double>(size.horizontal) / 64, static_cast<double>(size.vertical) / 64,
                 baseline);
    return font;
}

// --- output

// Runs of equal ink: a letter, 'a' for none to 'p' for full, then the length unless it is 1.
std::string packed(const std::vector<int>& ink) {
    std::string text;
    for (std::size_t i = 0; i < ink.size();) {
        std::size_t end = i;
        while (end < ink.size() && ink[end] == ink[i]) {
            ++end;
        }
        text += static_cast<char>('a' + ink[i]);
        if (end - i > 1) {
            text += std::to_string(end - i);
        }
        i = end;
    }
    return text;
}

void writeLiteral(const std::string& text) {
    constexpr std::size_t charactersPerLine = 90;
    for (std::size_t i = 0; i < text.size(); i += charactersPerLine) {
        std::printf("\n     \"%s\"", text.substr(i, charactersPerLine).c_str());
    }
}

void writeSource(const std::vector<Font>& fonts) {
    std::printf("// Made by fonts/makeromfonts.cpp from Roboto and DejaVu Sans Mono: do not edit.\n"
                "// The licences of both are in fonts/.\n\n"
                "#include \"romfontdata.h\"\n\n"
                "// clang-format off\n\n"
                "namespace controller {\n\n"
                "const std::array<PackedFont, packedFontCount> packedFonts{{\n");
    for (const Font& font : fonts) {
        std::printf("    {%d, %d, %d, %d, {{\n", font.recipe.number, font.recipe.widest,
                    font.recipe.height, font.recipe.depth == Depth::L1 ? 1 : 4);
        for (const Glyph& glyph : font.glyphs) {
            std::printf("    {%d,", glyph.advance);
            writeLiteral(packed(glyph.ink));
            std::printf("},\n");
        }
        std::printf("    }}},\n");
    }
    std::printf("}};\n\n} // namespace controller\n");
}

void writeSheet(const Font& font) {
    constexpr int perRow = 19;
    constexpr int zoom = 3;
    const int cellWidth = font.recipe.widest + 1;
    const int cellHeight = font.recipe.height + 1;
    const int rows = (static_cast<int>(font.glyphs.size()) + perRow - 1) / perRow;
    std::printf("P5 %d %d 255\n", perRow * cellWidth * zoom, rows * cellHeight * zoom);
    for (int y = 0; y < rows * cellHeight * zoom; ++y) {
        for (int x = 0; x < perRow * cellWidth * zoom; ++x) {
            const int column = x / zoom;
            const int line = y / zoom;
            const auto index = indexOf(column / cellWidth, line / cellHeight, perRow);
            const int u = column % cellWidth;
            const int v = line % cellHeight;
            int grey = 255;
            if (u == font.recipe.widest || v == font.recipe.height) {
                grey = 200;
            } else if (index < font.glyphs.size()) {
                const Glyph& glyph = font.glyphs[index];
                grey = 255 - 15 * glyph.ink[indexOf(u, v, font.recipe.widest)];
                grey = u >= glyph.advance ? grey * 7 / 8 : grey;
            }
            std::putchar(grey);
        }
    }
}

FT_Face openFace(FT_Library library, const char* file) {
    FT_Face face = nullptr;
    if (FT_New_Face(library, file, 0, &face) != 0) {
        fail(std::string("cannot open ") + file);
    }
    return face;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    int sheet = 0;
    if (arguments.size() == 4 && arguments[0] == "--sheet") {
        sheet = std::atoi(arguments[1].c_str());
        arguments.erase(arguments.begin(), arguments.begin() + 2);
    }
    if (arguments.size() != 2) {
        fail("usage: makeromfonts [--sheet FONT] ROBOTO.ttf MONO.ttf");
    }
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) {
        fail("cannot start FreeType");
    }
    FT_Face proportional = openFace(library, arguments[0].c_str());
    FT_Face monospaced = openFace(library, arguments[1].c_str());
    std::vector<Font> fonts;
    for (const Recipe& recipe : recipes) {
        if (sheet == 0 || sheet == recipe.number) {
            fonts.push_back(
                makeFont(recipe.face == Face::Proportional ? proportional : monospaced, recipe));
        }
    }
    if (sheet == 0) {
        writeSource(fonts);
    } else if (!fonts.empty()) {
        writeSheet(fonts.front());
    }
    return 0;
}
