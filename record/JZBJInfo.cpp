#include "record/JZBJInfo.h"

#include <cwchar>
#include <iterator>

#include "record/DKBJXDInfo.h"

namespace {

const CBoundaryRecord::Kind kBuilding = {dk::FAPP_JZLKX,
                                         nullptr,
                                         dk::TYPE_JZLKX,
                                         dk::BUILDING_FIELDS,
                                         std::size(dk::BUILDING_FIELDS),
                                         true};

}  // namespace

CJZBJInfo::CJZBJInfo() : CBoundaryRecord(kBuilding) {}

CJZBJInfo::CJZBJInfo(AcDbObjectId id) : CBoundaryRecord(kBuilding) {
    SetObject(id);
}

int CJZBJInfo::IsJZbj() const {
    return dk::CarriesItem(m_id, dk::FAPP_JZLKX, nullptr);
}

int CJZBJInfo::GetArea(double& area) const {
    if (m_id.isNull()) return 0;
    CString entered;
    double metres = GetData(dk::FD_JZZDMJ, entered) ? std::wcstod(entered, nullptr) : 0.0;
    if (CDKBJXDInfo::FIsCalcArea() || !(metres > 1e-05)) return dk::OutlineArea(m_id, area);
    area = metres / 10000.0;
    return 1;
}

int CJZBJInfo::GetJZbj(AcDbObjectIdArray& ids) {
    return dk::SelectOutlines(dk::FAPP_JZLKX, ids);
}

int CJZBJInfo::GetJZbj(const AcGePoint3d& point, AcDbObjectId& id) {
    return dk::OutlineAt(dk::FAPP_JZLKX, point, id);
}

int CJZBJInfo::GetJZbjByBH(const CString& number, const AcDbObjectIdArray& candidates,
                           AcDbObjectIdArray& ids) {
    return dk::SelectByNumber(dk::FS_JZBH, dk::BUILDING_FIELDS[0].label, number, candidates, ids);
}
