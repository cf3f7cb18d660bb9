#pragma once
// Label points: a point inside a parcel (or any entity) where a sibling module places its
// number, label or attribute block. Nothing here keeps state; nothing is reported to the
// user; every failure returns 0 with everything opened closed again.
#include "host/arx/dbmain.h"
#include "host/arx/gepnt3d.h"
#include "kplan/Export.h"

// A label point of the entity. Polylines: the area centroid (through a temporary region
// of a temporary copy, neither of which stays in the drawing), moved next to the longest
// edge when it falls outside the outline (see FGetInsideNearPt); regions: their centroid;
// lines: the midpoint; circles, text and everything else: the maker's inside point
// (kova::ent::GetInsidePt), corrected in the same way when it lies outside the entity's
// outline. A circle's answer is deliberately that of the inside-point routine, not
// necessarily its centre. The centroid branches write x and y only: z keeps the caller's
// value (labels are placed in plan). 1 when a point was found; 0 for an invalid or erased
// id, an entity that cannot be opened, or when the inside-point routine finds nothing.
KPLAN_API int FGetCenterPt(AcDbObjectId id, AcGePoint3d& pt);

// Moves pt one drawing unit off the midpoint of the outline's longest edge (the closing
// edge not counted; for an arc edge, off the arc's midpoint along the line from the
// chord's midpoint), to the left of the edge, or to the right when the left point is not
// inside the outline (that one is not tested again). The move is made whether or not pt
// was already inside; pt's z becomes the edge's. 0, with pt unchanged, when the outline
// cannot be read, has fewer than two vertices, or is two points within 0.001 of each
// other; else 1.
KPLAN_API int FGetInsideNearPt(AcDbObjectId id, AcGePoint3d& pt);

// The indices i and j = i + 1 of the longest of the edges from vertex k to vertex k + 1,
// measured straight in plan (bulges and the closing edge are not considered); the first
// of equally long edges wins. 0 for fewer than two vertices; 1 otherwise, with i and j
// left as the caller passed them when every edge has length 0.
KPLAN_API int FGetMaxLenVert(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges, int& i,
                             int& j);
// The same on the outline of a curve (kova::ent::GetCurveParam); 0 for an invalid or
// erased id or an outline that cannot be read.
KPLAN_API int FGetMaxLenVert(AcDbObjectId id, int& i, int& j);
