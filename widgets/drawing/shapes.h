#pragma once

#include <cstdint>
#include <initializer_list>

struct Gpu_Hal_Context_t;

// Shapes made of display-list vertices. All of them are appended to the application's command
// buffer; positions are whole pixels from the panel's top left corner, 0..511.

struct Point {
    uint32_t x;
    uint32_t y;
};

constexpr Point operator+(Point a, Point b) {
    return {a.x + b.x, a.y + b.y};
}

// Half a line's width in 1/16 pixel, as the controller starts every display list.
constexpr uint32_t defaultLineWidth = 16;

// Larger than the panel: a scissor of this size cuts nothing.
constexpr uint32_t wholePanel = 512;

// The colour of what is drawn from here on, 0xRRGGBB.
void setColor(Gpu_Hal_Context_t* host, uint32_t rgb);

// Starts a shape of one of the registry's primitives ("__LINES", "__RECTS", ...), to be ended with
// endShape(). For a shape in one piece and one colour, use drawShape().
void beginShape(Gpu_Hal_Context_t* host, uint32_t primitive);
void addVertices(Gpu_Hal_Context_t* host, std::initializer_list<Point> points);
void endShape(Gpu_Hal_Context_t* host);

void drawShape(Gpu_Hal_Context_t* host, uint32_t primitive, std::initializer_list<Point> points);

// A closed outline, clockwise from its top left corner.
void drawOutline(Gpu_Hal_Context_t* host, Point topLeft, Point bottomRight);

// The gradient behind every screen.
void drawBackground(Gpu_Hal_Context_t* host);
