#pragma once
// A hatch's boundary as ordinary curves.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

// Rebuilds every loop of the hatch as curves in the current space of the hatch's drawing,
// with the hatch's layer,
// colour, linetype and visibility, and sets curves to their ids (in loop order, within a
// loop in edge order). A polyline loop becomes a polyline; in an edge loop, runs of line
// and circular-arc edges become polyline vertices with bulges (the bulge from the arc's
// start, middle and end points; a loop of nothing else is a closed polyline, a run between
// other edges an open one), an elliptic-arc edge an ellipse and a spline edge a spline,
// from its fit points when it has them, else from its degree, control points, knots and
// weights. The hatch itself is left as it is.
// 0 for an id that is no hatch and when a curve cannot be made: a spline that cannot be
// created prints "\nFailed to create a spline."; the curves made so far are then erased
// and curves is left empty. Splines are kept as splines, not turned into polylines.
KPLAN_API int KovaHatchToLine(AcDbObjectId hatch, AcDbObjectIdArray& curves);
