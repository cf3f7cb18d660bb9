#include "report/StandardRanges.h"

#include <cstdio>
#include <limits>

#include "report/TextColumns.h"

namespace kplan::report {

namespace {

constexpr double kNoLimit = std::numeric_limits<double>::infinity();

std::string limits(const StandardRange& r, bool english) {
    if (r.high == kNoLimit) return (english ? "at least " : "不低于 ") + fixed(r.low, 1);
    return fixed(r.low, 1) + "–" + fixed(r.high, 1);
}

// "表4.3.1" as "table 4.3.1"; a clause ("4.3.3") as it is.
std::string tableEn(const std::string& table) {
    const std::string mark = "表";
    return table.compare(0, mark.size(), mark) == 0 ? "table " + table.substr(mark.size()) : table;
}

}  // namespace

const std::vector<StandardRange>& rangesOf2011() {
    // GB 50137-2011 城市用地分类与规划建设用地标准, chapter 4:
    // 表4.2.1 planned per-capita urban construction land, 65.0 to 115.0 m² a person over all
    //   climate zones and present sizes (the 4.2.3/4.2.4 exceptions for capitals and
    //   border towns not taken);
    // 4.3.1 (表4.3.1) per-capita residential land: 28.0–38.0 in climate zones I, II, VI,
    //   VII, 23.0–36.0 in III, IV, V: 23.0–38.0 here; 4.3.2 public administration and
    //   service land at least 5.5; 4.3.3 road and transport land at least 12.0; 4.3.4
    //   green space and square land at least 10.0, park green space at least 8.0;
    // 表4.4.1 the structure: shares of urban construction land R 25.0–40.0 %, A 5.0–8.0 %,
    //   M 15.0–30.0 %, S 10.0–25.0 %, G 10.0–15.0 %.
    static const std::vector<StandardRange> ranges = {
        {"H11", Measure::PerPerson, 65.0, 115.0, "表4.2.1"},
        {"R", Measure::PerPerson, 23.0, 38.0, "表4.3.1"},
        {"A", Measure::PerPerson, 5.5, kNoLimit, "4.3.2"},
        {"S", Measure::PerPerson, 12.0, kNoLimit, "4.3.3"},
        {"G", Measure::PerPerson, 10.0, kNoLimit, "4.3.4"},
        {"G1", Measure::PerPerson, 8.0, kNoLimit, "4.3.4"},
        {"R", Measure::Share, 25.0, 40.0, "表4.4.1"},
        {"A", Measure::Share, 5.0, 8.0, "表4.4.1"},
        {"M", Measure::Share, 15.0, 30.0, "表4.4.1"},
        {"S", Measure::Share, 10.0, 25.0, "表4.4.1"},
        {"G", Measure::Share, 10.0, 15.0, "表4.4.1"},
    };
    return ranges;
}

void checkRanges(Table& table, const std::vector<StandardRange>& ranges) {
    for (Row& row : table.rows) {
        for (const StandardRange& range : ranges) {
            if (row.code != range.code) continue;
            for (std::size_t c = 0; c < table.columns.size(); ++c) {
                const Column& column = table.columns[c];
                if (column.scenario != Scenario::Planned || column.measure != range.measure)
                    continue;
                double v = row.values[c];
                if (isBlank(v) || (v >= range.low && v <= range.high)) continue;
                row.outOfRange = true;
                bool share = range.measure == Measure::Share;
                std::string figure = fixed(v, column.decimals);
                table.notes.push_back(row.code + " " + row.name + "：规划" +
                                      (share ? "占城市建设用地比例 " + figure + "%"
                                             : "人均 " + figure + " 平方米/人") +
                                      "，GB 50137-2011 " + range.table + "：" +
                                      limits(range, false) + (share ? "%" : " 平方米/人"));
                table.notesEn.push_back(row.code + " " + row.name + ": planned " +
                                        (share ? "share of urban construction land " + figure + " %"
                                               : figure + " m2 a person") +
                                        "; GB 50137-2011 " + tableEn(range.table) + ": " +
                                        limits(range, true) + (share ? " %" : " m2 a person"));
            }
        }
    }
}

}  // namespace kplan::report
