#pragma once
// The ranges GB 50137-2011 sets for a plan's urban construction land (chapter 4), checked
// against the planned columns of the 城市建设用地平衡表: a row outside is marked and a note
// under the table says which figure, which range and which of the standard's tables.
#include "report/Table.h"

namespace kplan::report {

struct StandardRange {
    const char* code;   // the row's class code; "H11" for the whole urban construction land
    Measure measure;    // Share (of urban construction land, %) or PerPerson (m² a person)
    double low, high;   // inclusive; high is infinite where the standard sets a floor only
    const char* table;  // the standard's table or clause ("表4.4.1")
};

// The ranges; where the standard's range depends on the climate zone, the widest one.
const std::vector<StandardRange>& rangesOf2011();

// Marks the planned figures of the table outside the ranges and explains each in the
// table's notes. Blank figures (no population) are not checked.
void checkRanges(Table& table, const std::vector<StandardRange>& ranges);

}  // namespace kplan::report
