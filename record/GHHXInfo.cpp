#include "record/GHHXInfo.h"

#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/kova/KovaDat.h"
#include "host/kova/KovaEnt.h"
#include "record/DKKeys.h"
#include "record/LabelList.h"

int CGHHXInfo::GetData(const CString& label, CString& value) const {
    if (m_id.isNull()) return 0;
    return dk::ReadListValue(m_id, dk::APP_GHHX, label, value);
}

int CGHHXInfo::SetData(const CString& label, const CString& value) {
    if (m_id.isNull() || label.IsEmpty()) return 0;
    resbuf* list = nullptr;
    kova::dat::ReadObjXdata(m_id, dk::APP_GHHX, list);
    CString existing;
    bool hasPairs = list != nullptr && list->rbnext != nullptr;
    bool hasLabel = hasPairs && kova::dat::GetRbString(list, label, existing);
    acutRelRb(list);
    resbuf* pair = acutBuildList(1000, static_cast<const wchar_t*>(label), 1000,
                                 static_cast<const wchar_t*>(value), 0);
    // A label already there rewrites the whole list: the record keeps its kind alone.
    int ok = hasPairs && !hasLabel ? kova::dat::PasteObjXdata(m_id, dk::APP_GHHX, pair)
                                   : kova::dat::AddObjXdata(m_id, dk::APP_GHHX, pair);
    acutRelRb(pair);
    return ok;
}

int CGHHXInfo::IsGhhx(const CString& kind) const {
    CString value;
    return GetData(dk::LBL_GHLX, value) && value == kind ? 1 : 0;
}

int CGHHXInfo::GetGhhx(const CString& kind, AcDbObjectIdArray& ids) {
    resbuf* filter = acutBuildList(-4, L"<AND", 1001, dk::APP_GHHX, -4, L"AND>", 0);
    ads_name ss = {0, 0};
    AcDbObjectIdArray found;
    if (acedSSGet(L"X", nullptr, nullptr, filter, ss) == RTNORM) {
        kova::ent::SSToIds(ss, found);
        acedSSFree(ss);
    }
    acutRelRb(filter);
    for (AcDbObjectId id : found) {
        if (kind == dk::GHHX_ALL || CGHHXInfo(id).IsGhhx(kind)) ids.append(id);
    }
    return ids.length();
}

int kova_dk_IsGhhx(AcDbObjectId id, const CString& kind) {
    if (id.isNull()) return 0;
    return CGHHXInfo(id).IsGhhx(kind);
}
