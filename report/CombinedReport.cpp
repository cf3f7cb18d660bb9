#include "report/CombinedReport.h"

#include <algorithm>
#include <cmath>

#include "report/Rounding.h"

namespace kplan::report {

namespace {

bool sameRow(const Row& a, const Row& b) {
    return a.level == b.level && a.among == b.among && a.total == b.total && a.code == b.code &&
           a.name == b.name;
}

bool sameColumn(const Column& a, const Column& b) {
    return a.measure == b.measure && a.scenario == b.scenario;
}

// The column groups in the order the tables have them: 现状 before 规划, and within
// each the area, the share and the area a person.
bool columnBefore(const Column& a, const Column& b) {
    if (a.scenario != b.scenario) return a.scenario == Scenario::Current;
    return static_cast<int>(a.measure) < static_cast<int>(b.measure);
}

// A figure as printed in whole units of its last decimal: sums of these are exact, so
// the combined figures do not depend on the order the plans are added in.
long long printedUnits(double value, int decimals) {
    return std::llround(roundTo(value, decimals) * std::pow(10.0, decimals));
}

struct RowSums {
    Row row;
    std::vector<long long> units;  // per combined column, for the areas
    std::vector<bool> filled;      // some plan gave a figure
};

struct TableSums {
    Table table;  // title, key, unit and columns; rows are in sums
    std::vector<RowSums> rows;
};

// The columns of every plan's table of a key, in the tables' order.
void addColumns(TableSums& sums, const Table& table) {
    auto& columns = sums.table.columns;
    for (const Column& column : table.columns) {
        if (std::any_of(columns.begin(), columns.end(),
                        [&](const Column& known) { return sameColumn(known, column); }))
            continue;
        columns.insert(
            std::find_if(columns.begin(), columns.end(),
                         [&](const Column& known) { return columnBefore(column, known); }),
            column);
    }
}

// Adds a plan's table to the sums, whose columns are all there already.
void addTable(TableSums& sums, const Table& table) {
    const auto& columns = sums.table.columns;
    std::vector<std::size_t> columnOf;
    for (const Column& column : table.columns)
        columnOf.push_back(static_cast<std::size_t>(
            std::find_if(columns.begin(), columns.end(),
                         [&](const Column& known) { return sameColumn(known, column); }) -
            columns.begin()));
    std::size_t next = 0;  // where a row this plan has and the sums lack goes
    for (const Row& row : table.rows) {
        auto found = std::find_if(sums.rows.begin(), sums.rows.end(),
                                  [&](const RowSums& known) { return sameRow(known.row, row); });
        if (found == sums.rows.end()) {
            RowSums added;
            added.row = row;
            added.row.values.clear();
            added.row.parts.clear();
            added.row.outOfRange = false;
            added.units.assign(sums.table.columns.size(), 0);
            added.filled.assign(sums.table.columns.size(), false);
            found = sums.rows.insert(sums.rows.begin() + static_cast<long>(next), added);
        }
        next = static_cast<std::size_t>(found - sums.rows.begin()) + 1;
        for (std::size_t c = 0; c < table.columns.size(); ++c) {
            double value = c < row.values.size() ? row.values[c] : kBlank;
            if (isBlank(value)) continue;
            std::size_t at = columnOf[c];
            found->filled[at] = true;
            if (table.columns[c].measure == Measure::Area)
                found->units[at] += printedUnits(value, table.columns[c].decimals);
        }
    }
}

Table finish(const TableSums& sums, const std::vector<BalanceLine>& balance) {
    Table table = sums.table;
    table.notes.clear();
    table.notesEn.clear();
    const auto& columns = table.columns;
    // The row the shares are of: the table's total of that name.
    const RowSums* base = nullptr;
    for (const RowSums& r : sums.rows)
        if (r.row.total && r.row.name == table.shareBase) base = &r;
    auto areaColumn = [&](Scenario scenario) -> int {
        for (std::size_t c = 0; c < columns.size(); ++c)
            if (columns[c].measure == Measure::Area && columns[c].scenario == scenario)
                return static_cast<int>(c);
        return -1;
    };
    for (const RowSums& r : sums.rows) {
        Row row = r.row;
        row.values.assign(columns.size(), kBlank);
        for (std::size_t c = 0; c < columns.size(); ++c) {
            if (!r.filled[c]) continue;
            const Column& column = columns[c];
            int area = areaColumn(column.scenario);
            if (area < 0) continue;
            std::size_t a = static_cast<std::size_t>(area);
            double scale = std::pow(10.0, columns[a].decimals);
            double value = static_cast<double>(r.units[a]) / scale;
            if (column.measure == Measure::Area) {
                row.values[c] = value;
            } else if (column.measure == Measure::Share) {
                if (base != nullptr && base->units[a] > 0)
                    row.values[c] = roundTo(
                        static_cast<double>(r.units[a]) / static_cast<double>(base->units[a]) * 100,
                        column.decimals);
            } else {
                long people = 0;
                for (const BalanceLine& line : balance)
                    if (line.scenario == column.scenario) people += line.population;
                if (people > 0)
                    row.values[c] = roundTo(
                        value / perHectare(table.unit) * 10000 / static_cast<double>(people),
                        column.decimals);
            }
        }
        table.rows.push_back(row);
    }
    return table;
}

}  // namespace

Report combineReports(const std::vector<const Report*>& reports) {
    Report combined;
    std::vector<TableSums> tables;
    auto sumsOf = [&tables](const Table& table) -> TableSums& {
        auto found = std::find_if(tables.begin(), tables.end(),
                                  [&](const TableSums& t) { return t.table.key == table.key; });
        if (found != tables.end()) return *found;
        TableSums added;
        added.table = table;
        added.table.columns.clear();
        added.table.rows.clear();
        tables.push_back(added);
        return tables.back();
    };
    for (const Report* report : reports)
        for (const Table& table : report->tables)
            addColumns(sumsOf(table), table);
    for (const Report* report : reports) {
        for (const Table& table : report->tables)
            addTable(sumsOf(table), table);
        for (const BalanceLine& line : report->balance) {
            auto found = std::find_if(
                combined.balance.begin(), combined.balance.end(),
                [&](const BalanceLine& known) { return known.scenario == line.scenario; });
            if (found == combined.balance.end()) {
                BalanceLine added;
                added.scenario = line.scenario;
                found = combined.balance.insert(
                    std::find_if(combined.balance.begin(), combined.balance.end(),
                                 [&](const BalanceLine& known) {
                                     return line.scenario == Scenario::Current &&
                                            known.scenario == Scenario::Planned;
                                 }),
                    added);
            }
            found->scoped = found->scoped || line.scoped;
            found->scopeHectares += line.scopeHectares;
            found->parcelHectares += line.parcelHectares;
            found->remainderHectares += line.remainderHectares;
            found->overlapHectares += line.overlapHectares;
            found->unknownHectares += line.unknownHectares;
            found->parcels += line.parcels;
            found->population += line.population;
        }
    }
    for (const TableSums& sums : tables)
        combined.tables.push_back(finish(sums, combined.balance));
    return combined;
}

}  // namespace kplan::report
