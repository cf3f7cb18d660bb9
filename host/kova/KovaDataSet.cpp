#include "host/kova/KovaDataSet.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

#include "host/db/ExecutablePath.h"
#include "host/db/HatchPatternFile.h"
#include "host/db/InstalledData.h"
#include "host/db/Utf8Path.h"

namespace {

namespace fs = std::filesystem;

struct Settings {
    std::wstring root, standard, classTable, ghType;
};

Settings& settings() {
    static Settings s;
    return s;
}

std::wstring fromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value && *value ? CString::FromUtf8(value).wstr() : std::wstring();
}

fs::path toPath(const std::wstring& text) {
    return db::utf8Path(CString(text).ToUtf8());
}

std::wstring fromPath(const fs::path& path) {
    return CString::FromUtf8(db::utf8Name(path)).wstr();
}

bool isDirectory(const fs::path& path) {
    std::error_code ec;
    return fs::is_directory(path, ec);
}

bool isFile(const std::wstring& path) {
    std::error_code ec;
    return fs::is_regular_file(toPath(path), ec);
}

fs::path executableDirectory() {
    return db::executablePath().parent_path();
}

std::wstring searchDefaultRoot() {
    std::vector<fs::path> candidates;
    if (fs::path installed = db::installedDataFolder("standards"); !installed.empty())
        candidates.push_back(installed);
    fs::path exeDir = executableDirectory();
    if (!exeDir.empty()) {
        candidates.push_back(exeDir / ".." / "share" / "kplan" / "standards");
        candidates.push_back(exeDir / "data" / "standards");
        candidates.push_back(exeDir / ".." / "data" / "standards");
    }
    candidates.push_back(db::utf8Path(KPLAN_SOURCE_DIR) / "data" / "standards");
    for (const fs::path& c : candidates) {
        if (isDirectory(c)) return fromPath(c.lexically_normal());
    }
    return candidates.empty() ? std::wstring() : fromPath(candidates.back().lexically_normal());
}

// Searched once a process: every class, colour and field lookup asks for the root, and the
// folders beside the program do not move while it runs.
const std::wstring& defaultRoot() {
    static const std::wstring root = searchDefaultRoot();
    return root;
}

std::wstring pick(const std::wstring& set, const char* variable, const std::wstring& fallback) {
    if (!set.empty()) return set;
    std::wstring env = fromEnvironment(variable);
    return env.empty() ? fallback : env;
}

// Appends one level (which may hold several directories) with "\" turned into "/" and
// without doubled separators.
void appendLevel(std::wstring& path, const ACHAR* level) {
    if (level == nullptr) return;
    std::wstring part(level);
    for (wchar_t& c : part) {
        if (c == L'\\') c = L'/';
    }
    std::size_t first = part.find_first_not_of(L'/');
    std::size_t last = part.find_last_not_of(L'/');
    if (first == std::wstring::npos) return;
    part = part.substr(first, last - first + 1);
    if (!path.empty() && path.back() != L'/') path += L'/';
    path += part;
}

std::wstring compose(const CString& root, const ACHAR* standard, const ACHAR* subDirectory,
                     const ACHAR* fileName) {
    std::wstring path = root.wstr();
    for (wchar_t& c : path) {
        if (c == L'\\') c = L'/';
    }
    appendLevel(path, standard);
    appendLevel(path, subDirectory);
    appendLevel(path, fileName);
    return path;
}

}  // namespace

CString CKovaDataSet::FGetGStandardDirPath() {
    const std::wstring& set = settings().root;
    if (!set.empty()) return CString(set);
    std::wstring env = fromEnvironment("KPLAN_DATA");
    return CString(env.empty() ? defaultRoot() : env);
}

CString CKovaDataSet::FGetStandardName() {
    return CString(pick(settings().standard, "KPLAN_STANDARD", CommonStandardName()));
}

CString CKovaDataSet::FGetCurYDLB() {
    return CString(pick(settings().classTable, "KPLAN_CLASS_TABLE", L"2011国标城乡用地类别.txt"));
}

void CKovaDataSet::FSetGStandardDirPath(const ACHAR* root) {
    settings().root = root ? root : L"";
    // A data folder laid out as the shipped one has its hatch patterns beside the standards.
    fs::path patterns = toPath(settings().root) / ".." / "patterns";
    db::setHatchPatternFolder(!settings().root.empty() && isDirectory(patterns)
                                  ? db::utf8Name(patterns.lexically_normal())
                                  : std::string());
}

void CKovaDataSet::FSetStandardName(const ACHAR* standard) {
    settings().standard = standard ? standard : L"";
}

void CKovaDataSet::FSetCurYDLB(const ACHAR* classTable) {
    settings().classTable = classTable ? classTable : L"";
}

int CKovaDataSet::FGetGStandardOneFilePath(CString& path, const ACHAR* subDirectory,
                                           const ACHAR* fileName, const ACHAR* standardName,
                                           int flag) {
    if (fileName == nullptr || *fileName == 0) {
        path = CString();
        return 0;
    }
    CString root = FGetGStandardDirPath();
    std::wstring own = compose(root, standardName, subDirectory, fileName);
    path = CString(own);
    if (isFile(own)) return 1;
    if (flag) {
        std::wstring common = compose(root, CommonStandardName(), subDirectory, fileName);
        if (isFile(common)) {
            path = CString(common);
            return 1;
        }
    }
    return 0;
}

CString CKovaDataSet::FGetNameDict_GHType() {
    return CString(settings().ghType);
}

void CKovaDataSet::FSetNameDict_GHType(const ACHAR* value) {
    settings().ghType = value ? value : L"";
}
