#include "tests/host/dxf/DxfTestSupport.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/db/GroupCode.h"
#include "host/dxf/Dxf.h"
#include "host/dxf/DxfStrings.h"
#include "host/dxf/TagReader.h"

namespace dxftest {

namespace {

struct Cleanup {
    std::vector<std::string> folders;
    ~Cleanup() {
        for (const std::string& f : folders) {
            std::error_code ec;
            std::filesystem::permissions(f, std::filesystem::perms::owner_all, ec);
            std::filesystem::remove_all(f, ec);
        }
    }
};
Cleanup cleanup;

}  // namespace

std::string makeTempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kplan-dxf-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) return "";
    cleanup.folders.push_back(pattern);
    return pattern;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary);
    out << bytes;
}

std::unique_ptr<AcDbDatabase> loadText(const std::string& text, std::string& error,
                                       const dxf::ReadOptions& options) {
    auto database = std::make_unique<AcDbDatabase>(false);
    std::istringstream in(text);
    if (!dxf::read(in, *database, error, "test.dxf", options)) return nullptr;
    return database;
}

std::string saveText(const AcDbDatabase& database, const std::string& version) {
    std::ostringstream out;
    std::string error;
    dxf::SaveOptions options;
    options.version = version;
    if (!dxf::write(database, out, error, options)) return "error: " + error;
    return out.str();
}

Tags normalizedTags(const std::string& bytes) {
    std::vector<std::pair<int, std::string>> raw;
    std::string error;
    Tags out;
    if (!dxf::readTags(bytes, raw, error)) {
        out.emplace_back(-1, error);
        return out;
    }
    std::string version = "AC1009", codePage = "ANSI_1252";
    for (std::size_t i = 0; i + 1 < raw.size(); ++i) {
        if (raw[i] == std::pair<int, std::string>{9, "$ACADVER"}) version = raw[i + 1].second;
        if (raw[i] == std::pair<int, std::string>{9, "$DWGCODEPAGE"}) codePage = raw[i + 1].second;
    }
    dxf::DxfStrings strings(version, codePage);
    for (std::size_t i = 0; i < raw.size(); ++i) {
        auto [code, value] = raw[i];
        if (code == 999) continue;
        if (code == 9 && (value == "$ACADVER" || value == "$HANDSEED")) {
            ++i;
            continue;
        }
        switch (db::kindOfGroupCode(code)) {
            case db::ValueKind::Real:
            case db::ValueKind::Point: {
                // Formatted here, not by the writer's own function, which is under test.
                char text[40];
                std::snprintf(text, sizeof text, "%.17g", std::strtod(value.c_str(), nullptr));
                value = text;
            } break;
            case db::ValueKind::Int16:
            case db::ValueKind::Int32:
            case db::ValueKind::Int64:
            case db::ValueKind::Bool:
                value = std::to_string(std::strtoll(value.c_str(), nullptr, 10));
                break;
            case db::ValueKind::String:
                value = strings.toUtf8(value);
                break;
            default:
                break;
        }
        out.emplace_back(code, value);
    }
    return out;
}

std::string firstDifference(const Tags& a, const Tags& b) {
    std::size_t n = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        if (a[i] != b[i]) {
            std::string context;
            for (std::size_t k = i >= 4 ? i - 4 : 0; k < i; ++k)
                context += std::to_string(a[k].first) + " " + a[k].second + " | ";
            return "tag " + std::to_string(i) + ": " + std::to_string(a[i].first) + " " +
                   a[i].second + " != " + std::to_string(b[i].first) + " " + b[i].second +
                   " after " + context;
        }
    }
    if (a.size() != b.size()) {
        return "lengths " + std::to_string(a.size()) + " != " + std::to_string(b.size());
    }
    return "";
}

int runPython(const std::string& script, const std::vector<std::string>& args,
              std::string& output) {
    std::string command = "/usr/bin/python3 '" KPLAN_SOURCE_DIR "/tests/host/dxf/" + script + "'";
    for (const std::string& a : args)
        command += " '" + a + "'";
    command += " 2>&1";
    output.clear();
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return -1;
    char buffer[4096];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
        output.append(buffer, n);
    int status = ::pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

const std::string& ezdxfDrawings() {
    static const std::string folder = [] {
        std::string made = makeTempFolder();
        std::string output;
        if (runPython("make_drawings.py", {made}, output) != 0) {
            std::fprintf(stderr, "make_drawings.py failed (is python3-ezdxf installed?):\n%s\n",
                         output.c_str());
            return std::string();
        }
        return made;
    }();
    return folder;
}

}  // namespace dxftest
