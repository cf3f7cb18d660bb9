#pragma once
// The layer through which every record reads and writes its attributes: record
// generations, drawing-wide and per-entity dictionary strings, copying and removing
// xdata, the drawing-sheet association string, and small string and colour utilities.
// Nothing here reports to the user: failures are the result 0 with outputs left empty
// or unchanged.
#include "host/arx/dbmain.h"
#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"
#include "kplan/Export.h"

// 3 current GIS record, 2 "地块属性", 1 "地块边界", 0 none (or an invalid or erased id).
KPLAN_API int CheckDKDataVer(AcDbObjectId id);
// 1 when the parcel carries the item "FS_Standard": its codes follow the 2011 standard.
KPLAN_API int FIsNewStandardDK(AcDbObjectId id);
// The first record application containing "FAPP_" other than "FAPP_ENTCODE".
KPLAN_API int FGetEntAppName(AcDbObjectId id, CString& appName);
// Appends every registered application of the drawing that starts with "FAPP_".
KPLAN_API int FGetRegFAppCurMap(CStringArray& appNames);

// Drawing-wide strings; "/" is removed from the key before use.
KPLAN_API int FReadDataFromDict(const CString& dictName, const CString& key, CString& value);
KPLAN_API int FWriteDataToDict(const CString& dictName, const CString& key, const CString& value);
// The same in the class-colour dictionary "FQMDKCOLOR".
KPLAN_API int FReadColorToDict(const CString& key, CString& value);
KPLAN_API int FWriteColorToDict(const CString& key, const CString& value);

// All xdata of every application.
KPLAN_API int FSetObjXDataToTwo(AcDbObjectId from, AcDbObjectId to);
// The GIS records only.
KPLAN_API int FSetOneXDataToTwo(AcDbObjectId from, AcDbObjectId to);
KPLAN_API int FSetOneXDataToTwo(AcDbObjectId from, const AcDbObjectIdArray& to);
// Removes the xdata of the applications named (comma-separated, or a list).
KPLAN_API int FDelXData(AcDbObjectId id, const CString& appNames);
KPLAN_API int FDelXData(AcDbObjectId id, const CStringArray& appNames);

// The drawing-sheet association string "1,<code>|2,<code>|..." in the entity's
// extension dictionary under "TZ_DKH_DKW".
KPLAN_API int FWriteAssocDataToTZKDict(AcDbObjectId id, const CString& data);
KPLAN_API int FWriteAssocDataToTZKDict(AcDbObjectId sheet, const AcDbObjectIdArray& parcels);
KPLAN_API int FReadAssocDataFromTZKDict(AcDbObjectId id, CString& data);
KPLAN_API int FReadAssocDKFromTZKDict(AcDbObjectId sheet, const AcDbObjectIdArray& candidates,
                                      AcDbObjectIdArray& matched);
// Drops ids that are not valid or are erased; the number left.
KPLAN_API int FRemoveInValidId(AcDbObjectIdArray& ids);

// A value of "参数配置\FAppDataSet.ini", lower-cased and right-trimmed of the character
// sets ".ini", ".txt" and ".xml" (a set trim: "plain" becomes "pla").
KPLAN_API int FGetValueFromFieldName(const CString& section, const CString& key, CString& value);
// The seven-character land-use data code: R21 gives DR20100, E1 gives LE10000.
KPLAN_API int FCalcDKDataCode(const CString& classCode, CString& dataCode);
// The current planning type: 1 FG, 2 ZG, 3 TX, 4 FJ, 0 anything else.
KPLAN_API int FReadCurGHType();

// 1 when the text holds a Chinese (CJK) character.
KPLAN_API int FStrHaveChinese(const CString& text);
// The largest / smallest number written in a text such as "1.2-2.5" or "≤24/36", as
// written; 0 when the text holds no number. A "-" is a minus sign only at the start or
// after a non-numeric character, so ranges read as ranges.
KPLAN_API int FGetMaxStrValueFromStr(const CString& text, CString& value);
KPLAN_API int FGetMinStrValueFromStr(const CString& text, CString& value);
// The class of a parcel that has none: "KB" (blank land) when the current class table
// has it, else the table's first class, else "KB".
KPLAN_API CString FGetDftDKClass();
// The leading colour text: digits, "/", "(", ")" and ",", trimmed.
KPLAN_API int FGetColorNumFromStr(const CString& text, CString& result);
// The colour of a palette index as a colour reference (red in the low byte).
KPLAN_API unsigned long FIndexToColorRef(int index);
// A yes/no question: 1 yes, 0 no, -1 cancelled; Enter takes the default.
KPLAN_API int KovaIsConfirm(const CString& prompt, int defaultYes);
