#include "report/TerminalWriter.h"

#include "report/TextColumns.h"

namespace kplan::report {

std::string columnTitle(const Table& table, const Column& column, bool english) {
    bool current = column.scenario == Scenario::Current;
    switch (column.measure) {
        case Measure::Area:
            return english ? std::string(current ? "current" : "planned") + " area (" +
                                 unitName(table.unit, true) + ")"
                           : std::string(current ? "现状" : "规划") + "面积（" +
                                 unitName(table.unit, false) + "）";
        case Measure::Share:
            return english
                       ? std::string(current ? "current" : "planned") + " % of " + table.shareBaseEn
                       : std::string(current ? "现状" : "规划") + "占" + table.shareBase +
                             "比例（%）";
        case Measure::PerPerson:
            break;
    }
    return english ? std::string(current ? "current" : "planned") + " m2 per person"
                   : std::string(current ? "现状" : "规划") + "人均（平方米/人）";
}

std::string rowName(const Row& row, bool english) {
    std::string name = english && !row.nameEn.empty() ? row.nameEn : row.name;
    if (row.among) name = (english ? "of which: " : "其中：") + name;
    return name;
}

std::string terminalTables(const Report& report, bool english) {
    std::string out;
    for (const Table& table : report.tables) {
        if (!out.empty()) out += "\n";
        out += (english ? table.titleEn : table.title) + "\n";
        std::vector<std::vector<std::string>> lines;
        std::vector<std::string> header = {english ? "code" : "代码", english ? "name" : "名称"};
        std::vector<bool> right = {false, false};
        for (const Column& column : table.columns) {
            header.push_back(columnTitle(table, column, english));
            right.push_back(true);
        }
        lines.push_back(header);
        for (std::size_t r = 0; r < table.rows.size(); ++r) {
            const Row& row = table.rows[r];
            // "其中：" once, before the first part of a class; the others align under it.
            bool follows = r > 0 && table.rows[r - 1].among && table.rows[r - 1].level == row.level;
            std::string name = rowName(row, english);
            if (follows) {
                std::string mark = english ? "of which: " : "其中：";
                name = std::string(displayWidth(mark), ' ') + name.substr(mark.size());
            }
            if (row.outOfRange) name += " *";
            std::vector<std::string> line = {row.code, std::string(2 * row.level, ' ') + name};
            for (std::size_t c = 0; c < table.columns.size(); ++c) {
                double v = row.values[c];
                line.push_back(isBlank(v) ? "" : fixed(v, table.columns[c].decimals));
            }
            lines.push_back(line);
        }
        out += alignedTable(lines, right);
        const auto& notes = english ? table.notesEn : table.notes;
        for (const std::string& note : notes)
            out += "* " + note + "\n";
    }
    return out;
}

std::string terminalWarnings(const Report& report, bool english) {
    if (report.warnings.empty()) return "";
    std::string out = english ? "Warnings\n" : "警告\n";
    for (const Warning& w : report.warnings)
        out += "- " + describe(w, english) + "\n";
    return out;
}

}  // namespace kplan::report
