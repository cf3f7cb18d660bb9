#pragma once
// The maker's region lookup: which of a set of closed curves holds a point.
#include "host/arx/dbmain.h"
#include "host/arx/gepnt3d.h"
#include "kplan/Export.h"

namespace kova::ent {

// The curve among ids whose closed outline (arcs included) holds the point strictly
// inside, in the XY plane. When outlines are nested the smallest one wins, so a point
// in an island finds the island, not the parcel around it; among equal areas the first
// listed wins. 1 when one was found; 0 with id unchanged otherwise. Ids that are not
// curves, not valid or erased are passed over.
KPLAN_API int GetRegionEdgeId(const AcGePoint3d& point, const AcDbObjectIdArray& ids,
                              AcDbObjectId& id);

}  // namespace kova::ent
