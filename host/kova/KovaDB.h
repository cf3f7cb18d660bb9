#pragma once
// The maker's project database: yes/no and text parameters of the planning project
// ("核算时用地面积是否采用计算值[是(Y)/否(N)]" and the like). They are kept in the drawing
// itself, so they travel with the file: named-object dictionary -> DICTIONARY
// "KOVA_PROJECT" -> XRECORD "OTHERPARAM", a list of group-1000 strings alternating
// parameter name and value. Names are free text; no dictionary key restrictions apply.
#include "host/arx/dbmain.h"
#include "host/mfc/CString.h"
#include "kplan/Export.h"

namespace KovaDB {

inline constexpr const ACHAR* kProjectDict = L"KOVA_PROJECT";
inline constexpr const ACHAR* kOtherParamKey = L"OTHERPARAM";

class KPLAN_API CCustomDatabase {
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
KPLAN_API CCustomDatabase qmGetCustomDatabase(AcDbDatabase* database = nullptr);

// What the layer standard sets for one layer key. The defaults are those of a layer
// the standard does not know: "0", "CONTINUOUS", colour 7.
struct KPLAN_API CLayerParam {
    CString strLayerName = L"0";
    CString strLineType = L"CONTINUOUS";
    int nColorIndex = 7;
    double dLineWeight = -1.0;  // millimetres; negative for the default weight
    CString strRemark;
};

// The layer standard of the current standard: "参数配置\图层标准.ini", one section per layer
// key ("FL_FZ_YDGH_KB") with the keys "图层名", "颜色" (colour index), "线型", "线宽" (mm,
// empty for the default) and "说明". It is read when asked, so an edited file counts at
// once.
class KPLAN_API CQmCustomDatabase {
  public:
    // The layer standard of the standard that is current when it is made.
    CQmCustomDatabase();
    // The full path of the file ("" when the standard has none).
    const CString& GetPath() const { return path_; }

  private:
    CString path_;
};

KPLAN_API CQmCustomDatabase qmGetQmCustomDatabase();

// 1 when the layer standard has a section for the key: every key the section sets
// overwrites the matching member of param (a colour that is no number in 1..256 is left
// out). 0 with param untouched when the file or the section is missing.
KPLAN_API int qmGetLayerParam(const ACHAR* layerKey, CLayerParam& param,
                              const CQmCustomDatabase& database);

// The record of a layer that the parcel layer lookups hand to the layer standard: the
// caller presets it with what a layer of the key should be when the standard does not
// know the key, and the standard overwrites what it sets.
struct KPLAN_API LAYERPARAM2013EX {
    ACHAR szLayerName[256] = {};  // the layer name; longer names are cut to 255 characters
    int nType = 0;                // preset to 4 by the parcel lookups; kept as given
    CString strUnit;              // preset to "U"; kept as given
    CString strKey;               // the layer key
    CString strKeyEx;             // the layer key again
    CString strAppName;           // xdata application of the entities drawn on the layer
    CString strRemark;            // what the layer is for ("说明")
    CString strGroup;             // the layer group ("YD用地图层_R21")
    int nColorIndex = 7;
    CString strLineType = L"CONTINUOUS";
    double dLineWeight = -1.0;  // millimetres; negative for the default weight

    void SetLayerName(const ACHAR* name);
};

// Looks the key up in the layer standard of the current standard (as above): 1 when the
// standard knows it and its 图层名, 颜色, 线型, 线宽 and 说明 overwrote the record's layer
// name, colour, linetype, weight and remark (each only when set); 0 with the presets kept
// when it does not. The three integers are options of the maker's interface (the parcel
// lookups pass 0, 1 for a layer that several classes share, and 1) and the project
// database is the drawing's; the standard here answers alike whatever they are.
KPLAN_API int qmGetLayerParam(const CString& layerKey, LAYERPARAM2013EX& param, int, int shared,
                              int, CCustomDatabase* database);

// The layer names that the parcel layer lookups remembered for a drawing (the working one
// when null), so that a drawing keeps its layers when the standard changes. They travel
// with the file: named-object dictionary -> DICTIONARY "KOVA_LAYERNAME" -> one XRECORD per
// layer key holding the name as a group-1 string. Keys are compared without regard to
// ASCII case, as every dictionary key.
inline constexpr const ACHAR* kLayerNameDict = L"KOVA_LAYERNAME";
// 1 with the name stored under the key; 0 with name "" when there is none.
KPLAN_API int qmGetLayerNameFromDict(const ACHAR* key, CString& name,
                                     AcDbDatabase* database = nullptr);
// Stores the name under the key, replacing an earlier one; 0 for an empty key or name.
KPLAN_API int qmPutLayerNameIntoDict(const ACHAR* key, const ACHAR* name,
                                     AcDbDatabase* database = nullptr);

}  // namespace KovaDB
