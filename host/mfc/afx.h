#pragma once
// The Windows and MFC basic types of a Unicode build, for code written against them.
// Typedefs may be repeated with the same type, so other host headers can declare the same
// names.
#include <cstdint>

#ifdef _WIN32
// On the CAD's platform they are the platform's own (DWORD and LONG are long there).
#include <windows.h>
#else
typedef wchar_t TCHAR;
typedef wchar_t WCHAR;
typedef const wchar_t* LPCTSTR;
typedef wchar_t* LPTSTR;
typedef const wchar_t* LPCWSTR;
typedef wchar_t* LPWSTR;
typedef const char* LPCSTR;
typedef char* LPSTR;
typedef int BOOL;
typedef unsigned int UINT;
typedef unsigned char BYTE;
typedef unsigned short WORD;
typedef std::uint32_t DWORD;
typedef std::int32_t LONG;
typedef std::intptr_t INT_PTR;
typedef std::uintptr_t UINT_PTR;
#endif

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

#ifndef _T
#define _T(x) L##x
#endif
#ifndef _TEXT
#define _TEXT(x) L##x
#endif

#ifndef ACHAR_DEFINED
#define ACHAR_DEFINED
using ACHAR = wchar_t;
#endif
