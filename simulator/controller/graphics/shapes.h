#pragma once

#include "coveragerow.h"
#include "position.h"

namespace controller {

enum class EdgeSide { Right, Left, Above, Below };

// The primitives with smooth edges, drawn in the colour of the state of the row's pipeline. Sizes
// are in 1/16 pixel. Drawing ends where the pipeline's work is too much.

void drawPoint(CoverageRow& row, Position centre, int radius);
// Everything within `halfWidth` of the segment.
void drawLine(CoverageRow& row, Position from, Position to, int halfWidth);
// Everything within `rounding` of the rectangle between two opposite corners.
void drawRectangle(CoverageRow& row, Position corner, Position opposite, int rounding);
// Every pixel on one side of the segment, up to the border of the clip, in the columns (of above
// and below) or rows that the segment reaches over their whole width. See EdgeStrip for the others.
void drawEdge(CoverageRow& row, Position from, Position to, EdgeSide side);

} // namespace controller
