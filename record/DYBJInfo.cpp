#include "record/DYBJInfo.h"

namespace {

const wchar_t* const kUnitApps = L"FAPP_GHDY,单元属性";

const CBoundaryRecord::Kind kUnit = {dk::FAPP_GHDY, dk::APP_DYSX, dk::TYPE_GHDY, dk::UNIT_FIELDS, 1,
                                     false};

}  // namespace

CDYBJInfo::CDYBJInfo() : CBoundaryRecord(kUnit) {}

CDYBJInfo::CDYBJInfo(AcDbObjectId id) : CBoundaryRecord(kUnit) {
    if (SetObject(id)) stamp();
}

int CDYBJInfo::IsDybj() const {
    return dk::CarriesItem(m_id, dk::FAPP_GHDY, dk::APP_DYSX);
}

int CDYBJInfo::GetArea(double& area) const {
    return dk::OutlineArea(m_id, area);
}

int CDYBJInfo::GetDYbj(AcDbObjectIdArray& ids) {
    return dk::SelectOutlines(kUnitApps, ids);
}

int CDYBJInfo::GetDYbj(const AcGePoint3d& point, AcDbObjectId& id) {
    return dk::OutlineAt(kUnitApps, point, id);
}

int CDYBJInfo::GetDYbjByBH(const CString& number, const AcDbObjectIdArray& candidates,
                           AcDbObjectIdArray& ids) {
    return dk::SelectByNumber(dk::FS_DYBH, dk::UNIT_FIELDS[0].label, number, candidates, ids);
}
