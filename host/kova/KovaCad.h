#pragma once
// The maker's drawing-level helpers: the current space, symbol table names, system
// variables and the last entity of the drawing. A null database means the working one.
#include "host/arx/adsdef.h"
#include "host/arx/dbmain.h"
#include "host/arx/gepnt3d.h"
#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"
#include "kplan/Export.h"

namespace kova::cad {

// The current space as the value of group 67: 0 model space, 1 paper space.
KPLAN_API int GetCurSpace(AcDbDatabase* database = nullptr);
// 1 when the current space is paper space.
KPLAN_API int IsPaperSpace(AcDbDatabase* database = nullptr);

// Clears names and lists the records of a symbol table named as in DXF ("APPID", "LAYER",
// "LTYPE", "BLOCK_RECORD", case ignored), erased records left out, in table order;
// returns their number, 0 for an unknown table.
KPLAN_API int GetSymTable(const ACHAR* tableName, CStringArray& names,
                          AcDbDatabase* database = nullptr);

// System variables through the host's acedGetVar / acedSetVar; 1 on success. A short or
// long variable reads as int, a real (or an integer) as double, a string as CString.
KPLAN_API int GetSysVar(const ACHAR* name, int& value);
KPLAN_API int GetSysVar(const ACHAR* name, double& value);
KPLAN_API int GetSysVar(const ACHAR* name, CString& value);
// An int is written with the variable's own integer type.
KPLAN_API int SetSysVar(const ACHAR* name, int value);
KPLAN_API int SetSysVar(const ACHAR* name, double value);
KPLAN_API int SetSysVar(const ACHAR* name, const ACHAR* value);

// The entity most recently added to any layout of the drawing and not erased; 0 when the
// drawing has none.
KPLAN_API int GetLastEnt(ads_name entity, AcDbDatabase* database = nullptr);

// The lower-left and upper-right corners of the current view of the working drawing.
// Returns 1.
KPLAN_API int ScrlbrtPt(AcGePoint3d& lowerLeft, AcGePoint3d& upperRight);

}  // namespace kova::cad
