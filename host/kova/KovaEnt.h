#pragma once
// The maker's entity helpers: validity, adding, erasing and copying entities, outlines and
// areas of curves, selection sets and id arrays, extents, colour and visibility.
//
// Every function opens and closes what it needs, returns 1 on success (or a count) and 0
// on failure unless said otherwise, and never throws.
#include "host/arx/adsdef.h"
#include "host/arx/dbcolor.h"
#include "host/arx/dbmain.h"
#include "host/arx/gepnt3d.h"
#include "kplan/Export.h"

namespace kova::ent {

// 1 when the id names an object of an open drawing that is not erased.
KPLAN_API int FIsValidId(AcDbObjectId id);

// Appends a new entity to the current space of the drawing (the working database when
// null) and closes it; its id. On failure the id is null and the entity is still the
// caller's.
KPLAN_API AcDbObjectId AddToDb(AcDbEntity* entity, AcDbDatabase* database = nullptr);
// The same, but the caller never keeps the entity: it is closed when added and deleted
// when not, and the pointer is set to null either way.
KPLAN_API AcDbObjectId SafeAddToDb(AcDbEntity*& entity, AcDbDatabase* database = nullptr);

// Gives the entity `to` the layer, colour, linetype, linetype scale, line weight and
// visibility of `from`, as a curve that replaces another takes them over; 0 when either
// cannot be opened.
KPLAN_API int HandOverTo(AcDbObjectId from, AcDbObjectId to);

// Erases the entity; 0 when it is not valid or cannot be opened for write.
KPLAN_API int Erase(AcDbObjectId id);
// Erases every listed entity it can; 1 when all of them were erased (an empty list
// included).
KPLAN_API int Erase(const AcDbObjectIdArray& ids);

// A copy of the entity (data and xdata, not its extension dictionary) in the same block;
// its id, null on failure.
KPLAN_API AcDbObjectId Copy(AcDbObjectId id);

// The outline of a curve as vertices and one bulge per vertex: lightweight and 2D
// polylines as stored (an open one's last bulge is 0: its closing segment is straight),
// a circle as two half circles from its rightmost point, a line as its two ends, an arc
// as its ends and one bulge. Both arrays are cleared first; bulges may be null. 0 for
// other entities and for curves without vertices.
KPLAN_API int GetCurveParam(AcDbObjectId id, AcGePoint3dArray* points, AcGeDoubleArray* bulges);
KPLAN_API int GetCurveParam(AcDbObjectId id, AcGePoint3dArray& points, AcGeDoubleArray& bulges);

// A point strictly inside a closed entity: a closed polyline (or one whose ends meet), a
// circle, a region (its inner loops are holes), arcs considered. x and y are written, z
// is left as the caller passed it. The point is the middle of the widest span of a
// horizontal line across the area, the line chosen among the heights where the outline
// has no vertex; it is no centroid, only surely inside. Text, multiline text and block
// references, which enclose no area, give the centre of their extents. 0 for open
// curves, outlines enclosing no area and other entities.
KPLAN_API int GetInsidePt(AcDbObjectId id, AcGePoint3d& pt);

// The midpoint of a line (z included) or of an arc; 0 for other entities.
KPLAN_API int GetMidPt(AcDbObjectId id, AcGePoint3d& pt);

// The exact area enclosed by a curve (arcs of polylines and circles included), an open
// curve taken as closed by a straight segment; positive. Other curves (ellipses, splines)
// give the host's own area. 0, with area 0, when the entity is not a curve.
KPLAN_API int GetArea(AcDbObjectId id, double& area);

// Clears ids and fills it from the selection set; returns the number of ids.
KPLAN_API int SSToIds(const ads_name ss, AcDbObjectIdArray& ids);
// A new selection set holding the valid ids, which the caller frees with acedSSFree; 0 and
// no set when none of the ids is valid.
KPLAN_API int IdsToSS(const AcDbObjectIdArray& ids, ads_name ss);

// Drops every repeated id, keeping the first occurrence; returns how many were dropped.
KPLAN_API int FRemoveRepeatId(AcDbObjectIdArray& ids);

// The entity's extents in world coordinates.
KPLAN_API int GetEntRect(AcDbObjectId id, AcGePoint3d& lowerLeft, AcGePoint3d& upperRight);
// The extents of all listed entities that have extents; 0 when none has.
KPLAN_API int GetEntsRect(const AcDbObjectIdArray& ids, AcGePoint3d& lowerLeft,
                          AcGePoint3d& upperRight);

// The colour index the entity is shown with: its own (a true colour's nearest index), its
// layer's when it is by layer, 7 when it is by block (as shown outside a block); -1 when
// the entity cannot be read.
KPLAN_API int GetEntColor(AcDbObjectId id);
// The entity's colour as stored.
KPLAN_API int GetEntColor(AcDbObjectId id, AcCmColor& color);

// Sets the colour index (0 by block to 256 by layer).
KPLAN_API int ChangeColor(AcDbObjectId id, unsigned short colorIndex);

// Hides the entity (hide non-zero) or shows it.
KPLAN_API int Hide(AcDbObjectId id, int hide);

}  // namespace kova::ent
