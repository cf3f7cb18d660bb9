#pragma once
// printf formatting with the conventions of the Windows wide runtime, which the code of
// the host's modules is written for, on top of the C library of this platform.
#include <cstdarg>
#include <string>
#include <string_view>

namespace db {

// The format rewritten for glibc's wide printf: %s and %c take wide arguments (glibc:
// %ls, %lc), %S and %C narrow ones (glibc: %s, %c), %hs / %hc narrow, %ws / %wc wide;
// the sizes I64, I32 and I become ll, nothing and z. Everything else is kept.
std::wstring msvcToGlibcFormat(std::wstring_view format);

// Formats with the Windows conventions. False, with out empty, when the C library
// refuses (a narrow string it cannot convert, for one).
bool formatMsvc(std::wstring& out, const wchar_t* format, va_list args);

}  // namespace db
