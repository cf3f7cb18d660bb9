#pragma once
// Ordering parcels by a field of their records, for tables and numbering.
#include "host/arx/dbmain.h"
#include "host/mfc/CString.h"
#include "kplan/Export.h"

// Sorts the ids by the value of a field of each parcel's record (a key or a label, read
// with CDKBJXDInfo::GetData, any generation; values trimmed). Values that are whole
// decimal numbers ("12", "-0.5", "2.5e3") compare as numbers and come before text; text
// compares in natural order, runs of digits by their value ("A-2" before "A-10") and
// everything else by character; parcels without the field (an empty value, an invalid or
// erased id) come last. The sort is stable: equal values keep their order.
// descending reverses the order of the values, not the place of the missing ones.
// Returns the number of ids; 0 for an empty list or an empty field name (ids unchanged).
KPLAN_API int FSortObjByField(AcDbObjectIdArray& ids, const CString& field,
                              bool descending = false);

// The comparison FSortObjByField uses: negative when a comes first, 0 when equal.
KPLAN_API int FCompareFieldValues(const CString& a, const CString& b);
