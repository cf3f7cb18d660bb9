#pragma once
// Small helpers shared by the statistics: number reading and the guard that keeps a host
// error status from leaving an exported function.
#include <cwchar>

#include "host/kova/KovaError.h"
#include "host/mfc/CString.h"

namespace stats {

// A plain decimal conversion: leading blanks skipped, the longest number prefix read,
// 0 when there is none.
inline double ToNumber(const CString& text) {
    return std::wcstod(static_cast<const wchar_t*>(text), nullptr);
}
// The integer value of a field: its leading whole number, 0 when there is none.
inline int ToInteger(const CString& text) {
    return static_cast<int>(std::wcstol(static_cast<const wchar_t*>(text), nullptr, 10));
}

using kova::Guarded;

}  // namespace stats
