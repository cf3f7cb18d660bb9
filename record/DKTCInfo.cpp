#include "record/DKTCInfo.h"

#include "host/arx/acutads.h"
#include "host/arx/dbhatch.h"
#include "host/kova/KovaDat.h"
#include "host/kova/KovaGeo.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/DKScan.h"
#include "record/LabelList.h"

namespace {

bool live(AcDbObjectId id) {
    return id.isValid() && !id.isErased();
}

CString trimmedValue(const CDKTCInfo& hatch, const wchar_t* label) {
    CString value;
    hatch.GetData(label, value);
    value.Trim();
    return value;
}

// The candidates whose trimmed value of the label equals wanted.
int keepWhere(const wchar_t* label, const wchar_t* wanted, const AcDbObjectIdArray& candidates,
              AcDbObjectIdArray& ids) {
    ids.removeAll();
    if (wanted == nullptr) return 0;
    dk::IdAppender out(ids);
    for (AcDbObjectId id : candidates) {
        CDKTCInfo hatch(id);
        if (live(id) && trimmedValue(hatch, label) == wanted) out.add(id, true);
    }
    return ids.length();
}

// The filled area of a hatch that holds the point: its outer loop's area, or 0 when the
// point is outside it or inside one of its holes (and for anything not a hatch).
double areaHolding(AcDbObjectId id, const AcGePoint3d& point) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) return 0;
    double outer = 0;
    bool inHole = false;
    if (AcDbHatch* hatch = AcDbHatch::cast(entity)) {
        for (int i = 0; i < hatch->numLoops(); ++i) {
            Adesk::Int32 type = 0;
            AcGePoint2dArray vertices;
            AcGeDoubleArray bulges;
            if (hatch->getLoopAt(i, type, vertices, bulges) != Acad::eOk) continue;
            AcGePoint3dArray points;
            for (const AcGePoint2d& v : vertices)
                points.append(AcGePoint3d(v.x, v.y, 0));
            if (!kova::geo::IsPtInArea(point, points, bulges)) continue;
            // The first loop stands for the outer one when no loop is marked so.
            if ((type & (AcDbHatch::kExternal | AcDbHatch::kOutermost)) != 0 || i == 0) {
                outer = kova::geo::GetPolyArea(points, bulges);
            } else {
                inHole = true;
            }
        }
    }
    entity->close();
    return inHole ? 0 : outer;
}

}  // namespace

CDKTCInfo::CDKTCInfo(AcDbObjectId id) {
    SetObject(id);
}

int CDKTCInfo::SetObject(AcDbObjectId id) {
    if (!live(id)) return 0;
    m_id = id;
    return 1;
}

int CDKTCInfo::GetObjectW(AcDbObjectId& id) const {
    if (m_id.isNull()) return 0;
    id = m_id;
    return 1;
}

int CDKTCInfo::IsDktc() const {
    if (!live(m_id)) return 0;
    resbuf* list = nullptr;
    int found = kova::dat::ReadObjXdata(m_id, dk::FAPP_DKTC, list);
    acutRelRb(list);
    return found ? 1 : 0;
}

int CDKTCInfo::IsDksktc() const {
    if (!live(m_id)) return 0;
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, m_id, AcDb::kForRead) != Acad::eOk) return 0;
    AcDbHatch* hatch = AcDbHatch::cast(entity);
    int solid = hatch != nullptr && CString(hatch->patternName()).CompareNoCase(L"SOLID") == 0;
    entity->close();
    return solid;
}

int CDKTCInfo::GetData(const wchar_t* label, CString& value) const {
    if (!live(m_id) || label == nullptr) return 0;
    return dk::ReadListValue(m_id, dk::FAPP_DKTC, label, value) ||
                   dk::ReadListValue(m_id, dk::APP_DKTC_OLD, label, value)
               ? 1
               : 0;
}

int CDKTCInfo::SetData(const wchar_t* label, const wchar_t* value) {
    if (!live(m_id)) return 0;
    return dk::WriteListValue(m_id, dk::FAPP_DKTC, label, value);
}

int CDKTCInfo::GetData(CStringArray& labels, CStringArray& values) const {
    if (!live(m_id)) return 0;
    if (dk::ReadListPairs(m_id, dk::FAPP_DKTC, labels, values)) {
        return static_cast<int>(labels.GetSize());
    }
    return dk::ReadListPairs(m_id, dk::APP_DKTC_OLD, labels, values);
}

int CDKTCInfo::SetData(const CStringArray& labels, const CStringArray& values) {
    if (!live(m_id)) return 0;
    return dk::WriteListPairs(m_id, dk::FAPP_DKTC, labels, values);
}

int CDKTCInfo::GetDkbj(AcDbObjectId& parcel) const {
    if (!live(m_id)) return 0;
    CString number = trimmedValue(*this, dk::LBL_DKBH);
    return !number.IsEmpty() && CDKBJXDInfo::GetDkbj(number, parcel) ? 1 : 0;
}

int CDKTCInfo::GetDktc(AcDbObjectIdArray& ids) {
    return dk::SelectParcels(dk::TYPES_HATCH, dk::LIST_DKTC, true, ids);
}

int CDKTCInfo::GetDktc(AcDbObjectIdArray& ids, const wchar_t* number) {
    AcDbObjectIdArray candidates;
    GetDktc(candidates);
    return keepWhere(dk::LBL_DKBH, number, candidates, ids);
}

int CDKTCInfo::GetDktc(const wchar_t* cls, AcDbObjectIdArray& ids) {
    AcDbObjectIdArray candidates;
    GetDktc(candidates);
    return keepWhere(dk::LBL_DKLB, cls, candidates, ids);
}

int CDKTCInfo::GetDktc(const wchar_t* cls, AcDbObjectIdArray& ids,
                       const AcDbObjectIdArray& candidates) {
    return keepWhere(dk::LBL_DKLB, cls, candidates, ids);
}

int CDKTCInfo::GetDktc(const AcGePoint3d& point, AcDbObjectId& id) {
    AcDbObjectIdArray ids;
    GetDktc(ids);
    double best = 0;
    for (AcDbObjectId candidate : ids) {
        double area = areaHolding(candidate, point);
        if (area > 0 && (best == 0 || area < best)) {
            best = area;
            id = candidate;
        }
    }
    return best > 0 ? 1 : 0;
}
