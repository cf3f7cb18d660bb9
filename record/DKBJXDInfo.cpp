#include "record/DKBJXDInfo.h"

#include <cwchar>
#include <string>

#include "host/arx/acutads.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaDB.h"
#include "host/kova/KovaDat.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/fgdutil.h"
#include "record/DKBJInfo.h"
#include "record/DKKeys.h"
#include "record/DKScan.h"
#include "record/LabelList.h"
#include "record/RecordSession.h"
#include "record/XDataAccess.h"
#include "standard/KovaAttribSet.h"

namespace {

bool live(AcDbObjectId id) {
    return id.isValid() && !id.isErased();
}

bool same(const wchar_t* a, const wchar_t* b) {
    return a != nullptr && b != nullptr && std::wcscmp(a, b) == 0;
}

// Whether some label begins with c: most reads name a key, which begins with none.
bool beginsALabel(wchar_t c) {
    static const std::wstring firsts = [] {
        std::wstring all = {dk::LBL_MJ[0]};
        for (const dk::LabelKey& entry : dk::LABEL_KEYS)
            all += entry.label[0];
        return all;
    }();
    return firsts.find(c) != std::wstring::npos;
}

// A label of the current record to its key; anything else is a key already.
const wchar_t* keyOf(const wchar_t* keyOrLabel, bool writing) {
    if (keyOrLabel == nullptr || !beginsALabel(keyOrLabel[0])) return keyOrLabel;
    for (const dk::LabelKey& entry : dk::LABEL_KEYS) {
        if (same(keyOrLabel, entry.label)) return entry.key;
    }
    if (writing && same(keyOrLabel, dk::LBL_MJ)) return dk::FD_YDMJ;
    return keyOrLabel;
}

// What an older generation calls a key.
const wchar_t* oldLabelOf(const wchar_t* key, int generation) {
    for (const dk::OldLabels& entry : dk::OLD_LABELS) {
        if (same(key, entry.key)) return generation == 1 ? entry.first : entry.second;
    }
    return key;
}

// The name a field is stored under in a record of the generation.
const wchar_t* storedName(const wchar_t* key, int generation) {
    switch (generation) {
        case 1:
        case 2:
            return oldLabelOf(key, generation);
        case 3:
            return keyOf(key, false);
        default:
            return key;
    }
}

bool carriesAny(const CStringArray& names, std::initializer_list<const wchar_t*> apps) {
    for (const wchar_t* app : apps) {
        if (fgdutil::StrArrFindStr(names, app)) return true;
    }
    return false;
}

const wchar_t* typeLabelOf(const CString& code) {
    if (code == L"ZG") return dk::TYPE_ZGDK;
    if (code == L"FG") return dk::TYPE_FGDK;
    if (code == L"TX") return dk::TYPE_TXDK;
    if (code == L"FJ") return dk::TYPE_FJDK;
    return dk::TYPE_KGDK;
}

// A yes/no project parameter; yes unless the drawing says otherwise.
int projectSaysYes(const wchar_t* parameter) {
    CString value;
    KovaDB::qmGetCustomDatabase().GetOtherCustomParam(parameter, value, L"Y");
    return value == L"Y" ? 1 : 0;
}

// Stores a marker item, keeping one that is there already when asked to.
int mark(AcDbObjectId id, const wchar_t* marker, const wchar_t* value, bool keepExisting) {
    CString existing;
    if (keepExisting && ARX_DATA::CFSimpleXData::GetFrom(id, marker, existing)) return 1;
    return ARX_DATA::CFSimpleXData::SetTo(id, marker, value);
}

int writeFields(AcDbObjectId id, const CStringArray& keys, const CStringArray& values,
                const wchar_t* appName) {
    if (appName == nullptr || *appName == 0) {
        return ARX_DATA::CFGisXData::SetTo(id, keys, values);
    }
    CStringArray apps;
    for (INT_PTR i = 0; i < keys.GetSize(); ++i)
        apps.Add(appName);
    return ARX_DATA::CFGisXData::SetTo(id, apps, keys, values);
}

double number(const CString& text) {
    return std::wcstod(text, nullptr);
}

}  // namespace

CDKBJXDInfo::CDKBJXDInfo(AcDbObjectId id) {
    SetObject(id);
}

int CDKBJXDInfo::SetObject(AcDbObjectId id) {
    if (!live(id)) return 0;
    m_id = id;
    return 1;
}

int CDKBJXDInfo::GetObjectW(AcDbObjectId& id) const {
    if (m_id.isNull()) return 0;
    id = m_id;
    return 1;
}

// ---------------------------------------------------------------------- kind tests

int CDKBJXDInfo::IsDkbj() const {
    if (!live(m_id)) return 0;
    double unused = 0;
    return dk::RememberedNumber(m_id, L"IsDkbj", unused, [&](double&) {
        CStringArray names;
        ARX_DATA::CFSimpleXData::GetAllAppNames(m_id, names);
        return carriesAny(names, {dk::FAPP_GHDK, dk::FAPP_GHDK_FG, dk::FAPP_GHDK_ZG,
                                  dk::FAPP_GHDK_TX, dk::APP_DKSX, dk::APP_DKBJ})
                   ? 1
                   : 0;
    });
}

int CDKBJXDInfo::IsXZDkbj() const {
    if (!live(m_id)) return 0;
    double unused = 0;
    return dk::RememberedNumber(m_id, L"IsXZDkbj", unused, [&](double&) {
        CString value;
        return ARX_DATA::CFSimpleXData::GetFrom(m_id, dk::FAPP_XZDK, value) ? 1 : 0;
    });
}

int CDKBJXDInfo::IsGHDxkj() const {
    CString value;
    return live(m_id) && ARX_DATA::CFSimpleXData::GetFrom(m_id, dk::FAPP_GHDK_DX, value) ? 1 : 0;
}

int CDKBJXDInfo::IsXZDxkj() const {
    CString value;
    return live(m_id) && ARX_DATA::CFSimpleXData::GetFrom(m_id, dk::FAPP_XZDK_DX, value) ? 1 : 0;
}

// ---------------------------------------------------------------------- reading

int CDKBJXDInfo::GetData(const wchar_t* key, CString& value) const {
    if (!live(m_id) || key == nullptr) return 0;
    return GetData(CheckDKDataVer(m_id), key, value);
}

int CDKBJXDInfo::GetData(int generation, const wchar_t* key, CString& value) const {
    if (!live(m_id) || key == nullptr) return 0;
    const wchar_t* stored = storedName(key, generation);
    // Generation 1 reads another layout under the same names: kept apart.
    return dk::RememberedText(m_id, generation == 1 ? L'1' : L'F', stored, value,
                              [&](CString& text) {
                                  if (generation == 1) return CDKBJInfo(m_id).GetData(stored, text);
                                  return ARX_DATA::CFGisXData::GetFrom(m_id, stored, text);
                              });
}

int CDKBJXDInfo::GetAttrib(const CString& key, CString& value) const {
    if (!live(m_id)) return 0;
    return dk::RememberedText(m_id, L'F', key, value, [&](CString& text) {
        return ARX_DATA::CFGisXData::GetFrom(m_id, key, text);
    });
}

int CDKBJXDInfo::GetData(CStringArray& keys, CStringArray& values, CStringArray& appNames) const {
    values.RemoveAll();
    appNames.RemoveAll();
    if (!live(m_id)) return 0;
    int generation = CheckDKDataVer(m_id);
    if (keys.IsEmpty()) {
        if (generation != 1)
            return ARX_DATA::CFGisXData::GetAllXDatas(m_id, appNames, keys, values);
        dk::ReadListPairs(m_id, dk::APP_DKBJ, keys, values);
        for (INT_PTR i = 0; i < keys.GetSize(); ++i)
            appNames.Add(dk::APP_DKBJ);
        return static_cast<int>(keys.GetSize());
    }
    int found = 0;
    if (generation == 1) {
        CDKBJInfo legacy(m_id);
        for (const CString& key : keys) {
            CString value;
            bool ok = legacy.GetData(storedName(key, 1), value);
            values.Add(ok ? value : CString());
            appNames.Add(ok ? dk::APP_DKBJ : L"");
            found += ok ? 1 : 0;
        }
        return found;
    }
    // One read of the whole record serves every key.
    CStringArray apps, fields, stored;
    ARX_DATA::CFGisXData::GetAllXDatas(m_id, apps, fields, stored);
    for (const CString& key : keys) {
        int index = -1;
        fgdutil::StrArrFindStr(fields, storedName(key, generation), index);
        values.Add(index >= 0 ? stored[index] : CString());
        appNames.Add(index >= 0 ? apps[index] : CString());
        found += index >= 0 ? 1 : 0;
    }
    return found;
}

int CDKBJXDInfo::GetData(CStringArray& values, double& area, AcDbObjectIdArray& islands) const {
    if (!live(m_id)) return 0;
    CStringArray keys, appNames;
    for (const wchar_t* key : dk::BASIC_FIELDS)
        keys.Add(key);
    GetData(keys, values, appNames, area, islands);
    return 1;
}

int CDKBJXDInfo::GetData(CStringArray& keys, CStringArray& values, CStringArray& appNames,
                         double& area, AcDbObjectIdArray& islands) const {
    area = 0;
    islands.removeAll();
    int found = GetData(keys, values, appNames);
    if (!live(m_id)) return 0;
    GetArea(area);
    GetIsland(islands);
    return found;
}

// ---------------------------------------------------------------------- writing

int CDKBJXDInfo::SetData(const wchar_t* key, const wchar_t* value) {
    return SetData(key, value, L"");
}

int CDKBJXDInfo::SetData(const wchar_t* key, const wchar_t* value, const wchar_t* appName) {
    dk::ForgetRecords();
    if (!live(m_id) || key == nullptr) return 0;
    return ARX_DATA::CFGisXData::SetTo(m_id, keyOf(key, true), value ? value : L"",
                                       appName ? appName : L"");
}

int CDKBJXDInfo::SetAttrib(const CString& key, const CString& value) {
    return SetAttrib(key, value, CString());
}

int CDKBJXDInfo::SetAttrib(const CString& key, const CString& value, const CString& appName) {
    dk::ForgetRecords();
    if (!live(m_id)) return 0;
    return ARX_DATA::CFGisXData::SetTo(m_id, key, value, appName);
}

int CDKBJXDInfo::SetData(const CStringArray& keys, const CStringArray& values) {
    dk::ForgetRecords();
    if (!live(m_id)) return 0;
    CStringArray names;
    ARX_DATA::CFSimpleXData::GetAllAppNames(m_id, names);
    if (!carriesAny(names, {dk::FAPP_GHDK, dk::FAPP_GHDK_FG, dk::FAPP_GHDK_ZG, dk::FAPP_GHDK_TX,
                            dk::FAPP_GHDK_FJ, dk::FAPP_XZDK, dk::FAPP_GHDK_DX, dk::FAPP_XZDK_DX})) {
        CString code, name;
        CKovaAttribSet::FGetCurGHTypePara(code, name);
        CString app = dk::FAPP_GHDK;
        if (!code.IsEmpty() && code != L"KG") app += L"_" + code;
        if (!ARX_DATA::CFGisXData::SetTo(m_id, app, L"", typeLabelOf(code))) return 0;
    }
    return ARX_DATA::CFGisXData::SetTo(m_id, keys, values);
}

int CDKBJXDInfo::SetData(const CStringArray& keys, const CStringArray& values,
                         const AcDbObjectIdArray& islands) {
    if (!SetData(keys, values)) return 0;
    return SetIsland(islands);
}

int CDKBJXDInfo::SetXZData(const wchar_t* key, const wchar_t* value) {
    return SetXZData(key, value, L"");
}

int CDKBJXDInfo::SetXZData(const wchar_t* key, const wchar_t* value, const wchar_t* appName) {
    dk::ForgetRecords();
    if (!live(m_id) || key == nullptr) return 0;
    if (!mark(m_id, dk::FAPP_XZDK, dk::MARK_XZDK, false)) return 0;
    return ARX_DATA::CFGisXData::SetTo(m_id, key, value ? value : L"", appName ? appName : L"");
}

int CDKBJXDInfo::SetXZData(const CStringArray& keys, const CStringArray& values) {
    return SetXZData(keys, values, L"");
}

int CDKBJXDInfo::SetXZData(const CStringArray& keys, const CStringArray& values,
                           const wchar_t* appName) {
    dk::ForgetRecords();
    if (!live(m_id) || !mark(m_id, dk::FAPP_XZDK, dk::MARK_XZDK, false)) return 0;
    return writeFields(m_id, keys, values, appName);
}

int CDKBJXDInfo::SetDXKJData(const wchar_t* key, const wchar_t* value, const wchar_t* appName,
                             int planned) {
    dk::ForgetRecords();
    if (!live(m_id) || key == nullptr) return 0;
    if (!(planned ? mark(m_id, dk::FAPP_GHDK_DX, dk::MARK_GHDX, true)
                  : mark(m_id, dk::FAPP_XZDK_DX, dk::MARK_XZDX, true))) {
        return 0;
    }
    return ARX_DATA::CFGisXData::SetTo(m_id, key, value ? value : L"", appName ? appName : L"");
}

int CDKBJXDInfo::SetDXKJData(const CStringArray& keys, const CStringArray& values,
                             const wchar_t* appName, int planned) {
    dk::ForgetRecords();
    if (!live(m_id)) return 0;
    if (!(planned ? mark(m_id, dk::FAPP_GHDK_DX, dk::MARK_GHDX, true)
                  : mark(m_id, dk::FAPP_XZDK_DX, dk::MARK_XZDX, true))) {
        return 0;
    }
    return writeFields(m_id, keys, values, appName);
}

int CDKBJXDInfo::SetXZYDDKData(const CString& cls) {
    dk::ForgetRecords();
    if (!live(m_id)) return 0;
    return ARX_DATA::CFGisXData::SetTo(m_id, dk::FAPP_XZDK, cls, L"");
}

int CDKBJXDInfo::GetXZYDDKData(CString& cls) const {
    if (!live(m_id)) return 0;
    CString value;
    if (GetAttrib(dk::FAPP_XZDK, value) && !value.IsEmpty()) {
        cls = value;
        return 1;
    }
    return GetData(dk::FS_DKXZ, cls);
}

int CDKBJXDInfo::SetPTGJInfo(const CStringArray& facilities) {
    dk::ForgetRecords();
    if (!live(m_id) || facilities.IsEmpty()) return 0;
    return ARX_DATA::CFGisXData::SetTo(m_id, dk::FS_PTSS, facilities[0], L"");
}

int CDKBJXDInfo::GetPTGJInfo(CStringArray& facilities) const {
    if (!live(m_id)) return 0;
    CString text;
    if (!ARX_DATA::CFGisXData::GetFrom(m_id, dk::FS_PTSS, text) &&
        !ARX_DATA::CFGisXData::GetFrom(m_id, dk::LBL_PTGJ, text) &&
        !ARX_DATA::CFSimpleXData::GetFrom(m_id, dk::LBL_PTGJ, text)) {
        return 0;
    }
    CStringArray pieces;
    fgdutil::Str2StrArr(text, pieces, L"=");
    for (CString piece : pieces) {
        piece.Trim();
        if (!piece.IsEmpty()) facilities.Add(piece);
    }
    return 1;
}

int CDKBJXDInfo::SetIsland(const AcDbObjectIdArray& islands) {
    dk::ForgetRecords();
    if (!live(m_id)) return 0;
    CDKBJInfo links(m_id);
    return links.SetIsland(islands);
}

int CDKBJXDInfo::GetIsland(AcDbObjectIdArray& islands) const {
    if (!live(m_id)) return 0;
    return CDKBJInfo(m_id).GetIsland(islands);
}

// ---------------------------------------------------------------------- areas

int CDKBJXDInfo::FIsCalcArea() {
    double unused = 0;
    return dk::RememberedNumber(AcDbObjectId(), dk::PARAM_CALC_AREA, unused,
                                [](double&) { return projectSaysYes(dk::PARAM_CALC_AREA); });
}

int CDKBJXDInfo::FCutBoundaryCalcArea() {
    double unused = 0;
    return dk::RememberedNumber(AcDbObjectId(), dk::PARAM_CUT_BOUNDARY, unused,
                                [](double&) { return projectSaysYes(dk::PARAM_CUT_BOUNDARY); });
}

int CDKBJXDInfo::GetCalcArea(double& area) const {
    if (m_id.isNull()) return 0;
    return dk::RememberedNumber(m_id, L"GetCalcArea", area,
                                [&](double& hectares) { return calcArea(hectares); });
}

int CDKBJXDInfo::calcArea(double& area) const {
    double metres = 0;
    int result = kova::ent::GetArea(m_id, metres);
    AcDbObjectIdArray islands;
    GetIsland(islands);
    for (AcDbObjectId island : islands) {
        double hole = 0;
        if (kova::ent::GetArea(island, hole)) metres -= hole;
    }
    area = metres / 10000.0;
    return result;
}

int CDKBJXDInfo::entered(double& metres) const {
    CString value;
    if (!GetData(dk::FD_YDMJ, value)) return 0;
    metres = number(value);
    return metres > 1e-05 ? 1 : 0;
}

int CDKBJXDInfo::GetArea(double& area) const {
    if (m_id.isNull()) return 0;
    return dk::RememberedNumber(m_id, L"GetArea", area,
                                [&](double& hectares) { return recordArea(hectares); });
}

int CDKBJXDInfo::recordArea(double& area) const {
    if (FIsCalcArea()) return GetCalcArea(area);
    double metres = 0;
    if (!entered(metres)) return GetCalcArea(area);
    AcDbObjectIdArray islands;
    GetIsland(islands);
    for (AcDbObjectId island : islands) {
        CString value;
        if (CDKBJXDInfo(island).GetData(dk::FD_YDMJ, value)) metres -= number(value);
    }
    area = metres / 10000.0;
    return 1;
}

int CDKBJXDInfo::GetInputArea(double& area) const {
    if (m_id.isNull()) return 0;
    double metres = 0;
    if (!entered(metres)) return GetCalcArea(area);
    area = metres / 10000.0;
    return 1;
}

int CDKBJXDInfo::GetIndexArray(CStringArray& numbers) const {
    if (m_id.isNull()) return 0;
    AcDbObjectIdArray ids;
    GetDkbj(ids);
    for (AcDbObjectId id : ids) {
        CDKBJXDInfo parcel(id);
        CString value;
        parcel.GetData(dk::FS_DKBH, value);
        if (value.IsEmpty()) parcel.GetData(dk::LBL_DKBH, value);
        value.Trim();
        if (!value.IsEmpty()) dk::AppendNewString(numbers, value);
    }
    return static_cast<int>(numbers.GetSize());
}
