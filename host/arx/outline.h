#pragma once
// An entity flattened to a chain of 2D points, for picking and crossing tests.
#include <vector>

#include "host/arx/dbmain.h"
#include "kplan/Export.h"

namespace arx {

// Arcs, bulges and circles become chords whose sagitta stays within chordTolerance.
// False for entities without a curve outline.
KPLAN_API bool entityOutline(const AcDbEntity* entity, std::vector<AcGePoint2d>& points,
                             bool& closed, double chordTolerance = 0.01);

// Appends the chord points of the arc from p to q with a bulge, q included.
KPLAN_API void appendBulgeChords(const AcGePoint2d& p, const AcGePoint2d& q, double bulge,
                                 double chordTolerance, std::vector<AcGePoint2d>& points);

// Widens extents by the arc from p to q with a bulge, exactly (its quadrant points).
KPLAN_API void addBulgeExtents(const AcGePoint2d& p, const AcGePoint2d& q, double bulge, double z,
                               AcDbExtents& extents);

}  // namespace arx
