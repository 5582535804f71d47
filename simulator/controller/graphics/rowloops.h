#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace controller {

// For which of the instructions that a machine may have the loops below are compiled. Their results
// are the same bit for bit. (Wider vectors than AVX2's were tried: long rows gain a quarter, but
// rows as short as those of letters lose as much again.)
enum class Vectors : std::uint8_t { Usual, Avx2 };

// Those of the machine this runs on, the widest last.
std::vector<Vectors> vectorsHere();
Vectors widestVectors();

// The loops over a row of pixels in which most of the time goes. Pixels are 0xAARRGGBB; blending is
// the usual one, by the source's alpha, in all four channels.
struct RowLoops {
    // Blends `color` in, its alpha scaled by that of each pixel.
    void (*blendColor)(std::uint32_t* pixels, std::size_t count, std::uint32_t color,
                       const std::uint8_t* alphas);
    // Blends `color` in with its own alpha.
    void (*blendAlike)(std::uint32_t* pixels, std::size_t count, std::uint32_t color);
    // Blends each of `sources` into its pixel.
    void (*blendPixels)(std::uint32_t* pixels, std::size_t count, const std::uint32_t* sources);
    // Multiplies each channel with that of `color`.
    void (*modulate)(std::uint32_t* pixels, std::size_t count, std::uint32_t color);
    // Sets the tags of those pixels that are covered at all.
    void (*tagCovered)(std::uint8_t* tags, std::size_t count, const std::uint8_t* coverage,
                       std::uint8_t tag);
};

const RowLoops& rowLoops(Vectors vectors);

} // namespace controller
