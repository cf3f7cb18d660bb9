#pragma once
// The best label point of a parcel: the point inside farthest from its outline and from
// its islands (the pole of inaccessibility), where the largest label fits.
#include "host/arx/dbmain.h"
#include "host/arx/gepnt3d.h"
#include "kplan/Export.h"

// The pole of inaccessibility of a closed curve (a closed polyline, lightweight or 2D, one
// whose ends meet, or a circle), arcs exact, islands cut out: the point strictly inside
// the curve and outside every island whose distance to the nearest edge is largest,
// found within tolerance drawing units of the best (tolerance 0 or less: half a percent
// of the larger side of the curve's extents, a quarter metre on a parcel of 50 m, finer
// than any label needs). x and y of pt are written, z keeps the caller's value; distance,
// when given, receives the point's distance to the nearest edge (the radius of the
// largest circle that fits there).
// The islands are those linked to the parcel (CDKBJXDInfo::GetIsland); the second form
// takes them from the caller. Islands that are not closed curves are passed over.
// 1 on success; 0, with pt unchanged, for an invalid or erased id, an open curve or
// another entity, an outline of less than two vertices or enclosing no area, or when
// islands cover the whole inside.
KPLAN_API int FGetCurveOptimalPt(AcDbObjectId curveId, AcGePoint3d& pt, double tolerance = 0,
                                 double* distance = nullptr);
KPLAN_API int FGetCurveOptimalPt(AcDbObjectId curveId, const AcDbObjectIdArray& islands,
                                 AcGePoint3d& pt, double tolerance = 0, double* distance = nullptr);
