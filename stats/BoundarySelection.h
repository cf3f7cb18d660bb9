#pragma once
// The entities a boundary encloses, as the statistics dialogues select parcels inside a
// scope line.
#include "host/arx/adsdef.h"
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

// The entities of the drawing passing the filter (the boundary itself left out) whose
// outline, arcs approximated, lies inside the boundary's outline grown by |offset|
// drawing units: every vertex inside or within that distance of its edge. A parcel
// sharing an edge with the boundary is so found, one reaching a drawing unit past it is
// not. With crossing non-zero the entities that reach inside the boundary by any vertex
// are added. With zoom non-zero the view is first zoomed to the boundary. Entities in
// drawing order; empty for a boundary that is not a readable curve.
KPLAN_API AcDbObjectIdArray FSSGetByEntBoundaryZoomIds(AcDbObjectId boundary, const resbuf* filter,
                                                       int crossing, double offset, int zoom);
