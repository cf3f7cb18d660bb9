#pragma once
// Moving the ends of an open curve to where it meets another: extending a road line to a
// parcel edge, snapping a boundary's end onto the line it should end on.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

// Extends an open curve (a line, an arc, an open lightweight polyline) to meet a boundary
// curve: each chosen end (ends: 1 the start, 2 the end, 3 both) is carried along its end
// segment's carrier (the straight line beyond it, or an arc's circle) to the nearest point
// beyond the end where the carrier meets the boundary's outline (arcs exact; the closing
// segment when the boundary is closed). An arc stays an arc: its included angle grows.
// An end already on the boundary, with a zero-length end segment, or with nothing to meet
// stays where it is. Returns the number of ends moved (0 to 2); -1 for an invalid or
// erased id, a closed curve or one of another class, a boundary without an outline, or
// ends outside 1 to 3.
KPLAN_API int FExtendCurve(AcDbObjectId curveId, AcDbObjectId boundaryId, int ends = 3);

// Snaps one end of an open curve (as above) onto a point where it meets another curve:
// the points where the carriers of its first and last segments meet the other outline,
// short of the end (the end is extended) or past it on its own segment (the end is
// trimmed back), the one nearest to its end winning. maxDistance limits how far the end
// may move (0 or less: no limit). Returns 1 when an end was moved (or already lay on a
// meeting point), 0 when there is no meeting point within reach, -1 for input as
// FExtendCurve refuses it.
KPLAN_API int FMoveEntPtToInter(AcDbObjectId curveId, AcDbObjectId otherId, double maxDistance = 0);
