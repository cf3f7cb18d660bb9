#include "host/kova/fgbfile.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string_view>

#include "host/db/TextCodec.h"

namespace fgbfile {

namespace {

constexpr const char* kBom = "\xEF\xBB\xBF";

#ifdef _WIN32
// The platform takes wide names as they are.
using NativePath = std::wstring;

NativePath nativePath(LPCTSTR path) {
    return path ? path : L"";
}

bool isRegularFile(const NativePath& path) {
    const DWORD attributes =
        path.empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::FILE* openFile(const NativePath& path, const wchar_t* mode) {
    return ::_wfopen(path.c_str(), mode);
}

bool isEmptyFile(const NativePath& path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    return GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) &&
           data.nFileSizeLow == 0 && data.nFileSizeHigh == 0;
}
#else
using NativePath = std::string;

NativePath nativePath(LPCTSTR path) {
    std::string out = db::wideToUtf8(path ? path : L"");
    for (char& c : out) {
        if (c == '\\') c = '/';
    }
    return out;
}

bool isRegularFile(const NativePath& path) {
    struct stat info;
    return !path.empty() && ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

std::FILE* openFile(const NativePath& path, const wchar_t* mode) {
    return std::fopen(path.c_str(), db::wideToUtf8(mode).c_str());
}

bool isEmptyFile(const NativePath& path) {
    struct stat info;
    return ::stat(path.c_str(), &info) == 0 && info.st_size == 0;
}
#endif

bool readFile(const NativePath& path, std::string& bytes) {
    bytes.clear();
    if (!isRegularFile(path)) return false;
    std::FILE* file = openFile(path, L"rb");
    if (!file) return false;
    char buffer[65536];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, file)) > 0)
        bytes.append(buffer, n);
    const bool ok = !std::ferror(file);
    std::fclose(file);
    return ok;
}

// Splits at \r\n, \n and \r; a final line break ends the last line without starting
// another. Reports the first line break seen, so a rewrite can keep it.
std::vector<std::wstring> splitLines(const std::wstring& text, std::string* newline = nullptr) {
    std::vector<std::wstring> lines;
    std::size_t start = 0;
    bool seen = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const wchar_t c = text[i];
        if (c != L'\n' && c != L'\r') continue;
        lines.emplace_back(text, start, i - start);
        const bool crlf = c == L'\r' && i + 1 < text.size() && text[i + 1] == L'\n';
        if (newline && !seen) *newline = crlf ? "\r\n" : (c == L'\r' ? "\r" : "\n");
        seen = true;
        if (crlf) ++i;
        start = i + 1;
    }
    if (start < text.size()) lines.emplace_back(text, start, std::wstring::npos);
    return lines;
}

// White space as CString::Trim sees it, so a file and a string trim alike.
std::wstring trim(std::wstring_view text) {
    CString copy{std::wstring(text)};
    copy.Trim();
    return copy.wstr();
}

bool isQuote(wchar_t c) {
    return c == L'"' || c == L'\'';
}

std::wstring unquote(std::wstring value) {
    if (value.size() >= 2 && isQuote(value.front()) && value.back() == value.front()) {
        return value.substr(1, value.size() - 2);
    }
    return value;
}

wchar_t foldAscii(wchar_t c) {
    return (c >= L'A' && c <= L'Z') ? c - L'A' + L'a' : c;
}

bool equalsNoCaseAscii(std::wstring_view a, std::wstring_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (foldAscii(a[i]) != foldAscii(b[i])) return false;
    }
    return true;
}

bool hasLineBreak(std::wstring_view text) {
    return text.find_first_of(L"\r\n") != text.npos;
}

// Writes all bytes to a temporary file beside the target and renames it over the target.
#ifdef _WIN32
bool writeAtomically(const NativePath& path, const std::string& bytes) {
    HANDLE file = INVALID_HANDLE_VALUE;
    std::wstring temp;
    for (unsigned attempt = 0; file == INVALID_HANDLE_VALUE && attempt < 100; ++attempt) {
        temp =
            path + L"." + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(attempt);
        file = CreateFileW(temp.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE && GetLastError() != ERROR_FILE_EXISTS) return false;
    }
    if (file == INVALID_HANDLE_VALUE) return false;
    bool ok = true;
    for (std::size_t done = 0; ok && done < bytes.size();) {
        DWORD written = 0;
        const auto chunk = static_cast<DWORD>(std::min<std::size_t>(bytes.size() - done, 1u << 30));
        ok = WriteFile(file, bytes.data() + done, chunk, &written, nullptr) && written > 0;
        done += written;
    }
    ok = ok && FlushFileBuffers(file);
    ok = CloseHandle(file) && ok;
    ok = ok && MoveFileExW(temp.c_str(), path.c_str(),
                           MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
    if (!ok) DeleteFileW(temp.c_str());
    return ok;
}
#else
bool writeAtomically(const NativePath& path, const std::string& bytes) {
    std::string temp = path + ".XXXXXX";
    const int fd = ::mkstemp(temp.data());
    if (fd < 0) return false;
    struct stat info;
    const mode_t mode = ::stat(path.c_str(), &info) == 0 ? (info.st_mode & 07777) : 0644;
    bool ok = ::fchmod(fd, mode) == 0;
    std::size_t done = 0;
    while (ok && done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            ok = false;
        } else {
            done += static_cast<std::size_t>(n);
        }
    }
    ok = ok && ::fsync(fd) == 0;
    ok = (::close(fd) == 0) && ok;
    ok = ok && std::rename(temp.c_str(), path.c_str()) == 0;
    if (!ok) std::remove(temp.c_str());
    return ok;
}
#endif

}  // namespace

BOOL FileExist(LPCTSTR path) {
    return isRegularFile(nativePath(path)) ? TRUE : FALSE;
}

CFStdioFile::~CFStdioFile() {
    Close();
}

BOOL CFStdioFile::Open(LPCTSTR path, UINT flags) {
    Close();
    const NativePath native = nativePath(path);
    if (native.empty() || (flags & modeReadWrite)) return FALSE;
    if (!(flags & modeWrite)) {
        std::string bytes;
        if (!readFile(native, bytes)) return FALSE;
        lines_ = splitLines(db::decodeTextFile(bytes));
        next_ = 0;
        reading_ = true;
        path_ = path;
        return TRUE;
    }
    const bool exists = isRegularFile(native);
    const bool truncate = (flags & modeCreate) && !(flags & modeNoTruncate);
    if (!exists && !(flags & modeCreate)) return FALSE;
    out_ = openFile(native, truncate ? L"wb" : L"ab");
    if (!out_) return FALSE;
    path_ = path;
    const bool empty = isEmptyFile(native);
    if (empty && std::fputs(kBom, out_) == EOF) {
        Close();
        return FALSE;
    }
    return TRUE;
}

BOOL CFStdioFile::ReadString(CString& line) {
    if (!reading_ || next_ >= lines_.size()) return FALSE;
    line = CString(lines_[next_++]);
    return TRUE;
}

BOOL CFStdioFile::WriteString(LPCTSTR text) {
    if (!out_) return FALSE;
    const std::string bytes = db::wideToUtf8(text ? text : L"");
    return std::fwrite(bytes.data(), 1, bytes.size(), out_) == bytes.size() ? TRUE : FALSE;
}

BOOL CFStdioFile::Close() {
    bool ok = true;
    if (out_) {
        ok = std::fclose(out_) == 0;
        out_ = nullptr;
    }
    reading_ = false;
    lines_.clear();
    next_ = 0;
    return ok ? TRUE : FALSE;
}

CIniFile::CIniFile(LPCTSTR path, int /*flag*/) : path_(path) {
    std::string bytes;
    if (!readFile(nativePath(path), bytes)) return;
    open_ = true;
    lines_ = splitLines(db::decodeTextFile(bytes), &newline_);
    parse();
}

BOOL CIniFile::Exists() const {
    return FileExist(path_);
}

void CIniFile::parse() {
    sections_.clear();
    Section* current = nullptr;
    for (std::size_t index = 0; index < lines_.size(); ++index) {
        const std::wstring line = trim(lines_[index]);
        if (line.empty() || line[0] == L';') continue;
        if (line[0] == L'[') {
            const std::size_t close = line.find(L']');
            const std::size_t length = close == std::wstring::npos ? std::wstring::npos : close - 1;
            sections_.push_back(
                Section{trim(std::wstring_view(line).substr(1, length)), index + 1, {}});
            current = &sections_.back();
            continue;
        }
        if (!current) continue;
        current->end = index + 1;
        const std::size_t eq = line.find(L'=');
        if (eq == std::wstring::npos) continue;
        std::wstring key = trim(std::wstring_view(line).substr(0, eq));
        if (key.empty()) continue;
        current->entries.push_back(
            Entry{std::move(key), unquote(trim(std::wstring_view(line).substr(eq + 1))), index});
    }
}

const CIniFile::Section* CIniFile::findSection(LPCTSTR name) const {
    const std::wstring wanted = trim(name ? name : L"");
    for (const Section& section : sections_) {
        if (equalsNoCaseAscii(section.name, wanted)) return &section;
    }
    return nullptr;
}

CString CIniFile::GetValue(LPCTSTR section, LPCTSTR key) const {
    const Section* found = findSection(section);
    if (!found) return CString();
    const std::wstring wanted = trim(key ? key : L"");
    for (const Entry& entry : found->entries) {
        if (equalsNoCaseAscii(entry.key, wanted)) return CString(entry.value);
    }
    return CString();
}

BOOL CIniFile::GetValue(LPCTSTR section, CStringArray& keys, CStringArray& values) const {
    keys.RemoveAll();
    values.RemoveAll();
    const Section* found = findSection(section);
    if (!found) return FALSE;
    for (const Entry& entry : found->entries) {
        keys.Add(CString(entry.key));
        values.Add(CString(entry.value));
    }
    return TRUE;
}

int CIniFile::GetSections(CStringArray& sections) const {
    sections.RemoveAll();
    for (const Section& section : sections_) {
        if (findSection(section.name.c_str()) == &section) sections.Add(CString(section.name));
    }
    return static_cast<int>(sections.GetSize());
}

BOOL CIniFile::SetValue(LPCTSTR section, LPCTSTR key, LPCTSTR value) {
    const std::wstring name = trim(section ? section : L"");
    const std::wstring keyName = trim(key ? key : L"");
    const std::wstring text = value ? value : L"";
    if (name.empty() || keyName.empty() || name.find(L']') != std::wstring::npos ||
        keyName.find(L'=') != std::wstring::npos || keyName[0] == L';' || keyName[0] == L'[' ||
        hasLineBreak(name) || hasLineBreak(keyName) || hasLineBreak(text)) {
        return FALSE;
    }
    const bool needsQuotes = trim(text) != text || (text.size() >= 2 && isQuote(text.front()) &&
                                                    text.back() == text.front());
    const std::wstring written = needsQuotes ? L'"' + text + L'"' : text;

    const Section* found = findSection(name.c_str());
    if (found) {
        for (const Entry& entry : found->entries) {
            if (equalsNoCaseAscii(entry.key, keyName)) {
                lines_[entry.line] = entry.key + L'=' + written;
                parse();
                return TRUE;
            }
        }
        lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(found->end),
                      keyName + L'=' + written);
    } else {
        if (!lines_.empty() && !trim(lines_.back()).empty()) lines_.emplace_back();
        lines_.push_back(L'[' + name + L']');
        lines_.push_back(keyName + L'=' + written);
    }
    parse();
    return TRUE;
}

BOOL CIniFile::Save() {
    const NativePath native = nativePath(path_);
    if (native.empty()) return FALSE;
    std::string bytes = kBom;
    for (const std::wstring& line : lines_) {
        bytes += db::wideToUtf8(line);
        bytes += newline_;
    }
    if (!writeAtomically(native, bytes)) return FALSE;
    open_ = true;
    return TRUE;
}

}  // namespace fgbfile
