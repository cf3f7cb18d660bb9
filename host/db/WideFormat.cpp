#include "host/db/WideFormat.h"

#include <cwchar>
#include <vector>

namespace db {

std::wstring msvcToGlibcFormat(std::wstring_view f) {
    std::wstring out;
    out.reserve(f.size() + 8);
    std::size_t i = 0;
    while (i < f.size()) {
        wchar_t c = f[i++];
        out.push_back(c);
        if (c != L'%') continue;
        if (i < f.size() && f[i] == L'%') {
            out.push_back(f[i++]);
            continue;
        }
        // Flags, width and precision pass through unchanged.
        while (i < f.size() && std::wcschr(L"-+ #0123456789.*", f[i]) != nullptr) {
            out.push_back(f[i++]);
        }
        std::wstring_view rest = f.substr(i);
        enum { None, Narrow, Wide } size = None;
        if (rest.starts_with(L"I64")) {
            out += L"ll";
            i += 3;
        } else if (rest.starts_with(L"I32")) {
            i += 3;
        } else if (rest.starts_with(L"I") && rest.size() > 1 && std::wcschr(L"diouxX", rest[1])) {
            out.push_back(L'z');
            i += 1;
        } else if (rest.starts_with(L"hh") || rest.starts_with(L"ll")) {
            out += rest.substr(0, 2);
            i += 2;
        } else if (!rest.empty() && (rest[0] == L'h' || rest[0] == L'l' || rest[0] == L'w')) {
            bool stringOrChar = rest.size() > 1 && std::wcschr(L"sScC", rest[1]) != nullptr;
            if (stringOrChar) {
                size = rest[0] == L'h' ? Narrow : Wide;
            } else if (rest[0] != L'w') {
                out.push_back(rest[0]);
            }
            i += 1;
        } else if (!rest.empty() && std::wcschr(L"Lzjt", rest[0]) != nullptr) {
            out.push_back(rest[0]);
            i += 1;
        }
        if (i >= f.size()) break;
        wchar_t conversion = f[i];
        bool isString = conversion == L's' || conversion == L'S';
        bool isChar = conversion == L'c' || conversion == L'C';
        if (isString || isChar) {
            bool wide =
                size == Wide || (size == None && (conversion == L's' || conversion == L'c'));
            if (wide) out.push_back(L'l');
            out.push_back(isString ? L's' : L'c');
            ++i;
        }
    }
    return out;
}

bool formatMsvc(std::wstring& out, const wchar_t* format, va_list args) {
    out.clear();
    if (format == nullptr) return false;
    std::wstring glibc = msvcToGlibcFormat(format);
    // vswprintf does not tell the size it needs: grow until it fits, within reason.
    for (std::size_t size = 256; size <= (std::size_t{1} << 20); size *= 4) {
        std::vector<wchar_t> buffer(size);
        va_list copy;
        va_copy(copy, args);
        int n = std::vswprintf(buffer.data(), buffer.size(), glibc.c_str(), copy);
        va_end(copy);
        if (n >= 0) {
            out.assign(buffer.data(), static_cast<std::size_t>(n));
            return true;
        }
    }
    return false;
}

}  // namespace db
