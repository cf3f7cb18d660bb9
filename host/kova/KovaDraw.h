#pragma once
// The maker's interactive drawing and ordering helpers for entity lists.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

namespace kova::ent {

// Lets the user enter a closed polyline point by point ("\n指定起点:", then
// "\n指定下一点:" until Enter) and adds it to the current space. 1 with id set; 0 with
// id null on Esc or with fewer than three points.
KPLAN_API int DrawD(AcDbObjectId& id);

// Orders the ids by the area their curves enclose, largest first (a planning scope line
// before the unit and block lines inside it); equal areas and ids that are not curves
// (area 0, last) keep their order. Returns the number of ids.
KPLAN_API int GetIdsAsAreaOrder(AcDbObjectIdArray& ids);

}  // namespace kova::ent

namespace KovaCad::Fun {

// A region with the outline of a closed polyline or circle, added beside it (see
// kova::CFRegion::PlineToRegion). 1 with region set; 0 with region null.
KPLAN_API int PlineToRegionEx(AcDbObjectId curve, AcDbObjectId& region);

}  // namespace KovaCad::Fun
