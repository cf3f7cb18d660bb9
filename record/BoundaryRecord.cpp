#include "record/BoundaryRecord.h"

#include <cwchar>

#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaGeo.h"
#include "host/kova/KovaRegion.h"
#include "host/kova/fgdutil.h"
#include "record/DKBJXDInfo.h"
#include "record/DKScan.h"
#include "record/XDataAccess.h"

namespace dk {

namespace {

bool live(AcDbObjectId id) {
    return id.isValid() && !id.isErased();
}

bool same(const wchar_t* a, const wchar_t* b) {
    return a != nullptr && b != nullptr && std::wcscmp(a, b) == 0;
}

// The centroid of the polygon through the outline's vertices (arcs taken as chords);
// the mean of the vertices for a degenerate one.
AcGePoint3d centroidOf(const AcGePoint3dArray& points) {
    double area2 = 0, cx = 0, cy = 0, mx = 0, my = 0;
    int n = points.length();
    for (int i = 0; i < n; ++i) {
        const AcGePoint3d& a = points[i];
        const AcGePoint3d& b = points[(i + 1) % n];
        // Relative to the first vertex, so that projected coordinates keep their digits.
        double ax = a.x - points[0].x, ay = a.y - points[0].y;
        double bx = b.x - points[0].x, by = b.y - points[0].y;
        double cross = ax * by - bx * ay;
        area2 += cross;
        cx += (ax + bx) * cross;
        cy += (ay + by) * cross;
        mx += ax;
        my += ay;
    }
    if (n == 0) return AcGePoint3d();
    if (area2 == 0) return AcGePoint3d(points[0].x + mx / n, points[0].y + my / n, 0);
    return AcGePoint3d(points[0].x + cx / (3 * area2), points[0].y + cy / (3 * area2), 0);
}

}  // namespace

int CarriesItem(AcDbObjectId id, const wchar_t* app, const wchar_t* oldApp) {
    if (!live(id)) return 0;
    CString value;
    if (ARX_DATA::CFSimpleXData::GetFrom(id, app, value)) return 1;
    return oldApp != nullptr && ARX_DATA::CFSimpleXData::GetFrom(id, oldApp, value) ? 1 : 0;
}

int StampRecord(AcDbObjectId id, const wchar_t* app, const wchar_t* fallback) {
    if (!live(id)) return 0;
    CString label;
    if (!FGetValueFromFieldName(app, L"NAME", label) || label.IsEmpty()) label = fallback;
    return ARX_DATA::CFGisXData::SetTo(id, app, L"", label);
}

const wchar_t* KeyOfLabel(LabelTable table, const wchar_t* label) {
    for (const LabelKey& entry : table) {
        if (same(label, entry.label)) return entry.key;
    }
    return label;
}

int ReadLabelled(AcDbObjectId id, LabelTable table, CStringArray& labels, CStringArray& values) {
    labels.RemoveAll();
    values.RemoveAll();
    if (!live(id)) return 0;
    // One read of the record serves every label.
    CStringArray apps, fields, stored;
    ARX_DATA::CFGisXData::GetAllXDatas(id, apps, fields, stored);
    int found = 0;
    for (const LabelKey& entry : table) {
        int index = -1;
        if (!fgdutil::StrArrFindStr(fields, entry.key, index)) {
            fgdutil::StrArrFindStr(fields, entry.label, index);
        }
        labels.Add(entry.label);
        values.Add(index >= 0 ? stored[index] : CString());
        found += index >= 0 ? 1 : 0;
    }
    return found;
}

int WriteLabelled(AcDbObjectId id, LabelTable table, const CStringArray& labels,
                  const CStringArray& values, const CStringArray* appNames) {
    if (!live(id) || labels.GetSize() != values.GetSize()) return 0;
    CStringArray keys;
    for (const CString& label : labels)
        keys.Add(KeyOfLabel(table, label));
    if (appNames == nullptr) return ARX_DATA::CFGisXData::SetTo(id, keys, values);
    return ARX_DATA::CFGisXData::SetTo(id, *appNames, keys, values);
}

int OutlineArea(AcDbObjectId id, double& area) {
    if (!live(id)) return 0;
    double metres = 0;
    int result = kova::ent::GetArea(id, metres);
    area = metres / 10000.0;
    return result;
}

int SelectOutlines(const wchar_t* apps, AcDbObjectIdArray& ids) {
    return SelectParcels(TYPES_LEGACY_PARCEL, apps, false, ids);
}

int OutlineAt(const wchar_t* apps, const AcGePoint3d& point, AcDbObjectId& id) {
    AcDbObjectIdArray ids;
    SelectOutlines(apps, ids);
    return kova::ent::GetRegionEdgeId(point, ids, id);
}

int SelectByNumber(const wchar_t* key, const wchar_t* label, const CString& number,
                   const AcDbObjectIdArray& candidates, AcDbObjectIdArray& ids) {
    IdAppender out(ids);
    for (AcDbObjectId id : candidates) {
        if (!live(id)) continue;
        CString value;
        if (!ARX_DATA::CFGisXData::GetFrom(id, key, value)) {
            ARX_DATA::CFGisXData::GetFrom(id, label, value);
        }
        value.Trim();
        if (value == number) out.add(id, true);
    }
    return ids.length();
}

int EnclosedParcels(AcDbObjectId outline, AcDbObjectIdArray& parcels) {
    AcGePoint3dArray points;
    AcGeDoubleArray bulges;
    if (!live(outline) || !kova::ent::GetCurveParam(outline, points, bulges)) return 0;
    AcDbObjectIdArray planned;
    CDKBJXDInfo::GetDkbj(planned);
    IdAppender out(parcels);
    int found = 0;
    for (AcDbObjectId parcel : planned) {
        AcGePoint3dArray vertices;
        if (parcel == outline || !kova::ent::GetCurveParam(parcel, &vertices, nullptr)) continue;
        if (kova::geo::IsPtInArea(centroidOf(vertices), points, bulges) && out.add(parcel)) {
            ++found;
        }
    }
    return found;
}

}  // namespace dk

// ------------------------------------------------------------------ CBoundaryRecord

int CBoundaryRecord::SetObject(AcDbObjectId id) {
    if (!dk::live(id)) return 0;
    m_id = id;
    return 1;
}

int CBoundaryRecord::GetObjectW(AcDbObjectId& id) const {
    if (m_id.isNull()) return 0;
    id = m_id;
    return 1;
}

int CBoundaryRecord::stamp() {
    return dk::StampRecord(m_id, kind_->app, kind_->typeLabel);
}

int CBoundaryRecord::ensureRecord() {
    if (!kind_->createOnWrite) return 1;
    CString head;
    if (ARX_DATA::CFSimpleXData::GetFrom(m_id, kind_->app, head)) return 1;
    return stamp();
}

int CBoundaryRecord::GetData(const wchar_t* label, CString& value) const {
    if (!dk::live(m_id) || label == nullptr) return 0;
    const wchar_t* key = dk::KeyOfLabel(kind_->fields.first(kind_->mappedLabels), label);
    return ARX_DATA::CFGisXData::GetFrom(m_id, key, value);
}

int CBoundaryRecord::SetData(const wchar_t* label, const wchar_t* value) {
    return SetData(label, value, L"");
}

int CBoundaryRecord::SetData(const wchar_t* label, const wchar_t* value, const wchar_t* appName) {
    if (!dk::live(m_id) || label == nullptr || !ensureRecord()) return 0;
    const wchar_t* key = dk::KeyOfLabel(kind_->fields.first(kind_->mappedLabels), label);
    return ARX_DATA::CFGisXData::SetTo(m_id, key, value ? value : L"", appName ? appName : L"");
}

int CBoundaryRecord::GetData(CStringArray& labels, CStringArray& values) const {
    return dk::ReadLabelled(m_id, kind_->fields, labels, values);
}

int CBoundaryRecord::SetData(const CStringArray& labels, const CStringArray& values) {
    if (!dk::live(m_id) || !ensureRecord()) return 0;
    return dk::WriteLabelled(m_id, kind_->fields, labels, values, nullptr);
}

int CBoundaryRecord::SetData(const CStringArray& labels, const CStringArray& values,
                             const CStringArray& appNames) {
    if (!dk::live(m_id) || !ensureRecord()) return 0;
    return dk::WriteLabelled(m_id, kind_->fields, labels, values, &appNames);
}

int CBoundaryRecord::GetDkbj(AcDbObjectIdArray& parcels) const {
    return dk::EnclosedParcels(m_id, parcels);
}
