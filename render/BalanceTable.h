#pragma once
// A table to draw beside a map: what a balance table shows, as text already formatted.
#include <string>
#include <vector>

namespace render {

struct TableRow {
    std::vector<std::string> cells;
    int indent = 0;  // levels the first cell is set in (a subclass under its class)
};

struct BalanceTable {
    std::string title;
    std::vector<std::string> headers;
    std::vector<TableRow> rows;
    // Columns after the first two hold numbers and are set flush right.
    bool empty() const { return rows.empty(); }
};

}  // namespace render
