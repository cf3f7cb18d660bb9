#pragma once
// The tables and warnings of a report as text for a terminal: Chinese headers, or English
// ones with english set; "其中" rows indented under their class.
#include <string>

#include "report/Balance.h"

namespace kplan::report {

// The header of a column ("规划面积（公顷）", "planned area (ha)").
std::string columnTitle(const Table& table, const Column& column, bool english);
// The name of a row as printed, "其中：" before a part shown under its class.
std::string rowName(const Row& row, bool english);

std::string terminalTables(const Report& report, bool english);
// The warnings section; "" when there is nothing to warn about.
std::string terminalWarnings(const Report& report, bool english);

}  // namespace kplan::report
