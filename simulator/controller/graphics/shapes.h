#pragma once

#include "pixelpipeline.h"
#include "position.h"

namespace controller {

enum class EdgeSide { Right, Left, Above, Below };

// The primitives with smooth edges, drawn in the colour of the pipeline's state. Sizes are in
// 1/16 pixel. Each returns about how many pixels it had to look at.

int drawPoint(PixelPipeline& pipeline, Position centre, int radius);
// Everything within `halfWidth` of the segment.
int drawLine(PixelPipeline& pipeline, Position from, Position to, int halfWidth);
// Everything within `rounding` of the rectangle between two opposite corners.
int drawRectangle(PixelPipeline& pipeline, Position corner, Position opposite, int rounding);
// Every pixel on one side of the segment, up to the border of the clip, in the columns (of above
// and below) or rows that the segment reaches over their whole width. See EdgeStrip for the others.
int drawEdge(PixelPipeline& pipeline, Position from, Position to, EdgeSide side);

} // namespace controller
