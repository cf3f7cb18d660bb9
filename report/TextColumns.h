#pragma once
// Text laid out in columns for a terminal: Chinese characters take two columns.
#include <string>
#include <string_view>
#include <vector>

namespace kplan::report {

// Terminal columns a UTF-8 text takes: East Asian wide characters count two.
std::size_t displayWidth(std::string_view utf8);

// Rows of cells printed in columns; right-aligned columns are marked in rightAligned.
std::string alignedTable(const std::vector<std::vector<std::string>>& rows,
                         const std::vector<bool>& rightAligned);

// value with a fixed number of decimals ("12.35"), never "-0.00".
std::string fixed(double value, int decimals);

}  // namespace kplan::report
