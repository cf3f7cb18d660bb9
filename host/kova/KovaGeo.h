#pragma once
// The maker's plane geometry on outlines: vertices with one bulge per segment, bulge i
// belonging to the segment from vertex i to vertex i + 1 (the last one closing the
// outline). A bulge is the tangent of a quarter of the arc's included angle, positive
// for an arc running counter-clockwise. Missing bulges count as 0. Work is in the XY
// plane; z is carried along where a point is made.
#include "host/arx/gepnt3d.h"
#include "kplan/Export.h"

namespace kova::geo {

// The area enclosed by the closed outline, arcs included exactly; positive whichever
// way the outline runs.
KPLAN_API double GetPolyArea(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges);

// 1 when the point lies strictly inside the closed outline (even-odd rule), 0 outside or
// on the outline (within a relative tolerance of 1e-9 of the outline's size).
KPLAN_API int IsPtInArea(const AcGePoint3d& point, const AcGePoint3dArray& points,
                         const AcGeDoubleArray& bulges);

// The midpoint of the chord; returns 1.
KPLAN_API int GetMidPt(const AcGePoint3d& p1, const AcGePoint3d& p2, AcGePoint3d& mid);
// The midpoint of the arc from p1 to p2 with the bulge (the chord's for bulge 0); 0 when
// mid is null.
KPLAN_API int GetMidPt(const AcGePoint3d& p1, const AcGePoint3d& p2, double bulge,
                       AcGePoint3d* mid);

// A point of the world coordinate system in the current user coordinate system. The
// portable host keeps no user coordinate system of its own, so they are the same; 1.
KPLAN_API int Wcs2ucs(const AcGePoint3d& point, AcGePoint3d& result);

}  // namespace kova::geo
