#include "record/DKBJInfo.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

#include "host/arx/acutads.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaDat.h"
#include "host/kova/KovaRegion.h"
#include "host/kova/fgdutil.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/DKScan.h"
#include "record/LabelList.h"

namespace {

bool live(AcDbObjectId id) {
    return id.isValid() && !id.isErased();
}

bool same(const wchar_t* a, const wchar_t* b) {
    return a != nullptr && b != nullptr && std::wcscmp(a, b) == 0;
}

// Labels an old parcel keeps as simple items of their own name.
bool isSimpleLabel(const wchar_t* label) {
    return same(label, dk::LBL_TCW) || same(label, dk::LBL_HS) || same(label, dk::LBL_XZMC) ||
           same(label, dk::LBL_JRXZ);
}

CString trimmed(CString text) {
    text.Trim();
    return text;
}

// The trimmed class of an old parcel; empty when it has none.
CString classOf(const CDKBJInfo& parcel) {
    CString cls;
    parcel.GetData(dk::LBL_DKLB, cls);
    return trimmed(cls);
}

CString numberOf(const CDKBJInfo& parcel) {
    CString number;
    parcel.GetData(dk::LBL_DKBH, number);
    return trimmed(number);
}

}  // namespace

CDKBJInfo::CDKBJInfo(AcDbObjectId id) {
    SetObject(id);
}

int CDKBJInfo::SetObject(AcDbObjectId id) {
    if (!live(id)) return 0;
    m_id = id;
    return 1;
}

int CDKBJInfo::GetObjectW(AcDbObjectId& id) const {
    if (m_id.isNull()) return 0;
    id = m_id;
    return 1;
}

int CDKBJInfo::IsDkbj() const {
    if (!live(m_id)) return 0;
    for (const wchar_t* app : {dk::APP_DKBJ, dk::APP_DKSX}) {
        resbuf* list = nullptr;
        int found = kova::dat::ReadObjXdata(m_id, app, list);
        acutRelRb(list);
        if (found) return 1;
    }
    return 0;
}

int CDKBJInfo::IsXZDkbj() const {
    CString value;
    return live(m_id) && ARX_DATA::CFSimpleXData::GetFrom(m_id, dk::APP_XZYD, value) ? 1 : 0;
}

int CDKBJInfo::read(const wchar_t* app, const wchar_t* label, CString& value) const {
    return dk::ReadListValue(m_id, app, label, value);
}

int CDKBJInfo::write(const wchar_t* app, const wchar_t* label, const wchar_t* value) {
    return dk::WriteListValue(m_id, app, label, value);
}

int CDKBJInfo::GetData(const wchar_t* label, CString& value) const {
    if (!live(m_id) || label == nullptr) return 0;
    if (same(label, dk::LBL_TCW) || same(label, dk::LBL_HS)) {
        return ARX_DATA::CFSimpleXData::GetFrom(m_id, label, value);
    }
    if (*label != 0 && ARX_DATA::CFSimpleXData::GetFrom(m_id, label, value)) return 1;
    return read(dk::APP_DKBJ, label, value);
}

int CDKBJInfo::SetData(const wchar_t* label, const wchar_t* value) {
    return setLabel(dk::APP_DKBJ, label, value);
}

int CDKBJInfo::SetXZData(const wchar_t* label, const wchar_t* value) {
    return setLabel(dk::APP_XZYD, label, value);
}

// Simple-item labels and the facilities go to their own places whatever the list.
int CDKBJInfo::setLabel(const wchar_t* app, const wchar_t* label, const wchar_t* value) {
    if (!live(m_id) || label == nullptr || *label == 0) return 0;
    if (isSimpleLabel(label)) {
        return ARX_DATA::CFSimpleXData::SetTo(m_id, label, value ? value : L"");
    }
    if (same(label, dk::LBL_PTGJ)) {
        CStringArray facilities;
        facilities.Add(value);
        return SetPTGJInfo(facilities);
    }
    return write(app, label, value);
}

int CDKBJInfo::writeAll(const wchar_t* app, const CStringArray& values,
                        const AcDbObjectIdArray& islands) {
    if (!live(m_id)) return 0;
    int ok = 1;
    INT_PTR n = std::min<INT_PTR>(values.GetSize(), std::size(dk::LEGACY_FIELDS));
    for (INT_PTR i = 0; i < n; ++i) {
        const wchar_t* label = dk::LEGACY_FIELDS[i];
        int written =
            same(app, dk::APP_XZYD) ? SetXZData(label, values[i]) : SetData(label, values[i]);
        if (!written) ok = 0;
    }
    if (!islands.isEmpty() && !SetIsland(islands)) ok = 0;
    return ok;
}

int CDKBJInfo::SetData(const CStringArray& values, const AcDbObjectIdArray& islands) {
    return writeAll(dk::APP_DKBJ, values, islands);
}

int CDKBJInfo::SetXZData(const CStringArray& values, const AcDbObjectIdArray& islands) {
    return writeAll(dk::APP_XZYD, values, islands);
}

int CDKBJInfo::GetData(CStringArray& values, double& area, AcDbObjectIdArray& islands) const {
    values.RemoveAll();
    islands.removeAll();
    area = 0;
    if (!live(m_id)) return 0;
    for (const wchar_t* label : dk::LEGACY_FIELDS) {
        CString value;
        GetData(label, value);
        values.Add(value);
    }
    GetArea(area);
    GetIsland(islands);
    return 1;
}

int CDKBJInfo::GetAttrib(const CString& label, CString& value) const {
    return read(dk::APP_DKBJ, label, value);
}

int CDKBJInfo::SetAttrib(const CString& label, const CString& value) {
    return write(dk::APP_DKBJ, label, value);
}

int CDKBJInfo::SetXZYDDKData(const CString& cls) {
    return write(dk::APP_XZYD, dk::LBL_DKLB, cls);
}

int CDKBJInfo::GetXZYDDKData(CString& cls) const {
    CString value;
    if (read(dk::APP_XZYD, dk::LBL_DKLB, value) && !value.IsEmpty()) {
        cls = value;
        return 1;
    }
    return GetData(dk::LBL_DKLB, cls);
}

int CDKBJInfo::SetPTGJInfo(const CStringArray& facilities) {
    if (!live(m_id) || facilities.IsEmpty()) return 0;
    return ARX_DATA::CFSimpleXData::SetTo(m_id, dk::LBL_PTGJ, facilities[0]);
}

int CDKBJInfo::GetPTGJInfo(CStringArray& facilities) const {
    if (!live(m_id)) return 0;
    CString text;
    if (!ARX_DATA::CFSimpleXData::GetFrom(m_id, dk::LBL_PTGJ, text) &&
        !read(dk::APP_DKBJ, dk::LBL_PTGJ, text)) {
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

int CDKBJInfo::GetIsland(AcDbObjectIdArray& islands) const {
    if (!live(m_id)) return 0;
    dk::IdAppender out(islands);
    for (const wchar_t* link : {dk::LINK_ISLAND_OLD, dk::LINK_ISLAND}) {
        AcDbObjectIdArray linked;
        kova::dat::qmGetIdFromDict(m_id, link, linked);
        for (AcDbObjectId island : linked) {
            if (island != m_id) out.add(island, true);
        }
    }
    return 1;
}

int CDKBJInfo::SetIsland(const AcDbObjectIdArray& islands) {
    if (!live(m_id)) return 0;
    int ok = 1;
    for (AcDbObjectId island : islands) {
        if (!kova::dat::PasteSoftId(m_id, dk::LINK_ISLAND, island)) ok = 0;
    }
    return ok;
}

int CDKBJInfo::GetArea(double& area) const {
    if (!live(m_id)) return 0;
    CDKBJXDInfo geometry(m_id);
    if (CDKBJXDInfo::FIsCalcArea()) return geometry.GetCalcArea(area);
    CString entered;
    double metres = GetData(dk::LBL_YDMJ, entered) ? std::wcstod(entered, nullptr) : 0.0;
    if (!(metres > 1e-05)) return geometry.GetCalcArea(area);
    AcDbObjectIdArray islands;
    GetIsland(islands);
    for (AcDbObjectId island : islands) {
        CString value;
        if (CDKBJInfo(island).GetData(dk::LBL_YDMJ, value)) metres -= std::wcstod(value, nullptr);
    }
    area = metres / 10000.0;
    return 1;
}

int CDKBJInfo::GetIndexArray(CStringArray& numbers) const {
    if (m_id.isNull()) return 0;
    AcDbObjectIdArray ids;
    GetDkbj(ids);
    for (AcDbObjectId id : ids) {
        CString number = numberOf(CDKBJInfo(id));
        if (!number.IsEmpty()) dk::AppendNewString(numbers, number);
    }
    return static_cast<int>(numbers.GetSize());
}

// ------------------------------------------------------------------------------ queries

int CDKBJInfo::GetDkbj(AcDbObjectIdArray& ids) {
    AcDbObjectIdArray found;
    dk::SelectParcels(dk::TYPES_LEGACY_PARCEL, dk::LIST_LEGACY_DK, false, found);
    dk::IdAppender out(ids);
    for (AcDbObjectId id : found)
        out.add(id);
    return ids.length();
}

int CDKBJInfo::GetAllXZYD(AcDbObjectIdArray& ids) {
    AcDbObjectIdArray found;
    dk::SelectParcels(dk::TYPES_LEGACY_XZYD, dk::APP_XZYD, false, found);
    dk::IdAppender out(ids);
    for (AcDbObjectId id : found)
        out.add(id);
    return ids.length();
}

int CDKBJInfo::GetDkbj(const wchar_t* number, AcDbObjectId& id) {
    if (number == nullptr) return 0;
    AcDbObjectIdArray ids;
    GetDkbj(ids);
    for (AcDbObjectId candidate : ids) {
        if (numberOf(CDKBJInfo(candidate)) == number) {
            id = candidate;
            return 1;
        }
    }
    return 0;
}

int CDKBJInfo::GetDkbj(const wchar_t* number, AcDbObjectIdArray& ids) {
    return GetDkbjByBH(number, ids);
}

int CDKBJInfo::GetDkbjByBH(const wchar_t* number, AcDbObjectIdArray& ids) {
    AcDbObjectIdArray candidates;
    GetDkbj(candidates);
    return GetDkbjByBH(number, candidates, ids);
}

int CDKBJInfo::GetDkbjByBH(const wchar_t* number, const AcDbObjectIdArray& candidates,
                           AcDbObjectIdArray& ids) {
    if (number == nullptr) return ids.length();
    dk::IdAppender out(ids);
    for (AcDbObjectId id : candidates) {
        if (live(id) && numberOf(CDKBJInfo(id)) == number) out.add(id, true);
    }
    return ids.length();
}

int CDKBJInfo::GetDkbjByClass(const wchar_t* cls, AcDbObjectIdArray& ids) {
    AcDbObjectIdArray candidates;
    GetDkbj(candidates);
    return GetDkbjByClass(cls, candidates, ids);
}

int CDKBJInfo::GetDkbjByClass(const wchar_t* cls, const AcDbObjectIdArray& candidates,
                              AcDbObjectIdArray& ids) {
    dk::IdAppender out(ids);
    for (AcDbObjectId id : candidates) {
        CDKBJInfo parcel(id);
        if (live(id) && parcel.IsDkbj() && dk::ClassBeginsWith(classOf(parcel), cls)) {
            out.add(id, true);
        }
    }
    return ids.length();
}

int CDKBJInfo::GetXZYDByClass(const wchar_t* cls, AcDbObjectIdArray& ids) {
    AcDbObjectIdArray candidates;
    GetAllXZYD(candidates);
    return GetXZYDByClass(cls, candidates, ids);
}

int CDKBJInfo::GetXZYDByClass(const wchar_t* cls, const AcDbObjectIdArray& candidates,
                              AcDbObjectIdArray& ids) {
    dk::IdAppender out(ids);
    for (AcDbObjectId id : candidates) {
        CDKBJInfo parcel(id);
        CString value;
        if (!live(id) || !parcel.IsXZDkbj() || !parcel.GetXZYDDKData(value)) continue;
        if (dk::ClassBeginsWith(trimmed(value), cls)) out.add(id, true);
    }
    return ids.length();
}

int CDKBJInfo::GetDkbj(const AcGePoint3d& point, AcDbObjectId& id) {
    AcDbObjectIdArray ids;
    GetDkbj(ids);
    return kova::ent::GetRegionEdgeId(point, ids, id);
}

int CDKBJInfo::GetXZYDBj(const AcGePoint3d& point, AcDbObjectId& id) {
    AcDbObjectIdArray ids;
    GetAllXZYD(ids);
    return kova::ent::GetRegionEdgeId(point, ids, id);
}

int CDKBJInfo::GetAllDkbjClass(CStringArray& classes) {
    AcDbObjectIdArray ids;
    GetDkbj(ids);
    for (AcDbObjectId id : ids) {
        CDKBJInfo parcel(id);
        if (!parcel.IsDkbj()) continue;
        CString cls = classOf(parcel);
        if (!cls.IsEmpty()) dk::AppendNewString(classes, cls);
    }
    return static_cast<int>(classes.GetSize());
}

int CDKBJInfo::GetAllXZDkbjClass(CStringArray& classes) {
    AcDbObjectIdArray ids;
    GetAllXZYD(ids);
    for (AcDbObjectId id : ids) {
        CDKBJInfo parcel(id);
        CString cls;
        if (!parcel.IsXZDkbj() || !parcel.GetXZYDDKData(cls)) continue;
        cls.Trim();
        if (!cls.IsEmpty()) dk::AppendNewString(classes, cls);
    }
    return static_cast<int>(classes.GetSize());
}
