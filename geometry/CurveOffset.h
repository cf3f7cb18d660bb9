#pragma once
// Offsetting a curve: a parallel outline at a distance, arcs kept as arcs.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

// Adds a curve parallel to the given one at distance drawing units, in the same block
// with its layer, colour and linetype (never its xdata: an offset parcel outline is no
// parcel). Lines move sideways; arcs and circles keep their centre and change radius;
// lightweight polylines move every segment (an arc segment keeps its centre, so it stays
// an arc) and join neighbours where their lines or circles meet nearest the old vertex,
// with a round corner of radius |distance| about the vertex where they no longer meet.
// A positive distance goes to the left of an open curve's direction (for an arc, which
// runs counter-clockwise, towards its centre) and outwards of a closed one whichever way
// it runs; a negative one the other way. Loops that a large offset makes where the
// outline is narrower than twice the distance are not cut away (FIsSelfIntersect tells).
// 1 with newId set; 0, with newId null, for a zero distance, an invalid or erased id, an
// entity that is not a line, arc, circle or lightweight polyline, fewer than two distinct
// vertices, or an offset that collapses: an arc or circle whose radius would reach 0, a
// segment turned back on itself, a closed outline whose area would vanish or turn over.
KPLAN_API int FOffset(AcDbObjectId curveId, double distance, AcDbObjectId& newId);
