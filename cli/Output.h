#pragma once
// Writing results for people (aligned tables, Chinese text counted as two columns) and
// for machines (CSV as RFC 4180 has it, JSON through nlohmann-json with numbers that read
// back exactly).
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "report/CsvWriter.h"
#include "report/TextColumns.h"

namespace kplan::cli {

enum class Format { Table, Csv, Json };

// "table", "csv" or "json".
bool parseFormat(const std::string& text, Format& format);

// Aligned columns for the terminal, shared with the balance tables.
using report::alignedTable;
using report::displayWidth;
using report::fixed;

// CSV as RFC 4180 has it, shared with the balance tables.
using report::csvField;
using report::csvRow;

// The shortest text that reads back to the same double; null for NaN and infinities.
std::string jsonNumber(double value);
// A value of a JSON row: null when empty, a number when the column holds numbers and the
// text reads as one, else the text (invalid UTF-8 replaced when written).
nlohmann::json jsonValue(const std::string& value, bool number);

}  // namespace kplan::cli
