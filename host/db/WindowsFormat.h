#pragma once
// printf formatting with the conventions of the Windows wide runtime that the host's
// modules are written for (%s and %c wide, %S and %hs narrow, %I64d), rendered here
// conversion by conversion so that no string passes through the C library's
// locale-dependent conversions.
#include <cstdarg>
#include <cstddef>
#include <string>

#include "kplan/Export.h"

namespace db {

// One argument of Format, captured with its type so that the conversion in the format
// string cannot misread it.
struct KPLAN_API FormatArg {
    enum class Kind { None, Signed, Unsigned, Floating, Wide, Narrow, Pointer };
    Kind kind = Kind::None;
    int size = 0;  // bytes of the original integer, for %d of an unsigned and the like
    long long i = 0;
    unsigned long long u = 0;
    long double f = 0;
    const wchar_t* ws = nullptr;
    const char* s = nullptr;  // UTF-8
    std::size_t length = 0;   // of ws or s
    const void* p = nullptr;
};

KPLAN_API std::wstring formatArgs(const wchar_t* format, const FormatArg* args, std::size_t count);
KPLAN_API std::wstring formatVa(const wchar_t* format, va_list args);

}  // namespace db
