#include "cli/Output.h"

#include <charconv>
#include <cmath>

namespace kplan::cli {

bool parseFormat(const std::string& text, Format& format) {
    if (text == "table")
        format = Format::Table;
    else if (text == "csv")
        format = Format::Csv;
    else if (text == "json")
        format = Format::Json;
    else
        return false;
    return true;
}

std::string jsonNumber(double value) {
    if (!std::isfinite(value)) return "null";
    char buffer[32];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    return ec == std::errc() ? std::string(buffer, end) : "null";
}

nlohmann::json jsonValue(const std::string& value, bool number) {
    if (value.empty() || (number && value == "null")) return nullptr;
    if (number) {
        double parsed = 0;
        auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(), parsed);
        if (ec == std::errc() && end == value.data() + value.size() && std::isfinite(parsed))
            return parsed;
    }
    return value;
}

}  // namespace kplan::cli
