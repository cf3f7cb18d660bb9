#pragma once
// Label / value lists: an application's xdata as group-1000 strings alternating label and
// value, the format of first-generation parcels, parcel hatches and red lines.
#include "host/arx/dbmain.h"
#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"
#include "kplan/Export.h"

namespace dk {

// The value that follows label in app's list; 0 when the list or the label is absent.
KPLAN_API int ReadListValue(AcDbObjectId id, const wchar_t* app, const wchar_t* label,
                            CString& value);
// Writes the pair into app's list: the value replaced in place when the label is there,
// the pair appended when it is not, the pair as the whole list when there is none. So the
// list keeps the order in which labels were first written.
KPLAN_API int WriteListValue(AcDbObjectId id, const wchar_t* app, const wchar_t* label,
                             const wchar_t* value);
// Writes the pairs in order as WriteListValue would one by one (a label written twice
// keeps the last value), with one read and one write of the xdata. 0 when the arrays
// differ in length, a label is empty (the other pairs are written) or the write fails.
KPLAN_API int WriteListPairs(AcDbObjectId id, const wchar_t* app, const CStringArray& labels,
                             const CStringArray& values);
// Every pair of app's list in order (a trailing label without value gets ""); the number
// of pairs, 0 when there is no list. Both lists are cleared first.
KPLAN_API int ReadListPairs(AcDbObjectId id, const wchar_t* app, CStringArray& labels,
                            CStringArray& values);

}  // namespace dk
