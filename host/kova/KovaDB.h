#pragma once
// The maker's project database: yes/no and text parameters of the planning project
// ("核算时用地面积是否采用计算值[是(Y)/否(N)]" and the like). They are kept in the drawing
// itself, so they travel with the file: named-object dictionary -> DICTIONARY
// "KOVA_PROJECT" -> XRECORD "OTHERPARAM", a list of group-1000 strings alternating
// parameter name and value. Names are free text; no dictionary key restrictions apply.
#include "host/arx/dbmain.h"
#include "host/mfc/CString.h"

namespace KovaDB {

inline constexpr const ACHAR* kProjectDict = L"KOVA_PROJECT";
inline constexpr const ACHAR* kOtherParamKey = L"OTHERPARAM";

class CCustomDatabase {
  public:
    // The parameters of a drawing; the working one when null.
    explicit CCustomDatabase(AcDbDatabase* database = nullptr) : database_(database) {}

    // 1 with the value the drawing sets for the parameter; 0 with defaultValue when it
    // sets none (or when there is no drawing).
    int GetOtherCustomParam(const ACHAR* name, CString& value,
                            const ACHAR* defaultValue = L"") const;
    // Sets the parameter, replacing an earlier value; 0 for an empty name or no drawing.
    int SetOtherCustomParam(const ACHAR* name, const ACHAR* value);

  private:
    AcDbDatabase* database_;
};

// The project database of a drawing; the working one when null.
CCustomDatabase qmGetCustomDatabase(AcDbDatabase* database = nullptr);

}  // namespace KovaDB
