#include "report/XlsxWriter.h"

#include <xlsxwriter.h>

#include <cstdio>
#include <filesystem>
#include <map>

#include "host/db/Utf8Path.h"
#include "report/JsonWriter.h"
#include "report/TerminalWriter.h"
#include "report/TextColumns.h"

namespace kplan::report {

namespace {

// "C5"-style cell names for formulas.
std::string cell(int row, int column, bool fixedRow = false) {
    std::string name;
    for (int c = column + 1; c > 0; c = (c - 1) / 26)
        name.insert(name.begin(), static_cast<char>('A' + (c - 1) % 26));
    return name + (fixedRow ? "$" : "") + std::to_string(row + 1);
}

std::string decimalsFormat(int decimals) {
    return decimals <= 0 ? "0" : "0." + std::string(static_cast<std::size_t>(decimals), '0');
}

class Sheets {
  public:
    explicit Sheets(lxw_workbook* book) : book_(book) {
        title_ = workbook_add_format(book_);
        format_set_bold(title_);
        format_set_font_size(title_, 14);
        format_set_align(title_, LXW_ALIGN_CENTER);
        header_ = workbook_add_format(book_);
        format_set_bold(header_);
        format_set_text_wrap(header_);
        format_set_align(header_, LXW_ALIGN_CENTER);
        format_set_align(header_, LXW_ALIGN_VERTICAL_CENTER);
        format_set_border(header_, LXW_BORDER_THIN);
        text_ = workbook_add_format(book_);
        format_set_border(text_, LXW_BORDER_THIN);
        bold_ = workbook_add_format(book_);
        format_set_bold(bold_);
        format_set_border(bold_, LXW_BORDER_THIN);
    }

    lxw_format* indented(int level) {
        auto found = indents_.find(level);
        if (found != indents_.end()) return found->second;
        lxw_format* f = workbook_add_format(book_);
        format_set_border(f, LXW_BORDER_THIN);
        format_set_indent(f, static_cast<uint8_t>(level));
        return indents_[level] = f;
    }

    lxw_format* number(int decimals, bool total) {
        int key = decimals * 2 + (total ? 1 : 0);
        auto found = numbers_.find(key);
        if (found != numbers_.end()) return found->second;
        lxw_format* f = workbook_add_format(book_);
        format_set_num_format(f, decimalsFormat(decimals).c_str());
        format_set_border(f, LXW_BORDER_THIN);
        if (total) format_set_bold(f);
        return numbers_[key] = f;
    }

    void table(const Table& table, const std::vector<BalanceLine>& balance, bool english) {
        lxw_worksheet* sheet = workbook_add_worksheet(book_, table.title.c_str());
        const int firstValue = 2, headerRow = 2, firstRow = 3;
        const int columns = firstValue + static_cast<int>(table.columns.size());
        worksheet_merge_range(sheet, 0, 0, 0, static_cast<lxw_col_t>(columns - 1),
                              (english ? table.titleEn : table.title).c_str(), title_);
        worksheet_set_row(sheet, headerRow, 36, nullptr);
        worksheet_write_string(sheet, headerRow, 0, english ? "code" : "代码", header_);
        worksheet_write_string(sheet, headerRow, 1, english ? "name" : "名称", header_);
        worksheet_set_column(sheet, 0, 0, 8, nullptr);
        worksheet_set_column(sheet, 1, 1, 30, nullptr);
        worksheet_set_column(sheet, firstValue, static_cast<lxw_col_t>(columns - 1), 16, nullptr);
        for (std::size_t c = 0; c < table.columns.size(); ++c) {
            worksheet_write_string(sheet, headerRow, static_cast<lxw_col_t>(firstValue + c),
                                   columnTitle(table, table.columns[c], english).c_str(), header_);
        }
        // The population of each column group, below the table, for the per-person formulas.
        const int populationRow = firstRow + static_cast<int>(table.rows.size()) + 1;
        std::map<int, int> populationCell;  // column group to column of its population
        int baseRow = -1;
        for (std::size_t r = 0; r < table.rows.size(); ++r) {
            // The share base is the row whose share is 100 in every group.
            const Row& row = table.rows[r];
            if (row.total && baseRow < 0) {
                for (std::size_t c = 0; c < table.columns.size(); ++c) {
                    if (table.columns[c].measure == Measure::Share && row.values[c] == 100.0)
                        baseRow = firstRow + static_cast<int>(r);
                }
            }
        }
        for (std::size_t r = 0; r < table.rows.size(); ++r) {
            const Row& row = table.rows[r];
            auto at = static_cast<lxw_row_t>(firstRow + static_cast<int>(r));
            worksheet_write_string(sheet, at, 0, row.code.c_str(), row.total ? bold_ : text_);
            worksheet_write_string(sheet, at, 1, rowName(row, english).c_str(),
                                   row.total ? bold_ : indented(row.level));
            int areaColumn = -1;
            for (std::size_t c = 0; c < table.columns.size(); ++c) {
                const Column& column = table.columns[c];
                auto col = static_cast<lxw_col_t>(firstValue + static_cast<int>(c));
                lxw_format* format = number(column.decimals, row.total);
                double v = row.values[c];
                if (column.measure == Measure::Area) areaColumn = col;
                if (isBlank(v)) {
                    worksheet_write_blank(sheet, at, col, format);
                    continue;
                }
                if (column.measure == Measure::Area && !row.parts.empty() && row.total) {
                    std::string sum = "=";
                    for (std::size_t p = 0; p < row.parts.size(); ++p) {
                        sum += (p ? "+" : "") + cell(firstRow + row.parts[p], col);
                    }
                    worksheet_write_formula_num(sheet, at, col, sum.c_str(), format, v);
                } else if (column.measure == Measure::Area) {
                    worksheet_write_number(sheet, at, col, v, format);
                } else if (column.measure == Measure::Share && baseRow >= 0) {
                    double base = table.rows[static_cast<std::size_t>(baseRow - firstRow)]
                                      .values[static_cast<std::size_t>(areaColumn - firstValue)];
                    double area = row.values[static_cast<std::size_t>(areaColumn - firstValue)];
                    std::string f =
                        "=" + cell(at, areaColumn) + "/" + cell(baseRow, areaColumn, true) + "*100";
                    worksheet_write_formula_num(sheet, at, col, f.c_str(), format,
                                                base != 0 ? area / base * 100 : 0);
                } else if (column.measure == Measure::PerPerson) {
                    std::size_t group = c / 3;
                    long people = group < balance.size() ? balance[group].population : 0;
                    populationCell[static_cast<int>(group)] = col;
                    double area = row.values[static_cast<std::size_t>(areaColumn - firstValue)];
                    double perUnit = 10000 / perHectare(table.unit);
                    std::string f = "=" + cell(at, areaColumn) + "*" + jsonless(perUnit) + "/" +
                                    cell(populationRow, col, true);
                    worksheet_write_formula_num(sheet, at, col, f.c_str(), format,
                                                people > 0 ? area * perUnit / people : 0);
                } else {
                    worksheet_write_number(sheet, at, col, v, format);
                }
            }
        }
        for (const auto& [group, col] : populationCell) {
            long people = static_cast<std::size_t>(group) < balance.size()
                              ? balance[static_cast<std::size_t>(group)].population
                              : 0;
            worksheet_write_string(sheet, static_cast<lxw_row_t>(populationRow),
                                   static_cast<lxw_col_t>(col - 1),
                                   english ? "population" : "人口（人）", text_);
            worksheet_write_number(sheet, static_cast<lxw_row_t>(populationRow),
                                   static_cast<lxw_col_t>(col), static_cast<double>(people),
                                   number(0, false));
        }
        int noteRow = populationRow + 2;
        for (const std::string& note : english ? table.notesEn : table.notes)
            worksheet_write_string(sheet, static_cast<lxw_row_t>(noteRow++), 0, note.c_str(),
                                   nullptr);
    }

    void warnings(const Report& report, bool english) {
        lxw_worksheet* sheet = workbook_add_worksheet(book_, english ? "Warnings" : "警告");
        const char* headers[] = {"kind", "scenario", "code", "area_ha", "handles", "message"};
        for (int c = 0; c < 6; ++c)
            worksheet_write_string(sheet, 0, static_cast<lxw_col_t>(c), headers[c], header_);
        worksheet_set_column(sheet, 0, 3, 12, nullptr);
        worksheet_set_column(sheet, 4, 4, 24, nullptr);
        worksheet_set_column(sheet, 5, 5, 80, nullptr);
        lxw_row_t at = 1;
        for (const Warning& w : report.warnings) {
            std::string handles;
            for (const std::string& h : w.handles)
                handles += (handles.empty() ? "" : " ") + h;
            worksheet_write_string(sheet, at, 0, w.kind.c_str(), text_);
            worksheet_write_string(sheet, at, 1, scenarioKey(w.scenario), text_);
            worksheet_write_string(sheet, at, 2, w.code.c_str(), text_);
            worksheet_write_number(sheet, at, 3, w.hectares, number(4, false));
            worksheet_write_string(sheet, at, 4, handles.c_str(), text_);
            worksheet_write_string(sheet, at, 5, describe(w, english).c_str(), text_);
            ++at;
        }
    }

  private:
    static std::string jsonless(double value) {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%.10g", value);
        return buffer;
    }

    lxw_workbook* book_;
    lxw_format *title_, *header_, *text_, *bold_;
    std::map<int, lxw_format*> indents_, numbers_;
};

}  // namespace

bool writeXlsx(const Report& report, const std::string& path, bool english, std::string& error) {
    std::filesystem::path target = db::utf8Path(path);
    std::filesystem::path partial = target;
    partial += ".partial";
    // The library reports its own failures on stderr: a folder that is not there is found
    // first, with one message of ours.
    std::error_code exists;
    std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
    lxw_workbook* book = std::filesystem::is_directory(folder, exists)
                             ? workbook_new(db::utf8Name(partial).c_str())
                             : nullptr;
    if (book == nullptr) {
        error = path + ": cannot write the file";
        return false;
    }
    Sheets sheets(book);
    for (const Table& table : report.tables)
        sheets.table(table, report.balance, english);
    sheets.warnings(report, english);
    lxw_error closed = workbook_close(book);
    std::error_code ec;
    if (closed != LXW_NO_ERROR) {
        std::filesystem::remove(partial, ec);
        error = path + ": cannot write the file (" + lxw_strerror(closed) + ")";
        return false;
    }
    std::filesystem::rename(partial, target, ec);
    if (ec) {
        std::filesystem::remove(partial, ec);
        error = path + ": cannot write the file";
        return false;
    }
    return true;
}

}  // namespace kplan::report
