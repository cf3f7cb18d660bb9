#include "host/db/TextCodec.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <iconv.h>
#endif

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <map>

namespace db {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isScalarValue(std::uint32_t cp) {
    return cp < 0xD800 || (cp > 0xDFFF && cp <= 0x10FFFF);
}

void appendUtf8(std::string& out, std::uint32_t cp) {
    if (cp < 0x80) {
        out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
}

// Length of the run of ASCII bytes starting at i; eight bytes at a time, as most of a
// drawing file is ASCII.
std::size_t asciiRun(const unsigned char* s, std::size_t i, std::size_t n) {
    std::size_t j = i;
    while (j + 8 <= n) {
        std::uint64_t word;
        std::memcpy(&word, s + j, 8);
        if (word & 0x8080808080808080ULL) break;
        j += 8;
    }
    while (j < n && s[j] < 0x80)
        ++j;
    return j - i;
}

// Decodes one sequence starting with a non-ASCII lead byte at s[i]. Sets cp to the code
// point, or to U+FFFD with ok false, and returns the number of bytes consumed: a malformed
// sequence consumes its maximal well-formed prefix, at least one byte.
std::size_t decodeSequence(const unsigned char* s, std::size_t i, std::size_t n, std::uint32_t& cp,
                           bool& ok) {
    ok = false;
    const unsigned char b0 = s[i];
    int need = 0;
    unsigned char lo = 0x80;
    unsigned char hi = 0xBF;
    if (b0 >= 0xC2 && b0 <= 0xDF) {
        need = 1;
        cp = b0 & 0x1F;
    } else if (b0 >= 0xE0 && b0 <= 0xEF) {
        need = 2;
        cp = b0 & 0x0F;
        if (b0 == 0xE0) lo = 0xA0;  // overlong
        if (b0 == 0xED) hi = 0x9F;  // surrogates
    } else if (b0 >= 0xF0 && b0 <= 0xF4) {
        need = 3;
        cp = b0 & 0x07;
        if (b0 == 0xF0) lo = 0x90;  // overlong
        if (b0 == 0xF4) hi = 0x8F;  // past U+10FFFF
    } else {
        cp = kReplacement;
        return 1;
    }
    std::size_t j = i + 1;
    for (int k = 0; k < need; ++k) {
        if (j >= n || s[j] < lo || s[j] > hi) {
            cp = kReplacement;
            return j - i;
        }
        cp = (cp << 6) | (s[j] & 0x3F);
        ++j;
        lo = 0x80;
        hi = 0xBF;
    }
    ok = true;
    return j - i;
}

std::string upperAscii(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return out;
}

bool allDigits(std::string_view text) {
    if (text.empty()) return false;
    for (char c : text) {
        if (c < '0' || c > '9') return false;
    }
    return true;
}

bool isUtf8Name(const std::string& iconvName) {
    return iconvName == "UTF-8" || iconvName == "UTF8";
}

// Code pages of drawings are all ASCII-compatible, so pure ASCII needs no converter.
bool asciiCompatible(std::string_view codePage) {
    const std::string upper = upperAscii(codePage);
    return upper.starts_with("ANSI_") || upper.starts_with("DOS") || upper == "GBK" ||
           upper == "GB2312" || upper == "BIG5" || upper == "KSC5601";
}

#ifdef _WIN32
// The platform's own converters (the CAD's platform has no iconv): the Windows code page of
// an iconv name, 0 when there is none.
unsigned windowsCodePage(const std::string& iconvName) {
    unsigned number = 0;
    const std::string_view name(iconvName);
    if (name == "GBK") {
        number = 936;
    } else if (name == "UHC") {
        number = 949;
    } else if (name.starts_with("CP") && allDigits(name.substr(2)) && name.size() < 8) {
        number = static_cast<unsigned>(std::stoul(iconvName.substr(2)));
    } else if (name.starts_with("IBM") && allDigits(name.substr(3)) && name.size() < 9) {
        number = static_cast<unsigned>(std::stoul(iconvName.substr(3)));
    }
    return number != 0 && IsValidCodePage(number) ? number : 0;
}

// Appends the characters of bytes; false when some byte is not of the code page.
bool appendDecoded(unsigned codePage, const char* bytes, std::size_t n, std::wstring& out) {
    if (n == 0) return true;
    const int size =
        MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, bytes, static_cast<int>(n), nullptr, 0);
    if (size <= 0) return false;
    const std::size_t at = out.size();
    out.resize(at + static_cast<std::size_t>(size));
    MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, bytes, static_cast<int>(n), out.data() + at,
                        size);
    return true;
}

// Appends the bytes of text; false when some character has no encoding there.
bool appendEncoded(unsigned codePage, const wchar_t* text, std::size_t n, std::string& out) {
    if (n == 0) return true;
    BOOL defaulted = FALSE;
    const int size = WideCharToMultiByte(codePage, WC_NO_BEST_FIT_CHARS, text, static_cast<int>(n),
                                         nullptr, 0, nullptr, &defaulted);
    if (size <= 0 || defaulted) return false;
    const std::size_t at = out.size();
    out.resize(at + static_cast<std::size_t>(size));
    WideCharToMultiByte(codePage, WC_NO_BEST_FIT_CHARS, text, static_cast<int>(n), out.data() + at,
                        size, nullptr, nullptr);
    return true;
}
#else
// iconv handles are costly to open and stateful, so each thread keeps its own, keyed by
// direction and name, and closes them when it ends.
class ConverterCache {
  public:
    ~ConverterCache() {
        for (auto& entry : handles_) {
            if (entry.second != invalid()) iconv_close(entry.second);
        }
    }

    iconv_t get(const std::string& to, const std::string& from) {
        const std::string key = from + '>' + to;
        auto it = handles_.find(key);
        if (it == handles_.end()) {
            it = handles_.emplace(key, iconv_open(to.c_str(), from.c_str())).first;
        }
        if (it->second != invalid()) iconv(it->second, nullptr, nullptr, nullptr, nullptr);
        return it->second;
    }

    static iconv_t invalid() { return reinterpret_cast<iconv_t>(-1); }

  private:
    std::map<std::string, iconv_t> handles_;
};

iconv_t converter(const std::string& to, const std::string& from) {
    thread_local ConverterCache cache;
    return cache.get(to, from);
}

constexpr const char* kWide = "WCHAR_T";
#endif

void appendEscape(std::string& out, std::uint32_t unit) {
    static const char* digits = "0123456789ABCDEF";
    out += "\\U+";
    for (int shift = 12; shift >= 0; shift -= 4)
        out.push_back(digits[(unit >> shift) & 0xF]);
}

void appendEscapedChar(std::string& out, std::uint32_t cp) {
    if (cp > 0x10FFFF) cp = kReplacement;
    if (cp >= 0x10000) {
        cp -= 0x10000;
        appendEscape(out, 0xD800 + (cp >> 10));
        appendEscape(out, 0xDC00 + (cp & 0x3FF));
    } else {
        appendEscape(out, cp);
    }
}

// Shared by the strict and the escaping encoder: returns false for an unknown code page,
// and sets clean to false when some character could not be encoded.
bool encode(std::wstring_view text, std::string_view codePage, bool escapes, std::string& out,
            bool& clean) {
    out.clear();
    clean = true;
    const std::string name = iconvNameForCodePage(codePage);
    auto unencodable = [&](std::uint32_t cp) {
        clean = false;
        if (escapes) {
            appendEscapedChar(out, cp);
        } else {
            out.push_back('?');
        }
    };
    if (isUtf8Name(name)) {
        out.reserve(text.size());
        for (wchar_t ch : text) {
            const auto cp = static_cast<std::uint32_t>(ch);
            if (isScalarValue(cp)) {
                appendUtf8(out, cp);
            } else {
                unencodable(cp);
            }
        }
        return true;
    }
#ifdef _WIN32
    const unsigned windows = windowsCodePage(name);
    if (windows == 0) return false;
#else
    iconv_t cd = converter(name, kWide);
    if (cd == ConverterCache::invalid()) return false;
#endif

    // Code page 936 gives the euro sign the lone byte 0x80, which GBK readers other than
    // Windows' own (Python's codec, ezdxf) do not know: it is written as an escape.
    constexpr wchar_t kEuro = 0x20AC;
    if (escapes && name == "GBK" && text.find(kEuro) != std::wstring_view::npos) {
        std::string part;
        bool partClean = true;
        for (std::size_t from = 0;;) {
            const std::size_t euro = text.find(kEuro, from);
            if (!encode(text.substr(from, euro == std::wstring_view::npos ? euro : euro - from),
                        codePage, true, part, partClean))
                return false;
            out += part;
            clean = clean && partClean;
            if (euro == std::wstring_view::npos) return true;
            appendEscapedChar(out, kEuro);
            from = euro + 1;
        }
    }

    bool ascii = asciiCompatible(codePage);
    for (std::size_t k = 0; ascii && k < text.size(); ++k)
        ascii = static_cast<std::uint32_t>(text[k]) < 0x80;
    if (ascii) {
        out.reserve(text.size());
        for (wchar_t ch : text)
            out.push_back(static_cast<char>(ch));
        return true;
    }

#ifdef _WIN32
    if (text.size() <= INT_MAX / 2 && appendEncoded(windows, text.data(), text.size(), out))
        return true;
    // Character by character, a surrogate pair as one, to say which could not be encoded.
    out.clear();
    for (std::size_t k = 0; k < text.size();) {
        const bool pair =
            k + 1 < text.size() && IS_HIGH_SURROGATE(text[k]) && IS_LOW_SURROGATE(text[k + 1]);
        const std::size_t units = pair ? 2 : 1;
        if (!appendEncoded(windows, text.data() + k, units, out)) {
            unencodable(pair ? 0x10000 + ((static_cast<std::uint32_t>(text[k]) - 0xD800) << 10) +
                                   (static_cast<std::uint32_t>(text[k + 1]) - 0xDC00)
                             : static_cast<std::uint32_t>(text[k]));
        }
        k += units;
    }
    return true;
#else
    char* in = const_cast<char*>(reinterpret_cast<const char*>(text.data()));
    std::size_t inLeft = text.size() * sizeof(wchar_t);
    char buffer[4096];
    for (;;) {
        char* outp = buffer;
        std::size_t outLeft = sizeof buffer;
        const std::size_t r = iconv(cd, inLeft ? &in : nullptr, &inLeft, &outp, &outLeft);
        out.append(buffer, static_cast<std::size_t>(outp - buffer));
        if (r != static_cast<std::size_t>(-1)) {
            if (inLeft == 0) {
                // Flush a shift state back to the initial one.
                outp = buffer;
                outLeft = sizeof buffer;
                iconv(cd, nullptr, nullptr, &outp, &outLeft);
                out.append(buffer, static_cast<std::size_t>(outp - buffer));
                return true;
            }
            continue;
        }
        if (errno == E2BIG) continue;
        if (inLeft < sizeof(wchar_t)) return true;
        wchar_t bad;
        std::memcpy(&bad, in, sizeof bad);
        unencodable(static_cast<std::uint32_t>(bad));
        in += sizeof(wchar_t);
        inLeft -= sizeof(wchar_t);
        if (inLeft == 0) return true;
    }
#endif
}

}  // namespace

std::wstring utf8ToWide(std::string_view bytes) {
    std::wstring out;
    utf8ToWide(bytes, out);
    return out;
}

void utf8ToWide(std::string_view bytes, std::wstring& out) {
    const auto* s = reinterpret_cast<const unsigned char*>(bytes.data());
    const std::size_t n = bytes.size();
    out.resize(n);
    wchar_t* o = out.data();
    std::size_t i = 0;
    while (i < n) {
        const std::size_t run = asciiRun(s, i, n);
        for (std::size_t k = 0; k < run; ++k)
            *o++ = static_cast<wchar_t>(s[i + k]);
        i += run;
        if (i >= n) break;
        std::uint32_t cp = 0;
        bool ok = false;
        i += decodeSequence(s, i, n, cp, ok);
        if constexpr (sizeof(wchar_t) == 2) {
            // UTF-16 on Windows: a pair for a character beyond the BMP (it took four bytes).
            if (cp >= 0x10000) {
                *o++ = static_cast<wchar_t>(0xD800 + ((cp - 0x10000) >> 10));
                cp = 0xDC00 + (cp & 0x3FF);
            }
        }
        *o++ = static_cast<wchar_t>(cp);
    }
    out.resize(static_cast<std::size_t>(o - out.data()));
}

std::string wideToUtf8(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t k = 0; k < text.size(); ++k) {
        auto cp = static_cast<std::uint32_t>(text[k]);
        if constexpr (sizeof(wchar_t) == 2) {
            const auto next = k + 1 < text.size() ? static_cast<std::uint32_t>(text[k + 1]) : 0;
            if (cp >= 0xD800 && cp <= 0xDBFF && next >= 0xDC00 && next <= 0xDFFF) {
                cp = 0x10000 + ((cp - 0xD800) << 10) + (next - 0xDC00);
                ++k;
            }
        }
        appendUtf8(out, isScalarValue(cp) ? cp : kReplacement);
    }
    return out;
}

bool isValidUtf8(std::string_view bytes) {
    const auto* s = reinterpret_cast<const unsigned char*>(bytes.data());
    const std::size_t n = bytes.size();
    std::size_t i = 0;
    while (i < n) {
        i += asciiRun(s, i, n);
        if (i >= n) break;
        std::uint32_t cp = 0;
        bool ok = false;
        i += decodeSequence(s, i, n, cp, ok);
        if (!ok) return false;
    }
    return true;
}

std::string iconvNameForCodePage(std::string_view codePage) {
    const std::string upper = upperAscii(codePage);
    if (upper == "UTF-8" || upper == "UTF8" || upper == "ANSI_65001") return "UTF-8";
    if (upper == "ANSI_936" || upper == "GB2312" || upper == "GBK") return "GBK";
    if (upper == "KSC5601") return "UHC";
    if (upper == "DOS932") return "CP932";
    if (upper.starts_with("ANSI_") && allDigits(std::string_view(upper).substr(5))) {
        return "CP" + upper.substr(5);
    }
    if (upper.starts_with("DOS") && allDigits(std::string_view(upper).substr(3))) {
        return "IBM" + upper.substr(3);
    }
    return std::string(codePage);
}

bool decodeCodePage(std::string_view bytes, std::string_view codePage, std::wstring& out) {
    out.clear();
    const std::string name = iconvNameForCodePage(codePage);
    if (isUtf8Name(name)) {
        out = utf8ToWide(bytes);
        return isValidUtf8(bytes);
    }
#ifdef _WIN32
    const unsigned windows = windowsCodePage(name);
    if (windows == 0) return false;
#else
    iconv_t cd = converter(kWide, name);
    if (cd == ConverterCache::invalid()) return false;
#endif

    if (asciiCompatible(codePage)) {
        const auto* s = reinterpret_cast<const unsigned char*>(bytes.data());
        if (asciiRun(s, 0, bytes.size()) == bytes.size()) {
            out.assign(bytes.begin(), bytes.end());
            return true;
        }
    }

#ifdef _WIN32
    if (bytes.size() <= INT_MAX && appendDecoded(windows, bytes.data(), bytes.size(), out))
        return true;
    // A character at a time: a byte that is not of the code page becomes U+FFFD and the
    // reading goes on after it, as with iconv.
    out.clear();
    bool clean = true;
    for (std::size_t i = 0; i < bytes.size();) {
        std::size_t length = IsDBCSLeadByteEx(windows, static_cast<BYTE>(bytes[i])) ? 2 : 1;
        if (i + length > bytes.size()) {
            out.push_back(static_cast<wchar_t>(kReplacement));
            return false;  // truncated sequence at the end
        }
        if (!appendDecoded(windows, bytes.data() + i, length, out)) {
            out.push_back(static_cast<wchar_t>(kReplacement));
            clean = false;
            length = 1;
        }
        i += length;
    }
    return clean;
#else
    bool clean = true;
    out.reserve(bytes.size());
    char* in = const_cast<char*>(bytes.data());
    std::size_t inLeft = bytes.size();
    wchar_t buffer[2048];
    for (;;) {
        char* outp = reinterpret_cast<char*>(buffer);
        std::size_t outLeft = sizeof buffer;
        const std::size_t r = iconv(cd, inLeft ? &in : nullptr, &inLeft, &outp, &outLeft);
        out.append(buffer, static_cast<std::size_t>(reinterpret_cast<wchar_t*>(outp) - buffer));
        if (r != static_cast<std::size_t>(-1)) {
            if (inLeft == 0) return clean;
            continue;
        }
        if (errno == E2BIG) continue;
        clean = false;
        out.push_back(static_cast<wchar_t>(kReplacement));
        if (errno == EINVAL) return false;  // truncated sequence at the end
        ++in;
        --inLeft;
        if (inLeft == 0) return false;
    }
#endif
}

bool encodeCodePage(std::wstring_view text, std::string_view codePage, std::string& out) {
    bool clean = true;
    return encode(text, codePage, false, out, clean) && clean;
}

bool encodeCodePageWithEscapes(std::wstring_view text, std::string_view codePage,
                               std::string& out) {
    bool clean = true;
    return encode(text, codePage, true, out, clean);
}

std::wstring expandUnicodeEscapes(std::wstring_view text) {
    auto hexValue = [](wchar_t c) -> int {
        if (c >= L'0' && c <= L'9') return c - L'0';
        if (c >= L'A' && c <= L'F') return c - L'A' + 10;
        if (c >= L'a' && c <= L'f') return c - L'a' + 10;
        return -1;
    };
    // The code unit of an escape at position i, or -1.
    auto escapeAt = [&](std::size_t i) -> long {
        if (i + 7 > text.size() || text[i] != L'\\' || text[i + 1] != L'U' || text[i + 2] != L'+')
            return -1;
        long unit = 0;
        for (std::size_t k = 3; k < 7; ++k) {
            const int d = hexValue(text[i + k]);
            if (d < 0) return -1;
            unit = unit * 16 + d;
        }
        return unit;
    };
    std::wstring out;
    out.reserve(text.size());
    std::size_t i = 0;
    while (i < text.size()) {
        const long unit = escapeAt(i);
        if (unit < 0) {
            out.push_back(text[i++]);
            continue;
        }
        i += 7;
        if (unit >= 0xD800 && unit <= 0xDBFF) {
            const long low = escapeAt(i);
            if (low >= 0xDC00 && low <= 0xDFFF) {
                out.push_back(
                    static_cast<wchar_t>(0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00)));
                i += 7;
            } else {
                out.push_back(static_cast<wchar_t>(kReplacement));
            }
        } else if (unit >= 0xDC00 && unit <= 0xDFFF) {
            out.push_back(static_cast<wchar_t>(kReplacement));
        } else {
            out.push_back(static_cast<wchar_t>(unit));
        }
    }
    return out;
}

std::wstring decodeTextFile(std::string_view bytes) {
    auto startsWith = [&](std::initializer_list<unsigned char> bom) {
        if (bytes.size() < bom.size()) return false;
        std::size_t k = 0;
        for (unsigned char b : bom) {
            if (static_cast<unsigned char>(bytes[k++]) != b) return false;
        }
        return true;
    };
    if (startsWith({0xEF, 0xBB, 0xBF})) return utf8ToWide(bytes.substr(3));
    const bool little = startsWith({0xFF, 0xFE});
    if (little || startsWith({0xFE, 0xFF})) {
        std::wstring out;
        out.reserve(bytes.size() / 2);
        const auto* s = reinterpret_cast<const unsigned char*>(bytes.data());
        auto unitAt = [&](std::size_t i) -> std::uint32_t {
            return little ? (s[i] | (s[i + 1] << 8)) : ((s[i] << 8) | s[i + 1]);
        };
        std::size_t i = 2;
        while (i + 1 < bytes.size()) {
            const std::uint32_t unit = unitAt(i);
            i += 2;
            if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < bytes.size()) {
                const std::uint32_t low = unitAt(i);
                if (low >= 0xDC00 && low <= 0xDFFF) {
                    out.push_back(
                        static_cast<wchar_t>(0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00)));
                    i += 2;
                    continue;
                }
            }
            out.push_back(static_cast<wchar_t>(unit >= 0xD800 && unit <= 0xDFFF
                                                   ? static_cast<std::uint32_t>(kReplacement)
                                                   : unit));
        }
        if (i < bytes.size()) out.push_back(static_cast<wchar_t>(kReplacement));
        return out;
    }
    if (isValidUtf8(bytes)) return utf8ToWide(bytes);
    std::wstring out;
    decodeCodePage(bytes, "GBK", out);
    return out;
}

}  // namespace db
