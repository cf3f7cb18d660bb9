#pragma once
// A balance table as a planner hands it in, apart from how it is printed: a title, columns
// (an area, a share or a per-person figure, of the current status or of the plan) and rows
// with a level, a code, a name and one value per column. The terminal, CSV, JSON and
// spreadsheet writers and the picture of a plan all read this one model.
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "report/Units.h"

namespace kplan::report {

// A value that the table leaves blank (a share of land outside the base, a per-person
// figure without population).
inline constexpr double kBlank = std::numeric_limits<double>::quiet_NaN();
inline bool isBlank(double value) {
    return std::isnan(value);
}

enum class Measure { Area, Share, PerPerson };
enum class Scenario { Current, Planned };  // 现状, 规划

struct Column {
    Measure measure = Measure::Area;
    Scenario scenario = Scenario::Planned;
    int decimals = 2;
};

struct Row {
    int level = 0;       // 0 for a major class; deeper rows are indented under it
    bool among = false;  // a "其中" row: a part shown under its class, not a partition of it
    bool total = false;  // a total or subtotal line
    std::string code;    // "" for a row of no class (totals, remainder, unknown codes)
    std::string name;    // Chinese, as the class table has it
    std::string nameEn;  // for --lang en; "" where only the class table names the row
    std::vector<double> values;  // one per column, kBlank for none
    // Rows whose values add up exactly to this row's (before rounding): rounding keeps
    // their printed figures adding up to this row's printed figure.
    std::vector<int> parts;
    bool outOfRange = false;  // a figure outside the standard's range; see the table's notes
};

struct Table {
    std::string key;  // "rural_urban", "urban_construction", "urban_land", "land_use"
    std::string title, titleEn;
    std::string shareBase, shareBaseEn;  // what the shares are shares of ("城市建设用地")
    AreaUnit unit = AreaUnit::Hectare;   // of the area columns
    std::vector<Column> columns;
    std::vector<Row> rows;
    // Remarks printed under the table (ranges the plan falls outside of).
    std::vector<std::string> notes, notesEn;
};

}  // namespace kplan::report
