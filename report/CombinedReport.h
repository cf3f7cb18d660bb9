#pragma once
// The balance of several plans at once (the districts of a city): their tables added up
// row by row as they are printed, so that the combined figures are the sums a planner
// would make of the printed tables by hand, whatever order the plans come in.
//
// Tables are matched by their key and rows by level, code, name and kind (其中 row,
// total); a row that only some plans have is placed after the row it follows in the
// first plan that has it. Areas are the sums of the printed areas; shares are worked
// again from those sums (the area of the row over the area of the total the table's
// shares are of), not averaged, and so is the area a person, over the summed population
// of the scenario. A column of the current status that only some plans have counts the
// plans that have it. Checks against the standard's ranges are the plans' own: the
// combined table has neither marks nor notes, and no warnings.
#include <vector>

#include "report/Balance.h"

namespace kplan::report {

Report combineReports(const std::vector<const Report*>& reports);

}  // namespace kplan::report
