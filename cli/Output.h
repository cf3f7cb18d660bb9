#pragma once
// Writing results for people (aligned tables, Chinese text counted as two columns) and
// for machines (CSV as RFC 4180 has it, JSON with numbers that read back exactly).
#include <string>
#include <string_view>
#include <vector>

namespace kplan::cli {

enum class Format { Table, Csv, Json };

// "table", "csv" or "json".
bool parseFormat(const std::string& text, Format& format);

// Terminal columns a UTF-8 text takes: East Asian wide characters count two.
std::size_t displayWidth(std::string_view utf8);

// Rows of cells printed in columns; right-aligned columns are marked in rightAligned.
std::string alignedTable(const std::vector<std::vector<std::string>>& rows,
                         const std::vector<bool>& rightAligned);

std::string csvField(std::string_view text);
std::string csvRow(const std::vector<std::string>& cells);

std::string jsonString(std::string_view utf8);
// The shortest text that reads back to the same double; null for NaN and infinities.
std::string jsonNumber(double value);

// value with a fixed number of decimals ("12.35").
std::string fixed(double value, int decimals);

}  // namespace kplan::cli
