#include "cli/Output.h"

#include <charconv>
#include <cmath>
#include <cstdio>

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

std::string jsonString(std::string_view utf8) {
    std::string out = "\"";
    for (char ch : utf8) {
        auto byte = static_cast<unsigned char>(ch);
        switch (ch) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                if (byte < 0x20) {
                    char escaped[8];
                    std::snprintf(escaped, sizeof escaped, "\\u%04x", byte);
                    out += escaped;
                } else {
                    out += ch;
                }
        }
    }
    return out + "\"";
}

std::string jsonNumber(double value) {
    if (!std::isfinite(value)) return "null";
    char buffer[32];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    return ec == std::errc() ? std::string(buffer, end) : "null";
}

}  // namespace kplan::cli
