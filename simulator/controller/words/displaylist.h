#pragma once

#include <cstdint>

// The numbers that display-list words are made of: opcodes, primitives, bitmap formats and the
// values of enumerated fields. Field positions are where the words are decoded.
namespace controller {

// Bits 24 to 31 of a word, unless its two top bits make it a vertex.
namespace opcode {
constexpr std::uint32_t Display = 0x00;
constexpr std::uint32_t BitmapSource = 0x01;
constexpr std::uint32_t ClearColorRgb = 0x02;
constexpr std::uint32_t Tag = 0x03;
constexpr std::uint32_t ColorRgb = 0x04;
constexpr std::uint32_t BitmapHandle = 0x05;
constexpr std::uint32_t Cell = 0x06;
constexpr std::uint32_t BitmapLayout = 0x07;
constexpr std::uint32_t BitmapSize = 0x08;
constexpr std::uint32_t AlphaFunc = 0x09;
constexpr std::uint32_t StencilFunc = 0x0A;
constexpr std::uint32_t BlendFunc = 0x0B;
constexpr std::uint32_t StencilOp = 0x0C;
constexpr std::uint32_t PointSize = 0x0D;
constexpr std::uint32_t LineWidth = 0x0E;
constexpr std::uint32_t ClearColorA = 0x0F;
constexpr std::uint32_t ColorA = 0x10;
constexpr std::uint32_t ClearStencil = 0x11;
constexpr std::uint32_t ClearTag = 0x12;
constexpr std::uint32_t StencilMask = 0x13;
constexpr std::uint32_t TagMask = 0x14;
constexpr std::uint32_t BitmapTransformA = 0x15;
constexpr std::uint32_t BitmapTransformB = 0x16;
constexpr std::uint32_t BitmapTransformC = 0x17;
constexpr std::uint32_t BitmapTransformD = 0x18;
constexpr std::uint32_t BitmapTransformE = 0x19;
constexpr std::uint32_t BitmapTransformF = 0x1A;
constexpr std::uint32_t ScissorXy = 0x1B;
constexpr std::uint32_t ScissorSize = 0x1C;
constexpr std::uint32_t Call = 0x1D;
constexpr std::uint32_t Jump = 0x1E;
constexpr std::uint32_t Begin = 0x1F;
constexpr std::uint32_t ColorMask = 0x20;
constexpr std::uint32_t End = 0x21;
constexpr std::uint32_t SaveContext = 0x22;
constexpr std::uint32_t RestoreContext = 0x23;
constexpr std::uint32_t Return = 0x24;
constexpr std::uint32_t Macro = 0x25;
constexpr std::uint32_t Clear = 0x26;
// E2 and E3
constexpr std::uint32_t VertexFormat = 0x27;
constexpr std::uint32_t BitmapLayoutH = 0x28;
constexpr std::uint32_t BitmapSizeH = 0x29;
constexpr std::uint32_t PaletteSource = 0x2A;
constexpr std::uint32_t VertexTranslateX = 0x2B;
constexpr std::uint32_t VertexTranslateY = 0x2C;
constexpr std::uint32_t Nop = 0x2D;
// E3
constexpr std::uint32_t BitmapExtFormat = 0x2E;
constexpr std::uint32_t BitmapSwizzle = 0x2F;
constexpr std::uint32_t IntFrr = 0x30; // of use to the coprocessor only: draws nothing
} // namespace opcode

namespace primitive {
constexpr std::uint32_t None = 0;
constexpr std::uint32_t Bitmaps = 1;
constexpr std::uint32_t Points = 2;
constexpr std::uint32_t Lines = 3;
constexpr std::uint32_t LineStrip = 4;
constexpr std::uint32_t EdgeStripR = 5;
constexpr std::uint32_t EdgeStripL = 6;
constexpr std::uint32_t EdgeStripA = 7;
constexpr std::uint32_t EdgeStripB = 8;
constexpr std::uint32_t Rects = 9;
} // namespace primitive

namespace format {
constexpr std::uint32_t Argb1555 = 0;
constexpr std::uint32_t L1 = 1;
constexpr std::uint32_t L4 = 2;
constexpr std::uint32_t L8 = 3;
constexpr std::uint32_t Rgb332 = 4;
constexpr std::uint32_t Argb2 = 5;
constexpr std::uint32_t Argb4 = 6;
constexpr std::uint32_t Rgb565 = 7;
constexpr std::uint32_t Paletted = 8;      // E1
constexpr std::uint32_t Paletted565 = 14;  // E2, E3
constexpr std::uint32_t Paletted4444 = 15; // E2, E3
constexpr std::uint32_t Paletted8 = 16;    // E2, E3
constexpr std::uint32_t L2 = 17;           // E2, E3
constexpr std::uint32_t External = 31;     // E3: the extended format word says
} // namespace format

// Of ALPHA_FUNC and STENCIL_FUNC.
namespace test {
constexpr std::uint32_t Never = 0;
constexpr std::uint32_t Less = 1;
constexpr std::uint32_t LessOrEqual = 2;
constexpr std::uint32_t Greater = 3;
constexpr std::uint32_t GreaterOrEqual = 4;
constexpr std::uint32_t Equal = 5;
constexpr std::uint32_t NotEqual = 6;
constexpr std::uint32_t Always = 7;
} // namespace test

namespace stencilop {
constexpr std::uint32_t Zero = 0;
constexpr std::uint32_t Keep = 1;
constexpr std::uint32_t Replace = 2;
constexpr std::uint32_t Increment = 3;
constexpr std::uint32_t Decrement = 4;
constexpr std::uint32_t Invert = 5;
constexpr std::uint32_t IncrementWrapping = 6;
constexpr std::uint32_t DecrementWrapping = 7;
} // namespace stencilop

namespace blend {
constexpr std::uint32_t Zero = 0;
constexpr std::uint32_t One = 1;
constexpr std::uint32_t SrcAlpha = 2;
constexpr std::uint32_t DstAlpha = 3;
constexpr std::uint32_t OneMinusSrcAlpha = 4;
constexpr std::uint32_t OneMinusDstAlpha = 5;
} // namespace blend

// Sources of BITMAP_SWIZZLE.
namespace swizzle {
constexpr std::uint32_t Zero = 0;
constexpr std::uint32_t One = 1;
constexpr std::uint32_t Red = 2;
constexpr std::uint32_t Green = 3;
constexpr std::uint32_t Blue = 4;
constexpr std::uint32_t Alpha = 5;
} // namespace swizzle

} // namespace controller
