#include "cli/ClassTableCheck.h"

#include <cstddef>
#include <fstream>
#include <sstream>
#include <string_view>

#include "host/db/TextCodec.h"
#include "host/db/Utf8Path.h"
#include "standard/ClassTableLine.h"

namespace kplan::cli {

namespace {

// 1-based line of a byte offset.
int lineAt(std::string_view bytes, std::size_t offset) {
    int line = 1;
    for (std::size_t i = 0; i < offset && i < bytes.size(); ++i)
        line += bytes[i] == '\n';
    return line;
}

// Each line on its own: the first one that is not well-formed UTF-8 (0 when none), and
// how many carry characters beyond ASCII that are.
int firstBadUtf8Line(std::string_view bytes, int& goodWide) {
    goodWide = 0;
    int line = 0, bad = 0;
    std::size_t start = 0;
    while (start <= bytes.size()) {
        std::size_t end = bytes.find('\n', start);
        if (end == std::string_view::npos) end = bytes.size();
        std::string_view text = bytes.substr(start, end - start);
        ++line;
        bool wide = false;
        for (char c : text)
            wide |= static_cast<unsigned char>(c) >= 0x80;
        if (wide) {
            if (db::isValidUtf8(text))
                ++goodWide;
            else if (bad == 0)
                bad = line;
        }
        start = end + 1;
    }
    return bad;
}

// The first line GBK does not decode, 0 when all do.
int firstBadGbkLine(std::string_view bytes) {
    int line = 0;
    std::size_t start = 0;
    while (start <= bytes.size()) {
        std::size_t end = bytes.find('\n', start);
        if (end == std::string_view::npos) end = bytes.size();
        ++line;
        std::wstring text;
        if (!db::decodeCodePage(bytes.substr(start, end - start), "GBK", text)) return line;
        start = end + 1;
    }
    return 0;
}

bool startsWith(std::string_view bytes, std::string_view prefix) {
    return bytes.substr(0, prefix.size()) == prefix;
}

}  // namespace

bool checkClassTable(const std::string& path, std::string& error) {
    std::ifstream in(db::utf8Path(path), std::ios::binary);
    if (!in) {
        error = path + ": cannot read the class table";
        return false;
    }
    std::stringstream read;
    read << in.rdbuf();
    const std::string bytes = read.str();
    std::string_view text = bytes;
    const bool utf16 = startsWith(text, "\xFF\xFE") || startsWith(text, "\xFE\xFF");
    if (!utf16) {
        if (startsWith(text, "\xEF\xBB\xBF")) text.remove_prefix(3);
        if (std::size_t nul = text.find('\0'); nul != std::string_view::npos) {
            error = path + ": line " + std::to_string(lineAt(text, nul)) +
                    ": a zero byte; a class table is text (UTF-16 needs a byte-order mark)";
            return false;
        }
        int goodWide = 0;
        int badUtf8 = firstBadUtf8Line(text, goodWide);
        // A file whose other lines are UTF-8 is UTF-8 with a stray byte, not GBK.
        if (badUtf8 != 0 && (goodWide > 0 || text.size() != bytes.size())) {
            error = path + ": line " + std::to_string(badUtf8) + ": not valid UTF-8";
            return false;
        }
        if (badUtf8 != 0) {
            if (int badGbk = firstBadGbkLine(text)) {
                error = path + ": line " + std::to_string(badGbk) + ": neither UTF-8 nor GBK text";
                return false;
            }
        }
    }
    std::wstring decoded = db::decodeTextFile(bytes);
    std::wistringstream lines(decoded);
    std::wstring line;
    while (std::getline(lines, line)) {
        ClassTableLine parsed;
        if (parsed.parse(CString(line.c_str())) && !parsed.name.Trim().IsEmpty()) return true;
    }
    error = path + ": no class line (CODE:name) in the class table";
    return false;
}

}  // namespace kplan::cli
