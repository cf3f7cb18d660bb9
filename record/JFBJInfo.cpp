#include "record/JFBJInfo.h"

namespace {

const wchar_t* const kBlockApps = L"FAPP_GHJF,街坊属性";

const CBoundaryRecord::Kind kBlock = {
    dk::FAPP_GHJF, dk::APP_JFSX, dk::TYPE_GHJF, dk::BLOCK_FIELDS, 1, false};

}  // namespace

CJFBJInfo::CJFBJInfo() : CBoundaryRecord(kBlock) {}

CJFBJInfo::CJFBJInfo(AcDbObjectId id) : CBoundaryRecord(kBlock) {
    if (SetObject(id)) stamp();
}

int CJFBJInfo::IsJfbj() const {
    return dk::CarriesItem(m_id, dk::FAPP_GHJF, dk::APP_JFSX);
}

int CJFBJInfo::GetArea(double& area) const {
    return dk::OutlineArea(m_id, area);
}

int CJFBJInfo::GetJFbj(AcDbObjectIdArray& ids) {
    return dk::SelectOutlines(kBlockApps, ids);
}

int CJFBJInfo::GetJFbj(const AcGePoint3d& point, AcDbObjectId& id) {
    return dk::OutlineAt(kBlockApps, point, id);
}

int CJFBJInfo::GetJFbjByBH(const CString& number, const AcDbObjectIdArray& candidates,
                           AcDbObjectIdArray& ids) {
    return dk::SelectByNumber(dk::FS_JFBH, dk::BLOCK_FIELDS[0].label, number, candidates, ids);
}
