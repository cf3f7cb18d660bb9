#pragma once
// Rounding that adds up: printed rows sum exactly to the printed total (the largest
// remainder method), so a planner's check of the table by hand holds.
#include <vector>

#include "report/Table.h"

namespace kplan::report {

// value to a number of decimals, halves away from zero.
double roundTo(double value, int decimals);

// values rounded to decimals so that they add up to total (itself a rounded figure): each
// is first cut down, then the units still missing go to the values that lost most by the
// cut (or, when the cut ones already exceed the total, are taken from those that lost
// least). Ties go to the larger value, then to the earlier one.
std::vector<double> roundToTotal(const std::vector<double>& values, double total, int decimals);

// Every value of the table rounded to its column's decimals; the parts of a row add up to
// the row's rounded value wherever they added up to it before rounding.
void roundTable(Table& table);

}  // namespace kplan::report
