#pragma once
// The tables and warnings of a report as CSV for a spreadsheet on a Chinese desktop:
// UTF-8 after a byte-order mark, one section per table with its own header row naming
// every column, sections apart by an empty line, the warnings last.
#include <string>
#include <string_view>
#include <vector>

#include "report/Balance.h"

namespace kplan::report {

inline constexpr const char* kUtf8ByteOrderMark = "\xEF\xBB\xBF";

std::string csvField(std::string_view text);
std::string csvRow(const std::vector<std::string>& cells);

// The sections, without the byte-order mark (the caller writes it once, first).
std::string csvTables(const Report& report, bool english);
std::string csvWarnings(const Report& report, bool english);

}  // namespace kplan::report
