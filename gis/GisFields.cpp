#include "gis/GisFields.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "host/mfc/CString.h"
#include "record/DKKeys.h"

namespace gis {

namespace {

bool startsWith(const std::string& text, const char* prefix) {
    return text.rfind(prefix, 0) == 0;
}

std::string trimmed(const std::string& text) {
    std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return {};
    std::size_t last = text.find_last_not_of(" \t\r\n");
    return text.substr(first, last - first + 1);
}

}  // namespace

FieldType fieldTypeOfKey(const std::string& key) {
    if (startsWith(key, "FD_") || startsWith(key, "FDC_")) return FieldType::Real;
    if (startsWith(key, "FN_")) return FieldType::Integer;
    return FieldType::Text;
}

bool looksLikeKey(const std::string& name) {
    return startsWith(name, "FS_") || startsWith(name, "FD_") || startsWith(name, "FDC_") ||
           startsWith(name, "FN_");
}

std::string keyOfFieldName(const std::string& name) {
    if (looksLikeKey(name)) return name;  // no label has a key's prefix
    CString wide = CString::FromUtf8(name);
    for (const dk::LabelKey& label : dk::LABEL_KEYS) {
        if (wide == label.label) return CString(label.key).ToUtf8();
    }
    for (const dk::OldLabels& old : dk::OLD_LABELS) {
        if (wide == old.first || wide == old.second) return CString(old.key).ToUtf8();
    }
    return name;
}

bool parseReal(const std::string& text, double& value) {
    std::string t = trimmed(text);
    if (!t.empty() && t[0] == '+') t.erase(0, 1);
    if (t.empty()) return false;
    double parsed = 0;
    auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), parsed);
    if (ec != std::errc() || end != t.data() + t.size() || !std::isfinite(parsed)) return false;
    value = parsed;
    return true;
}

bool parseInteger(const std::string& text, long long& value) {
    double real = 0;
    if (!parseReal(text, real)) return false;
    // "12.0" is a whole number as entered in many drawings; "12.5" is not.
    if (real != std::floor(real) || std::fabs(real) > 9.0e15) return false;
    value = static_cast<long long>(real);
    return true;
}

std::string realText(double value) {
    char buffer[32];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    return ec == std::errc() ? std::string(buffer, end) : std::string();
}

}  // namespace gis
