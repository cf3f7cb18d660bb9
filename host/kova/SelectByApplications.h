#pragma once
// Several whole-drawing selections that differ only in the applications asked for, made
// in one pass: a drawing of planned and current-status parcels is walked once, not once
// per kind.
#include <vector>

#include "host/arx/dbmain.h"
#include "kplan/Export.h"

namespace kova {

// For every i, lists[i] becomes what acedSSGet "X" with the filter (0 types)(67 current
// space)(-3)(1001 apps[i]) selects, in the same order: entities of every layout whose
// type matches types and whose current-space flag is the working drawing's, carrying an
// application apps[i] matches (a wildcard pattern, case ignored, as the filter takes it).
// Names of xdata still packed are read on its bytes, and each distinct name is matched
// once. An entity may land in several lists. The number of entities selected at all.
KPLAN_API int SelectByApplications(const wchar_t* types, const std::vector<const wchar_t*>& apps,
                                   std::vector<AcDbObjectIdArray>& lists);

}  // namespace kova
