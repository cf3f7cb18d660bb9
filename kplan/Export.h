#pragma once
// KPLAN_API marks what the kplan library exports: the classes and free functions of the
// domain and the host surface they use. Everything else stays inside the library.
//
// On Windows the library's own build defines KPLAN_BUILDING_DLL and a program using the DLL
// KPLAN_USING_DLL; a static build defines neither. Elsewhere the library is compiled with
// hidden visibility and the mark makes a name visible again.
#if defined(_WIN32)
#if defined(KPLAN_BUILDING_DLL)
#define KPLAN_API __declspec(dllexport)
#elif defined(KPLAN_USING_DLL)
#define KPLAN_API __declspec(dllimport)
#else
#define KPLAN_API
#endif
#elif defined(__GNUC__) || defined(__clang__)
#define KPLAN_API __attribute__((visibility("default")))
#else
#define KPLAN_API
#endif
