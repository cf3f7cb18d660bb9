#include "report/CsvWriter.h"

#include "report/JsonWriter.h"
#include "report/TerminalWriter.h"
#include "report/TextColumns.h"

namespace kplan::report {

std::string csvField(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
    std::string quoted = "\"";
    for (char ch : text) {
        if (ch == '"') quoted += '"';
        quoted += ch;
    }
    return quoted + "\"";
}

std::string csvRow(const std::vector<std::string>& cells) {
    std::string row;
    for (std::size_t i = 0; i < cells.size(); ++i)
        row += (i ? "," : "") + csvField(cells[i]);
    return row + "\r\n";
}

std::string csvTables(const Report& report, bool english) {
    std::string out;
    for (const Table& table : report.tables) {
        std::vector<std::string> header = {"table", "level", english ? "code" : "代码",
                                           english ? "name" : "名称"};
        for (const Column& column : table.columns)
            header.push_back(columnTitle(table, column, english));
        out += csvRow(header);
        for (const Row& row : table.rows) {
            std::vector<std::string> cells = {table.key, std::to_string(row.level), row.code,
                                              rowName(row, english)};
            for (std::size_t c = 0; c < table.columns.size(); ++c) {
                double v = row.values[c];
                cells.push_back(isBlank(v) ? "" : fixed(v, table.columns[c].decimals));
            }
            out += csvRow(cells);
        }
        out += "\r\n";
    }
    return out;
}

std::string csvWarnings(const Report& report, bool english) {
    std::string out = csvRow({"warning", "scenario", "code", "area_ha", "handles", "message"});
    for (const Warning& w : report.warnings) {
        std::string handles;
        for (const std::string& h : w.handles)
            handles += (handles.empty() ? "" : " ") + h;
        out += csvRow({w.kind, scenarioKey(w.scenario), w.code, fixed(w.hectares, 4), handles,
                       describe(w, english)});
    }
    return out + "\r\n";
}

}  // namespace kplan::report
