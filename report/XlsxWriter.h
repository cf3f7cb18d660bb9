#pragma once
// A report as a spreadsheet (libxlsxwriter) laid out like the standard's tables: a sheet
// per table with its title over the columns, "其中" rows indented, totals as sums of their
// rows and shares and per-person figures as formulas of the areas, widths and number
// formats set; a last sheet lists the warnings.
//
// The area cells hold the printed figures, which add up, so every total's formula gives
// the printed total. A share is the formula of those figures: it may differ by 0.01 from
// the table's own rounding, which makes the printed shares add up to 100.00.
#include <string>

#include "report/Balance.h"

namespace kplan::report {

// Writes the file whole or not at all: the workbook goes to a file beside it that then
// replaces it. False with a message when it cannot be written.
bool writeXlsx(const Report& report, const std::string& path, bool english, std::string& error);

}  // namespace kplan::report
