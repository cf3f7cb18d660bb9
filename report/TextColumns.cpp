#include "report/TextColumns.h"

#include <algorithm>
#include <cstdio>

namespace kplan::report {

namespace {

// Decodes one UTF-8 character at text[i], advancing i; invalid bytes count as one each.
char32_t nextCodePoint(std::string_view text, std::size_t& i) {
    auto byte = static_cast<unsigned char>(text[i++]);
    int extra = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : byte >= 0xC0 ? 1 : 0;
    char32_t cp = extra == 0 ? byte : byte & (0x3F >> extra);
    for (int k = 0; k < extra && i < text.size(); ++k) {
        auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0) != 0x80) break;
        cp = (cp << 6) | (next & 0x3F);
        ++i;
    }
    return cp;
}

bool isWide(char32_t cp) {
    return (cp >= 0x1100 && cp <= 0x115F) || (cp >= 0x2E80 && cp <= 0xA4CF) ||
           (cp >= 0xAC00 && cp <= 0xD7A3) || (cp >= 0xF900 && cp <= 0xFAFF) ||
           (cp >= 0xFE30 && cp <= 0xFE4F) || (cp >= 0xFF00 && cp <= 0xFF60) ||
           (cp >= 0xFFE0 && cp <= 0xFFE6) || (cp >= 0x20000 && cp <= 0x3FFFD);
}

}  // namespace

std::size_t displayWidth(std::string_view utf8) {
    std::size_t width = 0;
    for (std::size_t i = 0; i < utf8.size();)
        width += isWide(nextCodePoint(utf8, i)) ? 2 : 1;
    return width;
}

std::string alignedTable(const std::vector<std::vector<std::string>>& rows,
                         const std::vector<bool>& rightAligned) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        if (widths.size() < row.size()) widths.resize(row.size(), 0);
        for (std::size_t c = 0; c < row.size(); ++c)
            widths[c] = (std::max)(widths[c], displayWidth(row[c]));
    }
    std::string out;
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t c = 0; c < row.size(); ++c) {
            std::string pad(widths[c] - displayWidth(row[c]), ' ');
            bool right = c < rightAligned.size() && rightAligned[c];
            if (c > 0) line += "  ";
            line += right ? pad + row[c] : row[c] + (c + 1 < row.size() ? pad : "");
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out += line + "\n";
    }
    return out;
}

std::string fixed(double value, int decimals) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
    std::string text(buffer);
    // -0.00 reads as a negative area to a planner.
    if (text.find_first_not_of("-0.") == std::string::npos && text[0] == '-') text.erase(0, 1);
    return text;
}

}  // namespace kplan::report
