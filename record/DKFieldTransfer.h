#pragma once
// Moving the fields of older parcel records, named by their Chinese labels, into the
// current record under its keys.
#include "host/arx/dbmain.h"
#include "host/mfc/CString.h"
#include "kplan/Export.h"

// The current key of a field named in an older record. generation 1 ("地块边界" lists)
// and 2 ("地块属性" records) first consult that generation's own names, so that
// "地块平均标高" and "地块坡度" land in the slots the format gives them ("FN_FJDCW",
// "FN_ZRKS"); then the labels of current records ("用地面积" "FD_YDMJ", "备注" "FS_BZ",
// ...); any other generation consults the labels and then the older names. The name is
// trimmed first. 1 with key set when the name is known; 0 with key set to the trimmed
// name otherwise (a field without a current key keeps its own name).
KPLAN_API int FTransDKDataTypeToGisType(const CString& name, CString& key, int generation = 0);

// Moves the fields of the parcel's older record ("地块属性" when it has one, else
// "地块边界" with its simple items) into its current record, each under its current key
// (unknown names under their own), creating the current record as CDKBJXDInfo::SetData
// does when there is none. Empty values are not moved; fields the current record already
// holds are kept as they are, so running it twice changes nothing. The older record is
// left in place for older releases. Returns the number of fields written (0 when all
// were there already) or -1 for an invalid or erased id, a curve without an older
// record, or a failed write.
KPLAN_API int FTransDKDataTypeToGisType(AcDbObjectId id);
