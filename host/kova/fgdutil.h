#pragma once
// The maker's string-list helpers: splitting a string at a separator and finding a string
// in a list.
#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"
#include "host/mfc/afx.h"
#include "kplan/Export.h"

namespace fgdutil {

// Clears the list and fills it with the pieces between occurrences of the separator
// (which may be several characters long), empty pieces included: "a,,b" gives "a", "",
// "b" and "a," gives "a", "". An empty text gives an empty list; an empty separator gives
// the whole text as the one piece. Returns the number of pieces.
KPLAN_API int Str2StrArr(const CString& text, CStringArray& list, const CString& separator);

// Exact, case-sensitive search. index is the first match, or -1 and FALSE when absent.
KPLAN_API BOOL StrArrFindStr(const CStringArray& list, const CString& text, int& index);
KPLAN_API BOOL StrArrFindStr(const CStringArray& list, const CString& text);

}  // namespace fgdutil
