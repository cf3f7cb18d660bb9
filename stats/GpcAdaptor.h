#pragma once
// Drawing curves as clipper polygons and back: reading a closed curve into a polygon
// (arcs approximated by chords), folding a clip operation over several curves, turning
// the result into polylines, and the overlap test of a parcel against a boundary.
//
// Results follow the statistics' convention: 1 on success or a count, 0 when there is
// nothing to do, -1 when a curve cannot be read. Nothing is thrown.
#include <polyclipping/clipper.hpp>

#include "host/arx/dbmain.h"
#include "host/gpc/gpc.h"
#include "kplan/Export.h"

namespace stats {
// Chords per full circle for arcs of parcel outlines.
inline constexpr int kSimulateSegments = 1800;
// Below this an area or an entered number counts as absent.
inline constexpr double kAreaEpsilon = 1e-5;
// Within this many square metres an overlap counts as the whole parcel.
inline constexpr double kSameAreaTolerance = 5.0;
// Result pieces smaller than this many square metres are slivers.
inline constexpr double kSliverArea = 4.0;
}  // namespace stats

// One contour (not a hole) of the curve's vertices after arc approximation, z dropped,
// in a polygon that was empty or freed (as gpc_add_contour takes it). -1 when the curve's
// vertices cannot be read.
KPLAN_API int GetDataFromAcdbPolyline(const AcDbObjectId& id, gpc_polygon* poly);

// Folds op over the curves in order: the first is the subject, each following readable
// curve clips it. When a step leaves nothing the fold stops with a message and the last
// non-empty subject is the result. 0 for fewer than two ids, -1 when the first curve
// cannot be read, else 1; the caller frees result with gpc_free_polygon.
KPLAN_API int Gpc_Cal(gpc_op op, const AcDbObjectIdArray& ids, gpc_polygon* result);
// The same fold, its result contours added to the current space as closed polylines
// (hole flags ignored) and left there for the caller. 0, and nothing added, for fewer
// than two ids, an unreadable first curve, a fold that ran out of contours or an empty
// result; else resultIds is replaced by the new ids and their number is returned.
KPLAN_API int Gpc_Cal(gpc_op op, const AcDbObjectIdArray& ids, AcDbObjectIdArray& resultIds);

// The fold under a progress bar; with eraseInputs non-zero each successful step erases
// the first curve and the curve just folded in.
KPLAN_API int Gpc_Cal_EraseEnt(gpc_op op, const AcDbObjectIdArray& ids, gpc_polygon* result,
                               int eraseInputs);
// As the polyline form of Gpc_Cal, with a progress bar over the result contours, and
// result contours under 4 m² dropped as slivers.
KPLAN_API int Gpc_Cal_EraseEnt(gpc_op op, const AcDbObjectIdArray& ids,
                               AcDbObjectIdArray& resultIds, int eraseInputs);

// How a parcel lies against a boundary: -1 no overlap, 0 wholly inside (an overlap
// within 5 m² of the parcel's own area, or one of at most 1e-5), 1 crossing. The clip's
// polylines are erased again.
KPLAN_API int FIsDKAndBoundaryInter(AcDbObjectId boundary, AcDbObjectId parcel);

namespace ClipperLib {

// Appends the curve's vertices, coordinates truncated toward zero to whole drawing
// units (arcs become their chords); the number of points now in out, 0 when the curve
// cannot be read.
KPLAN_API int FGetPathFromPolyline(AcDbObjectId curve, Path& out);
// The same per curve: a path is appended for each curve that yields points; the number
// of paths now in out.
KPLAN_API int FGetPathFromPolyline(const AcDbObjectIdArray& curves, Paths& out);

}  // namespace ClipperLib
