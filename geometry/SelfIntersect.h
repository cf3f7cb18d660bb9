#pragma once
// Whether an outline crosses or touches itself: a parcel outline that does has no
// meaningful area, inside or label point.
#include "host/arx/dbmain.h"
#include "host/arx/gepnt3d.h"
#include "kplan/Export.h"

// 1 when the outline (arcs exact; the closing segment when closed) meets itself anywhere
// but where consecutive segments join: crossing edges, an edge touching another, a vertex
// visited twice, an edge folding back over the one before. Zero-length segments
// (repeated vertices) are passed over, so they alone make no self-intersection. Points
// within 1e-9 of the outline's size count as one. When at is given it receives the
// points where the outline meets itself (z of the first vertex), each once.
// 0 when the outline is simple, also for fewer than two vertices.
KPLAN_API int FIsSelfIntersect(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges,
                               bool closed, AcGePoint3dArray* at = nullptr);

// The same for a curve: a polyline (lightweight or 2D, closed or open, with its bulges);
// lines, arcs and circles never meet themselves (0). -1 for an invalid or erased id and
// for entities that are not curves with an outline.
KPLAN_API int FIsSelfIntersect(AcDbObjectId curveId, AcGePoint3dArray* at = nullptr);
