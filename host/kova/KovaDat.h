#pragma once
// The maker's data helpers: result-buffer lists kept in named dictionaries of the drawing
// and in extension dictionaries of entities, one application's xdata as a list, string
// lookups in label / value lists, and soft links between entities.
//
// Storage: drawing-wide lists live in named-object dictionary -> DICTIONARY <dict> ->
// XRECORD <key>; entity lists in the entity's extension dictionary -> XRECORD <key>; a
// link list in the extension dictionary -> XRECORD <link name> holding one group-330 soft
// pointer per linked object.
//
// Lists handed in stay the caller's; lists handed out are new and the caller releases
// them with acutRelRb. Results are 1 on success (or a count) and 0 on failure.
#include "host/arx/acutads.h"
#include "host/arx/dbmain.h"
#include "host/mfc/CString.h"
#include "kplan/Export.h"

namespace kova::dat {

// Stores the list under dict / key of the drawing (the working database when null),
// creating the dictionary and replacing an earlier list. Xrecords take data group codes
// only (1 to 4999, 1000 and up for xdata-style strings).
KPLAN_API int AddNamedObjDict(const ACHAR* dictName, const ACHAR* key, const resbuf* data,
                              AcDbDatabase* database = nullptr);
// 1 with a copy of the stored list (null when it is empty); 0 with null when the
// dictionary or the key is missing.
KPLAN_API int ReadNamedObjDict(const ACHAR* dictName, const ACHAR* key, resbuf*& data,
                               AcDbDatabase* database = nullptr);

// The same in the entity's extension dictionary, created when needed.
KPLAN_API int AddObjExtDict(AcDbObjectId id, const ACHAR* key, const resbuf* data);
KPLAN_API int ReadObjExtDict(AcDbObjectId id, const ACHAR* key, resbuf*& data);

// The entity's xdata of one application, first element the 1001 application name; 0 and
// null when the entity carries none.
KPLAN_API int ReadObjXdata(AcDbObjectId id, const ACHAR* appName, resbuf*& data);
// Replaces the application's data by the list (a leading 1001 item of the list is
// skipped, so a list read with ReadObjXdata can be written back). The application is
// registered when needed; an empty list removes the application's data. A list that
// names a further application is refused.
KPLAN_API int AddObjXdata(AcDbObjectId id, const ACHAR* appName, const resbuf* data);
// Appends the list to the application's data (same rules as AddObjXdata).
KPLAN_API int PasteObjXdata(AcDbObjectId id, const ACHAR* appName, const resbuf* data);

// Label / value lists: the string items of the list (a leading application name and brace
// markers left out) alternate label and value, labels at the even places.
// The value that follows the first label equal to label; 0 when absent.
KPLAN_API int GetRbString(const resbuf* list, const ACHAR* label, CString& value);
// Replaces that value in the list; a label without a value gets one appended. 0 when the
// label is absent.
KPLAN_API int SetRbString(resbuf* list, const ACHAR* label, const ACHAR* value);

// Links other to the entity under the link name; linking an object twice keeps one link.
KPLAN_API int PasteSoftId(AcDbObjectId id, const ACHAR* linkName, AcDbObjectId other);
// Clears ids and fills it with the objects linked under the name, in linking order
// (erased ones included: callers decide what to do with them); returns their number.
KPLAN_API int GetSoftIds(AcDbObjectId id, const ACHAR* linkName, AcDbObjectIdArray& ids);
// Drops the whole link list of that name (the linked objects stay as they are); 1 when
// there was one.
KPLAN_API int RemoveSoftIds(AcDbObjectId id, const ACHAR* linkName);
// The name the parcel code knows the same reading by.
KPLAN_API int qmGetIdFromDict(AcDbObjectId id, const ACHAR* linkName, AcDbObjectIdArray& ids);

}  // namespace kova::dat
