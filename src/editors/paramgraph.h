// The small 2-D graph that the injector, blend, warm-up, coolant advance and EGO screens share:
// draws what paramgraphmath.h reckons.
#pragma once

#include "editors/paramgraphmath.h"
#include "platform/screen.h"

// Which curve ParameterGraph draws, one of ParameterCurve. A screen sets it in its redraw. Starts
// as 0.
extern int GraphKind;

// Draws the curve of GraphKind with axes, titles and marks, scaled to the canvas as it is shown.
// Call PublishCalGlobals before. Does nothing while the canvas has no size.
void ParameterGraph(Control& canvas, const FrameShape& shape = ParameterFrame);

// The size below which a canvas cannot show the graph with its texts on this desktop.
TextSize LeastGraphSize();
