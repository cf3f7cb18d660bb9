#include "host/db/HatchPatternFile.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <system_error>

#include "host/db/ExecutablePath.h"
#include "host/db/InstalledData.h"
#include "host/db/Utf8Path.h"

namespace db {

namespace {

namespace fs = std::filesystem;

std::string trim(std::string_view text) {
    std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return std::string();
    std::size_t last = text.find_last_not_of(" \t\r\n");
    return std::string(text.substr(first, last - first + 1));
}

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool parseNumber(const std::string& text, double& value) {
    if (text.empty()) return false;
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return end == text.c_str() + text.size() && std::isfinite(value);
}

struct Settings {
    std::mutex mutex;
    std::string folder;
    // The searched folder, kept for the environment it was found under: every hatch with a
    // pattern asks, and the search walks the file system.
    std::string searchedFor, searched;
    bool hasSearched = false;
    // Per path: the file once read, or the error it gave.
    std::map<std::string, std::pair<std::unique_ptr<HatchPatternFile>, std::string>> files;
};

Settings& settings() {
    static Settings s;
    return s;
}

bool isDirectory(const fs::path& path) {
    std::error_code ec;
    return fs::is_directory(path, ec);
}

std::string defaultFolder() {
    std::vector<fs::path> candidates;
    if (const char* env = std::getenv("KPLAN_PATTERNS"); env && *env) return env;
    if (const char* data = std::getenv("KPLAN_DATA"); data && *data)
        candidates.push_back(utf8Path(data) / ".." / "patterns");
    if (fs::path installed = installedDataFolder("patterns"); !installed.empty())
        candidates.push_back(installed);
    if (fs::path exe = executablePath(); !exe.empty()) {
        fs::path dir = exe.parent_path();
        candidates.push_back(dir / ".." / "share" / "kplan" / "patterns");
        candidates.push_back(dir / "data" / "patterns");
        candidates.push_back(dir / ".." / "data" / "patterns");
    }
    candidates.push_back(utf8Path(KPLAN_SOURCE_DIR) / "data" / "patterns");
    for (const fs::path& c : candidates) {
        if (isDirectory(c)) return utf8Name(c.lexically_normal());
    }
    return candidates.empty() ? std::string() : utf8Name(candidates.back().lexically_normal());
}

}  // namespace

bool HatchPatternFile::parse(std::string_view text, const std::string& fileName,
                             std::string& error) {
    std::vector<HatchPattern> patterns;
    std::size_t lineNumber = 0, start = 0;
    auto fail = [&](const std::string& what) {
        error = fileName + ", line " + std::to_string(lineNumber) + ": " + what;
        return false;
    };
    // A UTF-8 byte order mark is no part of the first line.
    if (text.substr(0, 3) == "\xEF\xBB\xBF") start = 3;
    while (start <= text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        ++lineNumber;
        std::string line = trim(text.substr(start, end - start));
        start = end + 1;
        if (line.empty() || line[0] == ';') continue;
        if (line[0] == '*') {
            std::size_t comma = line.find(',');
            HatchPattern pattern;
            pattern.name = trim(std::string_view(line).substr(
                1, comma == std::string::npos ? std::string::npos : comma - 1));
            if (comma != std::string::npos) pattern.description = trim(line.substr(comma + 1));
            if (pattern.name.empty()) return fail("a pattern without a name");
            patterns.push_back(std::move(pattern));
            continue;
        }
        if (patterns.empty()) return fail("a line family before the first *NAME line");
        std::vector<double> numbers;
        std::stringstream fields(line);
        std::string field;
        while (std::getline(fields, field, ',')) {
            double v = 0;
            if (!parseNumber(trim(field), v)) return fail("\"" + trim(field) + "\" is no number");
            numbers.push_back(v);
        }
        if (!line.empty() && line.back() == ',') return fail("a comma with no number after it");
        if (numbers.size() < 5)
            return fail("a line family needs angle, x-origin, y-origin, delta-x and delta-y");
        PatternLine family;
        family.angle = numbers[0];
        family.baseX = numbers[1];
        family.baseY = numbers[2];
        double a = numbers[0] * M_PI / 180, along = numbers[3], across = numbers[4];
        family.offsetX = along * std::cos(a) - across * std::sin(a);
        family.offsetY = along * std::sin(a) + across * std::cos(a);
        family.dashes.assign(numbers.begin() + 5, numbers.end());
        patterns.back().lines.push_back(std::move(family));
    }
    patterns_ = std::move(patterns);
    return true;
}

const HatchPattern* HatchPatternFile::find(std::wstring_view name) const {
    for (const HatchPattern& p : patterns_) {
        if (p.name.size() != name.size()) continue;
        bool same = true;
        for (std::size_t i = 0; i < name.size() && same; ++i) {
            wchar_t c = name[i];
            same = c < 128 && upper(static_cast<char>(c)) == upper(p.name[i]);
        }
        if (same) return &p;
    }
    return nullptr;
}

void setHatchPatternFolder(const std::string& folder) {
    std::lock_guard<std::mutex> lock(settings().mutex);
    settings().folder = folder;
}

std::string hatchPatternFolder() {
    Settings& s = settings();
    std::lock_guard<std::mutex> lock(s.mutex);
    if (!s.folder.empty()) return s.folder;
    std::string environment;
    for (const char* name : {"KPLAN_PATTERNS", "KPLAN_DATA"}) {
        const char* value = std::getenv(name);
        environment += value ? value : "";
        environment += '\0';
    }
    if (!s.hasSearched || s.searchedFor != environment) {
        s.searched = defaultFolder();
        s.searchedFor = std::move(environment);
        s.hasSearched = true;
    }
    return s.searched;
}

const HatchPatternFile* hatchPatterns(bool metric, std::string& error) {
    std::string path =
        utf8Name(utf8Path(hatchPatternFolder()) / (metric ? "kplaniso.pat" : "kplan.pat"));
    Settings& s = settings();
    std::lock_guard<std::mutex> lock(s.mutex);
    auto found = s.files.find(path);
    if (found == s.files.end()) {
        auto file = std::make_unique<HatchPatternFile>();
        std::string problem;
        std::ifstream in(utf8Path(path), std::ios::binary);
        if (!in) {
            problem = path + ": no hatch pattern file there";
            file.reset();
        } else {
            std::stringstream bytes;
            bytes << in.rdbuf();
            if (!file->parse(bytes.str(), path, problem)) file.reset();
        }
        found = s.files.emplace(path, std::make_pair(std::move(file), problem)).first;
    }
    error = found->second.second;
    return found->second.first.get();
}

}  // namespace db
