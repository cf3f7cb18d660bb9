#pragma once
// The maker's region making: a region entity from a closed curve.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

namespace kova {

class KPLAN_API CFRegion {
  public:
    // A region with the outline of a closed polyline (lightweight or 2D; one whose ends
    // meet counts as closed) or a circle, arcs kept, added to the block that holds the
    // curve with the curve's layer and colour. The curve stays as it is. Non-zero on
    // success with regionId set; 0, with regionId null, for an invalid id, an open curve,
    // an outline that encloses no area or any other entity.
    static int PlineToRegion(AcDbObjectId curveId, AcDbObjectId& regionId);
};

}  // namespace kova
