#include "host/dxf/DxfStrings.h"

#include <cstdint>
#include <cstring>

#include "host/db/TextCodec.h"

namespace dxf {

namespace {

bool plainAscii(std::string_view bytes) {
    for (char c : bytes) {
        if (static_cast<unsigned char>(c) >= 0x80 || c == '\\' || c == '^') return false;
    }
    return true;
}

// Line breaks inside a value are written ^J and ^M.
void expandCarets(std::wstring& text) {
    std::size_t at = text.find(L'^');
    if (at == std::wstring::npos) return;
    std::wstring out(text, 0, at);
    for (std::size_t i = at; i < text.size(); ++i) {
        if (text[i] == L'^' && i + 1 < text.size() &&
            (text[i + 1] == L'J' || text[i + 1] == L'M')) {
            out += text[i + 1] == L'J' ? L'\n' : L'\r';
            ++i;
        } else {
            out += text[i];
        }
    }
    text = std::move(out);
}

int hexDigit(wchar_t c) {
    if (c >= L'0' && c <= L'9') return c - L'0';
    if (c >= L'a' && c <= L'f') return c - L'a' + 10;
    if (c >= L'A' && c <= L'F') return c - L'A' + 10;
    return -1;
}

const char* multiByteCodePage(wchar_t n) {
    switch (n) {
        case L'1':
            return "ANSI_932";
        case L'2':
            return "ANSI_950";
        case L'3':
            return "ANSI_949";
        case L'4':
            return "ANSI_1361";
        case L'5':
            return "ANSI_936";
        default:
            return nullptr;
    }
}

}  // namespace

bool isUtf8Version(std::string_view version) {
    // "AC1021" and later; versions compare as text of equal length.
    return version.size() == 6 && version >= "AC1021";
}

DxfStrings::DxfStrings(std::string_view version, std::string codePage)
    : utf8_(isUtf8Version(version)), codePage_(std::move(codePage)) {
    if (codePage_.empty()) codePage_ = "ANSI_1252";
}

std::wstring expandDxfEscapes(std::wstring_view text) {
    if (text.find(L"\\M+") == std::wstring_view::npos &&
        text.find(L"\\U+000") == std::wstring_view::npos) {
        return db::expandUnicodeEscapes(text);
    }
    std::wstring out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        // Some writers give a character beyond the BMP as eight digits ("\U+0001F600");
        // four digits below U+0020 would be a control character nobody escapes.
        if (text.compare(i, 6, L"\\U+000") == 0 && i + 11 <= text.size()) {
            std::uint32_t value = 0;
            bool hex = true;
            for (std::size_t k = i + 3; k < i + 11; ++k) {
                int d = hexDigit(text[k]);
                hex = hex && d >= 0;
                value = value * 16 + static_cast<std::uint32_t>(d < 0 ? 0 : d);
            }
            if (hex && value >= 0x10000 && value <= 0x10FFFF) {
                out += static_cast<wchar_t>(value);
                i += 10;
                continue;
            }
        }
        if (text.compare(i, 3, L"\\M+") == 0 && i + 8 <= text.size()) {
            const char* page = multiByteCodePage(text[i + 3]);
            int d[4] = {hexDigit(text[i + 4]), hexDigit(text[i + 5]), hexDigit(text[i + 6]),
                        hexDigit(text[i + 7])};
            if (page && d[0] >= 0 && d[1] >= 0 && d[2] >= 0 && d[3] >= 0) {
                std::string bytes{static_cast<char>(d[0] * 16 + d[1]),
                                  static_cast<char>(d[2] * 16 + d[3])};
                std::wstring decoded;
                if (db::decodeCodePage(bytes, page, decoded) && !decoded.empty()) {
                    out += decoded;
                    i += 7;
                    continue;
                }
            }
        }
        out += text[i];
    }
    return db::expandUnicodeEscapes(out);
}

std::wstring DxfStrings::toWide(std::string_view bytes) const {
    if (plainAscii(bytes)) return std::wstring(bytes.begin(), bytes.end());
    std::wstring wide;
    // A UTF-8 file with bytes that are not UTF-8 was written by a program that used the
    // code page anyway; a code page iconv does not know leaves UTF-8 as the best guess.
    bool decoded = utf8_ && db::isValidUtf8(bytes);
    if (decoded) wide = db::utf8ToWide(bytes);
    if (!decoded && !db::decodeCodePage(bytes, codePage_, wide) && wide.empty()) {
        wide = db::utf8ToWide(bytes);
    }
    expandCarets(wide);
    if (wide.find(L'\\') == std::wstring::npos) return wide;
    return expandDxfEscapes(wide);
}

bool DxfStrings::isUtf8AsIs(std::string_view bytes) const {
    std::size_t i = 0;
    // A word at a time while it is ASCII: '\\' (5C) and '^' (5E) differ in one bit only.
    constexpr std::uint64_t ones = 0x0101010101010101ull, highs = 0x8080808080808080ull;
    for (; i + 8 <= bytes.size(); i += 8) {
        std::uint64_t w;
        std::memcpy(&w, bytes.data() + i, 8);
        if (w & highs) break;
        std::uint64_t x = (w | ones * 0x02) ^ (ones * 0x5E);
        if ((x - ones) & ~x & highs) return false;
    }
    for (; i < bytes.size(); ++i) {
        unsigned char c = static_cast<unsigned char>(bytes[i]);
        if (c == '\\' || c == '^') return false;
        if (c >= 0x80) {
            std::string_view rest = bytes.substr(i);
            return utf8_ && rest.find_first_of("\\^") == std::string_view::npos &&
                   db::isValidUtf8(rest);
        }
    }
    return true;
}

std::string DxfStrings::toUtf8(std::string_view bytes) const {
    if (isUtf8AsIs(bytes)) return std::string(bytes);
    return db::wideToUtf8(toWide(bytes));
}

std::string DxfStrings::fromWide(std::wstring_view text) const {
    bool ascii = true;
    for (wchar_t c : text) {
        if (c >= 0x80) {
            ascii = false;
            break;
        }
    }
    if (ascii) return std::string(text.begin(), text.end());
    if (utf8_) return db::wideToUtf8(text);
    std::string out;
    if (!db::encodeCodePageWithEscapes(text, codePage_, out)) return db::wideToUtf8(text);
    return out;
}

std::string DxfStrings::fromUtf8(std::string_view text) const {
    if (utf8_) return std::string(text);
    bool ascii = true;
    for (char c : text) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            ascii = false;
            break;
        }
    }
    if (ascii) return std::string(text);
    return fromWide(db::utf8ToWide(text));
}

}  // namespace dxf
