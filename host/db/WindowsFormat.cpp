// Each conversion is rendered on its own (numbers through snprintf, strings and characters
// here), so wide and narrow strings never pass through the C library's locale-dependent
// conversions.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>

#include "host/db/TextCodec.h"
#include "host/db/WindowsFormat.h"

namespace db {

namespace {

enum class Length { None, Char, Short, Long, LongLong, LongDouble, Int32, Int64, Size, Max, Diff };

struct Directive {
    bool left = false;
    bool plus = false;
    bool space = false;
    bool alt = false;
    bool zero = false;
    int width = -1;
    int precision = -1;
    Length length = Length::None;
    bool wideLength = false;   // l or w: wide string or character
    bool shortLength = false;  // h: narrow string or character
    wchar_t conversion = 0;
};

// Where the arguments come from: a captured list (type-safe) or a C va_list (typed by the
// conversion).
class ArgSource {
  public:
    virtual ~ArgSource() = default;
    virtual FormatArg next(const Directive& dir) = 0;
    int nextInt() {
        const FormatArg arg = next(Directive{});
        if (arg.kind == FormatArg::Kind::Signed) return static_cast<int>(arg.i);
        if (arg.kind == FormatArg::Kind::Unsigned) return static_cast<int>(arg.u);
        return 0;
    }
};

class ListSource : public ArgSource {
  public:
    ListSource(const FormatArg* args, std::size_t count) : args_(args), count_(count) {}
    FormatArg next(const Directive&) override {
        return index_ < count_ ? args_[index_++] : FormatArg{};
    }

  private:
    const FormatArg* args_;
    std::size_t count_;
    std::size_t index_ = 0;
};

bool isNarrowString(const Directive& dir) {
    return dir.conversion == L's' ? dir.shortLength : !dir.wideLength;
}

class VaSource : public ArgSource {
  public:
    explicit VaSource(va_list& args) : args_(args) {}

    FormatArg next(const Directive& dir) override {
        FormatArg arg;
        switch (dir.conversion) {
            case L'd':
            case L'i':
                arg.kind = FormatArg::Kind::Signed;
                arg.size = 4;
                switch (dir.length) {
                    case Length::Long:
                        arg.i = va_arg(args_, long);
                        arg.size = sizeof(long);
                        break;
                    case Length::LongLong:
                    case Length::LongDouble:
                    case Length::Int64:
                        arg.i = va_arg(args_, long long);
                        arg.size = 8;
                        break;
                    case Length::Size:
                    case Length::Diff:
                        arg.i = va_arg(args_, std::ptrdiff_t);
                        arg.size = sizeof(std::ptrdiff_t);
                        break;
                    case Length::Max:
                        arg.i = va_arg(args_, std::intmax_t);
                        arg.size = sizeof(std::intmax_t);
                        break;
                    default:
                        arg.i = va_arg(args_, int);
                }
                return arg;
            case L'u':
            case L'o':
            case L'x':
            case L'X':
                arg.kind = FormatArg::Kind::Unsigned;
                arg.size = 4;
                switch (dir.length) {
                    case Length::Long:
                        arg.u = va_arg(args_, unsigned long);
                        arg.size = sizeof(long);
                        break;
                    case Length::LongLong:
                    case Length::LongDouble:
                    case Length::Int64:
                        arg.u = va_arg(args_, unsigned long long);
                        arg.size = 8;
                        break;
                    case Length::Size:
                    case Length::Diff:
                        arg.u = va_arg(args_, std::size_t);
                        arg.size = sizeof(std::size_t);
                        break;
                    case Length::Max:
                        arg.u = va_arg(args_, std::uintmax_t);
                        arg.size = sizeof(std::uintmax_t);
                        break;
                    default:
                        arg.u = va_arg(args_, unsigned int);
                }
                return arg;
            case L'c':
            case L'C':
                arg.kind = FormatArg::Kind::Unsigned;
                arg.u = static_cast<unsigned int>(va_arg(args_, int));
                arg.size = 4;
                if (dir.conversion == L'c' ? dir.shortLength : !dir.wideLength) {
                    arg.u &= 0xFF;
                    arg.size = 1;
                }
                return arg;
            case L's':
            case L'S':
                if (isNarrowString(dir)) {
                    arg.kind = FormatArg::Kind::Narrow;
                    arg.s = va_arg(args_, const char*);
                    arg.length = arg.s ? std::char_traits<char>::length(arg.s) : 0;
                } else {
                    arg.kind = FormatArg::Kind::Wide;
                    arg.ws = va_arg(args_, const wchar_t*);
                    arg.length = arg.ws ? std::char_traits<wchar_t>::length(arg.ws) : 0;
                }
                return arg;
            case L'e':
            case L'E':
            case L'f':
            case L'F':
            case L'g':
            case L'G':
            case L'a':
            case L'A':
                arg.kind = FormatArg::Kind::Floating;
                if (dir.length == Length::LongDouble) {
                    arg.f = va_arg(args_, long double);
                } else {
                    arg.f = va_arg(args_, double);
                }
                return arg;
            case L'p':
            case L'n':
                arg.kind = FormatArg::Kind::Pointer;
                arg.p = va_arg(args_, void*);
                return arg;
            case 0:  // a '*' width or precision
                arg.kind = FormatArg::Kind::Signed;
                arg.size = 4;
                arg.i = va_arg(args_, int);
                return arg;
            default:
                return arg;
        }
    }

  private:
    va_list& args_;
};

std::wstring widen(const std::string& ascii) {
    return std::wstring(ascii.begin(), ascii.end());
}

std::string printfDirective(const Directive& dir, const char* length, char conversion) {
    std::string out = "%";
    if (dir.left) out += '-';
    if (dir.plus) out += '+';
    if (dir.space) out += ' ';
    if (dir.alt) out += '#';
    if (dir.zero) out += '0';
    if (dir.width >= 0) out += std::to_string(dir.width);
    if (dir.precision >= 0) out += '.' + std::to_string(dir.precision);
    out += length;
    out += conversion;
    return out;
}

template <typename T>
std::wstring cprintf(const std::string& format, T value) {
    const int n = std::snprintf(nullptr, 0, format.c_str(), value);
    if (n <= 0) return std::wstring();
    std::string buffer(static_cast<std::size_t>(n) + 1, '\0');
    std::snprintf(buffer.data(), buffer.size(), format.c_str(), value);
    buffer.resize(static_cast<std::size_t>(n));
    return widen(buffer);
}

std::wstring pad(std::wstring body, const Directive& dir) {
    if (dir.width > 0 && body.size() < static_cast<std::size_t>(dir.width)) {
        const std::size_t fill = static_cast<std::size_t>(dir.width) - body.size();
        if (dir.left) {
            body.append(fill, L' ');
        } else {
            body.insert(0, fill, L' ');
        }
    }
    return body;
}

long long toSigned(const FormatArg& arg) {
    switch (arg.kind) {
        case FormatArg::Kind::Signed:
            return arg.i;
        case FormatArg::Kind::Unsigned:
            // An unsigned int read by %d shows its bits as int, as printf would.
            if (arg.size <= 4) return static_cast<std::int32_t>(static_cast<std::uint32_t>(arg.u));
            return static_cast<long long>(arg.u);
        case FormatArg::Kind::Floating:
            if (!std::isfinite(arg.f)) return 0;
            if (arg.f >= static_cast<long double>(LLONG_MAX)) return LLONG_MAX;
            if (arg.f <= static_cast<long double>(LLONG_MIN)) return LLONG_MIN;
            return static_cast<long long>(arg.f);
        case FormatArg::Kind::Pointer:
            return static_cast<long long>(reinterpret_cast<std::uintptr_t>(arg.p));
        default:
            return 0;
    }
}

unsigned long long toUnsigned(const FormatArg& arg) {
    switch (arg.kind) {
        case FormatArg::Kind::Unsigned:
            return arg.u;
        case FormatArg::Kind::Signed:
            if (arg.size <= 4) return static_cast<std::uint32_t>(static_cast<std::int32_t>(arg.i));
            return static_cast<unsigned long long>(arg.i);
        case FormatArg::Kind::Pointer:
            return reinterpret_cast<std::uintptr_t>(arg.p);
        default:
            return static_cast<unsigned long long>(toSigned(arg));
    }
}

long double toFloating(const FormatArg& arg) {
    switch (arg.kind) {
        case FormatArg::Kind::Floating:
            return arg.f;
        case FormatArg::Kind::Unsigned:
            return static_cast<long double>(arg.u);
        default:
            return static_cast<long double>(toSigned(arg));
    }
}

std::wstring renderString(const FormatArg& arg, const Directive& dir) {
    std::wstring body;
    if (arg.kind == FormatArg::Kind::Wide) {
        body = arg.ws ? std::wstring(arg.ws, arg.length) : std::wstring(L"(null)");
    } else {
        body = arg.s ? db::utf8ToWide(std::string_view(arg.s, arg.length)) : L"(null)";
    }
    if (dir.precision >= 0 && body.size() > static_cast<std::size_t>(dir.precision)) {
        body.resize(static_cast<std::size_t>(dir.precision));
    }
    return pad(std::move(body), dir);
}

std::wstring renderSigned(long long value, const Directive& dir) {
    switch (dir.length) {
        case Length::Char:
            value = static_cast<signed char>(value);
            break;
        case Length::Short:
            value = static_cast<short>(value);
            break;
        case Length::Int32:
            value = static_cast<std::int32_t>(value);
            break;
        default:
            break;
    }
    return cprintf(printfDirective(dir, "ll", 'd'), value);
}

std::wstring renderUnsigned(unsigned long long value, const Directive& dir, char conversion) {
    switch (dir.length) {
        case Length::Char:
            value = static_cast<unsigned char>(value);
            break;
        case Length::Short:
            value = static_cast<unsigned short>(value);
            break;
        case Length::Int32:
            value = static_cast<std::uint32_t>(value);
            break;
        default:
            break;
    }
    return cprintf(printfDirective(dir, "ll", conversion), value);
}

std::wstring renderChar(const FormatArg& arg, const Directive& dir) {
    unsigned long long code = toUnsigned(arg);
    // A narrow character above ASCII is half of a UTF-8 sequence at best.
    if (arg.size == 1 && code >= 0x80) code = 0xFFFD;
    if (code > 0x10FFFF) code = 0xFFFD;
    Directive charDir = dir;
    charDir.precision = -1;
    return pad(std::wstring(1, static_cast<wchar_t>(code)), charDir);
}

std::wstring renderPointer(const FormatArg& arg, const Directive& dir) {
    // The Windows runtime prints all hex digits of the address, upper case, without 0x.
    const auto value = static_cast<unsigned long long>(toUnsigned(arg));
    char digits[2 * sizeof(void*) + 1];
    std::snprintf(digits, sizeof digits, "%0*llX", static_cast<int>(2 * sizeof(void*)), value);
    Directive pointerDir = dir;
    pointerDir.precision = -1;
    return pad(widen(digits), pointerDir);
}

std::wstring render(const FormatArg& arg, const Directive& dir) {
    if (arg.kind == FormatArg::Kind::None) return std::wstring();
    const wchar_t c = dir.conversion;
    const bool isString = arg.kind == FormatArg::Kind::Wide || arg.kind == FormatArg::Kind::Narrow;
    if (isString || c == L's' || c == L'S') {
        if (isString) return renderString(arg, dir);
        // A number given to %s prints in its own natural form.
        Directive natural = dir;
        switch (arg.kind) {
            case FormatArg::Kind::Signed:
                natural.conversion = L'd';
                return renderSigned(arg.i, natural);
            case FormatArg::Kind::Unsigned:
                natural.conversion = L'u';
                return renderUnsigned(arg.u, natural, 'u');
            case FormatArg::Kind::Floating:
                return cprintf(printfDirective(dir, "L", 'g'), arg.f);
            default:
                return renderPointer(arg, dir);
        }
    }
    switch (c) {
        case L'd':
        case L'i':
            return renderSigned(toSigned(arg), dir);
        case L'u':
            return renderUnsigned(toUnsigned(arg), dir, 'u');
        case L'o':
            return renderUnsigned(toUnsigned(arg), dir, 'o');
        case L'x':
            return renderUnsigned(toUnsigned(arg), dir, 'x');
        case L'X':
            return renderUnsigned(toUnsigned(arg), dir, 'X');
        case L'c':
        case L'C':
            return renderChar(arg, dir);
        case L'p':
            return renderPointer(arg, dir);
        default:  // e E f F g G a A
            return cprintf(printfDirective(dir, "L", static_cast<char>(c)), toFloating(arg));
    }
}

bool isConversion(wchar_t c) {
    for (const wchar_t* p = L"diuoxXcCsSeEfFgGaApn"; *p; ++p) {
        if (*p == c) return true;
    }
    return false;
}

std::wstring format(const wchar_t* fmt, ArgSource& source) {
    std::wstring out;
    if (!fmt) return out;
    const std::wstring_view f(fmt);
    std::size_t i = 0;
    while (i < f.size()) {
        const std::size_t percent = f.find(L'%', i);
        if (percent == std::wstring_view::npos) {
            out.append(f.substr(i));
            break;
        }
        out.append(f.substr(i, percent - i));
        i = percent + 1;
        if (i < f.size() && f[i] == L'%') {
            out.push_back(L'%');
            ++i;
            continue;
        }
        Directive dir;
        for (; i < f.size(); ++i) {
            const wchar_t c = f[i];
            if (c == L'-') {
                dir.left = true;
            } else if (c == L'+') {
                dir.plus = true;
            } else if (c == L' ') {
                dir.space = true;
            } else if (c == L'#') {
                dir.alt = true;
            } else if (c == L'0') {
                dir.zero = true;
            } else {
                break;
            }
        }
        auto readNumber = [&]() {
            long long value = 0;
            while (i < f.size() && f[i] >= L'0' && f[i] <= L'9') {
                value = std::min<long long>(value * 10 + (f[i] - L'0'), INT_MAX / 2);
                ++i;
            }
            return static_cast<int>(value);
        };
        if (i < f.size() && f[i] == L'*') {
            ++i;
            dir.width = source.nextInt();
            if (dir.width < 0) {
                dir.left = true;
                dir.width = dir.width == INT_MIN ? INT_MAX : -dir.width;
            }
        } else if (i < f.size() && f[i] >= L'1' && f[i] <= L'9') {
            dir.width = readNumber();
        }
        if (i < f.size() && f[i] == L'.') {
            ++i;
            if (i < f.size() && f[i] == L'*') {
                ++i;
                dir.precision = source.nextInt();
                if (dir.precision < 0) dir.precision = -1;
            } else {
                dir.precision = readNumber();
            }
        }
        const std::wstring_view rest = f.substr(i);
        if (rest.starts_with(L"I64")) {
            dir.length = Length::Int64;
            i += 3;
        } else if (rest.starts_with(L"I32")) {
            dir.length = Length::Int32;
            i += 3;
        } else if (rest.starts_with(L"hh")) {
            dir.length = Length::Char;
            dir.shortLength = true;
            i += 2;
        } else if (rest.starts_with(L"ll")) {
            dir.length = Length::LongLong;
            i += 2;
        } else if (!rest.empty()) {
            switch (rest[0]) {
                case L'h':
                    dir.length = Length::Short;
                    dir.shortLength = true;
                    ++i;
                    break;
                case L'l':
                    dir.length = Length::Long;
                    dir.wideLength = true;
                    ++i;
                    break;
                case L'w':
                    dir.wideLength = true;
                    ++i;
                    break;
                case L'L':
                    dir.length = Length::LongDouble;
                    ++i;
                    break;
                case L'I':
                    dir.length = Length::Diff;
                    ++i;
                    break;
                case L'z':
                    dir.length = Length::Size;
                    ++i;
                    break;
                case L'j':
                    dir.length = Length::Max;
                    ++i;
                    break;
                case L't':
                    dir.length = Length::Diff;
                    ++i;
                    break;
                default:
                    break;
            }
        }
        if (i >= f.size() || !isConversion(f[i])) {
            // Not a conversion: keep the text as written.
            out.append(f.substr(percent, i - percent));
            continue;
        }
        dir.conversion = f[i++];
        const FormatArg arg = source.next(dir);
        if (dir.conversion == L'n') continue;
        out += render(arg, dir);
    }
    return out;
}

}  // namespace

std::wstring formatArgs(const wchar_t* fmt, const FormatArg* args, std::size_t count) {
    ListSource source(args, count);
    return format(fmt, source);
}

std::wstring formatVa(const wchar_t* fmt, va_list args) {
    va_list copy;
    va_copy(copy, args);
    VaSource source(copy);
    std::wstring out = format(fmt, source);
    va_end(copy);
    return out;
}

}  // namespace db
