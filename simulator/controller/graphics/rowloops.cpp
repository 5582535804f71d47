#include "rowloops.h"

#include "pixelmath.h"

// The loops are written once, plainly, so that compilers make vector instructions of them, and
// compiled once for each set of instructions by the functions that they are inlined into.

namespace controller {

namespace {

// Two of a pixel's channels at a time: 0 and 2 of it, or of it shifted right by 8. Sums in a
// channel stay below 2^16.
constexpr std::uint32_t twoChannels = 0x00FF00FF;
constexpr std::uint32_t twoHalves = 0x00800080;

[[gnu::always_inline]] inline std::uint32_t blended(std::uint32_t source, std::uint32_t pixel,
                                                    std::uint32_t weight) {
    const std::uint32_t rest = opaque - weight;
    std::uint32_t even = (source & twoChannels) * weight + (pixel & twoChannels) * rest + twoHalves;
    std::uint32_t odd =
        (source >> 8 & twoChannels) * weight + (pixel >> 8 & twoChannels) * rest + twoHalves;
    even = (even + (even >> 8 & twoChannels)) >> 8 & twoChannels;
    odd = (odd + (odd >> 8 & twoChannels)) & ~twoChannels;
    return even | odd;
}

[[gnu::always_inline]] inline void blendColor(std::uint32_t* pixels, std::size_t count,
                                              std::uint32_t color, const std::uint8_t* alphas) {
    const std::uint32_t colorAlpha = alphaOf(color);
    if (colorAlpha == opaque) {
        for (std::size_t i = 0; i < count; ++i) {
            pixels[i] = blended(withAlpha(color, alphas[i]), pixels[i], alphas[i]);
        }
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t alpha = multiplied(colorAlpha, alphas[i]);
        pixels[i] = blended(withAlpha(color, alpha), pixels[i], alpha);
    }
}

[[gnu::always_inline]] inline void blendAlike(std::uint32_t* pixels, std::size_t count,
                                              std::uint32_t color) {
    for (std::size_t i = 0; i < count; ++i) {
        pixels[i] = blended(color, pixels[i], alphaOf(color));
    }
}

[[gnu::always_inline]] inline void blendPixels(std::uint32_t* pixels, std::size_t count,
                                               const std::uint32_t* sources) {
    for (std::size_t i = 0; i < count; ++i) {
        pixels[i] = blended(sources[i], pixels[i], alphaOf(sources[i]));
    }
}

[[gnu::always_inline]] inline void modulate(std::uint32_t* pixels, std::size_t count,
                                            std::uint32_t color) {
    for (std::size_t i = 0; i < count; ++i) {
        pixels[i] = modulated(pixels[i], color);
    }
}

[[gnu::always_inline]] inline void tagCovered(std::uint8_t* tags, std::size_t count,
                                              const std::uint8_t* coverage, std::uint8_t tag) {
    for (std::size_t i = 0; i < count; ++i) {
        tags[i] = coverage[i] != 0 ? tag : tags[i];
    }
}

// NOLINTBEGIN(bugprone-macro-parentheses): TARGET is an attribute
// clang-format off
#define CONTROLLER_ROW_LOOPS(NAME, TARGET)                                                         \
    struct NAME {                                                                                  \
        TARGET static void color(std::uint32_t* pixels, std::size_t count, std::uint32_t color,    \
                                 const std::uint8_t* alphas) {                                     \
            blendColor(pixels, count, color, alphas);                                              \
        }                                                                                          \
        TARGET static void alike(std::uint32_t* pixels, std::size_t count, std::uint32_t color) {  \
            blendAlike(pixels, count, color);                                                      \
        }                                                                                          \
        TARGET static void each(std::uint32_t* pixels, std::size_t count,                          \
                                const std::uint32_t* sources) {                                    \
            blendPixels(pixels, count, sources);                                                   \
        }                                                                                          \
        TARGET static void product(std::uint32_t* pixels, std::size_t count,                       \
                                   std::uint32_t color) {                                          \
            modulate(pixels, count, color);                                                        \
        }                                                                                          \
        TARGET static void tag(std::uint8_t* tags, std::size_t count,                              \
                               const std::uint8_t* coverage, std::uint8_t value) {                 \
            tagCovered(tags, count, coverage, value);                                              \
        }                                                                                          \
        static constexpr RowLoops loops{color, alike, each, product, tag};                         \
    }
// clang-format on
// NOLINTEND(bugprone-macro-parentheses)

CONTROLLER_ROW_LOOPS(Usual, );
#if defined(__x86_64__)
CONTROLLER_ROW_LOOPS(Avx2, [[gnu::target("avx2")]]);
#endif

} // namespace

std::vector<Vectors> vectorsHere() {
    std::vector<Vectors> all = {Vectors::Usual};
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2")) {
        all.push_back(Vectors::Avx2);
    }
#endif
    return all;
}

const RowLoops& rowLoops([[maybe_unused]] Vectors vectors) {
#if defined(__x86_64__)
    if (vectors == Vectors::Avx2) {
        return Avx2::loops;
    }
#endif
    return Usual::loops;
}

Vectors widestVectors() {
    static const Vectors widest = vectorsHere().back();
    return widest;
}

} // namespace controller
