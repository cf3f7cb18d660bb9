#include "draw/DebugOutput.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

std::filesystem::path debugFile() {
#ifdef _WIN32
    return std::filesystem::path(L"c:\\dbg.txt");
#else
    const char* named = std::getenv("KPLAN_DBG_FILE");
    return std::filesystem::path(named != nullptr && *named != 0 ? named : "/tmp/dbg.txt");
#endif
}

// UTF-8 of UTF-16 or UTF-32 text, as wchar_t holds it on the platform.
std::string utf8(const wchar_t* text) {
    std::string out;
    for (const wchar_t* p = text; *p; ++p) {
        unsigned long c = static_cast<unsigned long>(*p);
        if (c >= 0xD800 && c <= 0xDBFF && p[1] >= 0xDC00 && p[1] <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (static_cast<unsigned long>(p[1]) - 0xDC00);
            ++p;
        }
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += static_cast<char>(0xE0 | (c >> 12));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (c >> 18));
            out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out;
}

}  // namespace

void dbgOutput(const CString& text) {
    // Opened for reading and writing, so that a missing file is not created.
    std::fstream file(debugFile(), std::ios::in | std::ios::out | std::ios::binary);
    if (!file.is_open()) return;
    file.seekp(0, std::ios::end);
    file << '\n' << utf8(text) << '\n';
}
