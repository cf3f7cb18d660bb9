#pragma once
// The closed loops of an entity, for the maker's region and inside-point helpers.
#include <vector>

#include "host/arx/dbregion.h"
#include "kplan/Export.h"

namespace kova::detail {

// The loops an entity encloses: a closed polyline (lightweight or 2D) or one whose ends
// meet within 1e-9 of its size (the repeated end dropped), a circle as two half circles,
// a region's own loops. False for open curves and other entities.
KPLAN_API bool closedLoopsOf(const AcDbEntity* ent, std::vector<AcDbRegion::Loop>& loops,
                             double& elevation);

}  // namespace kova::detail
