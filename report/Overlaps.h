#pragma once
// Land that two parcels both claim, found with GEOS (the pairs whose extents meet, found
// by a sweep, intersected): a balance table counts it once and says so instead of
// adding it twice.
#include <string>
#include <vector>

#include "host/arx/dbmain.h"

namespace kplan::report {

struct Overlaps {
    double hectares = 0;               // the overlapping land, within the boundary when given
    std::vector<std::string> handles;  // parcels that overlap another, in the order given
};

// Overlaps among the parcels' outlines (arcs approximated as the statistics do), within
// boundary unless it is null. Pieces below 0.01 m² are drawing noise, not overlaps.
Overlaps findOverlaps(const AcDbObjectIdArray& parcels, AcDbObjectId boundary);

}  // namespace kplan::report
