#pragma once

#include "shapes.h"

#include <QByteArray>

#include <cstdint>

struct Gpu_Hal_Context_t;

// Texts in the current colour. `text` is in the local 8-bit encoding, `font` a font number of the
// controller's ROM (26..31); every text is centred vertically on `at`.

void drawCentredText(Gpu_Hal_Context_t* host, Point at, uint32_t font, const char* text);

// `at` is the text's left end.
void drawLeftAlignedText(Gpu_Hal_Context_t* host, Point at, uint32_t font, const char* text);

// `at` is the text's right end.
void drawRightAlignedText(Gpu_Hal_Context_t* host, Point at, uint32_t font, const char* text);

// A channel value or bin as the screens show it: four significant digits, right-aligned in six
// characters, and then with one-digit positive exponents written short (1.235e6).
QByteArray formatValue(double value);
