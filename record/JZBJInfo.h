#pragma once
// The record of a building outline (建筑轮廓线): a closed outline carrying a GIS record
// under "FAPP_JZLKX" with the building's number "FS_JZBH", name "FS_JZMC", storeys
// "FN_JZCS", height "FD_JZGD" (metres), footprint "FD_JZZDMJ" and floor area "FD_JZMJ"
// (m²) and use "FS_JZXZ"; further keys ("FS_JZCG", "FS_JZJGXS", "FS_JZZT", "FN_JZQSC",
// "FN_JZZZC", "FD_JZDBG", "FD_MJXS") are read and written by key.
//
// Building outlines are not stamped when wrapped; the first write creates the record,
// with NAME of "FAPP_JZLKX" in "FAppDataSet.ini" (else "建筑轮廓线") as its type label.
// Single-field access and the bulk forms take the labels "建筑编号", "建筑名称",
// "建筑层数", "建筑高度", "建筑基底面积", "建筑面积", "建筑性质" (dk::BUILDING_FIELDS) as
// well as the keys. Every member returns 0 at once when no entity is bound.

#include "kplan/Export.h"
#include "record/BoundaryRecord.h"

class KPLAN_API CJZBJInfo : public CBoundaryRecord {
  public:
    CJZBJInfo();
    explicit CJZBJInfo(AcDbObjectId id);
    CJZBJInfo(const CJZBJInfo&) = default;
    CJZBJInfo& operator=(const CJZBJInfo&) = default;
    ~CJZBJInfo() override = default;

    // 1 when the simple item "FAPP_JZLKX" is present.
    int IsJZbj() const;
    // The footprint in hectares, as a parcel's area: the outline's geometric area when
    // the project counts computed areas (the default) or no footprint above 1e-5 m² was
    // entered; otherwise the entered "FD_JZZDMJ" / 10000.
    int GetArea(double& area) const;

    // Building outlines ("POLYLINE,LWPOLYLINE,CIRCLE" carrying "FAPP_JZLKX") of the whole
    // drawing, model and paper space; ids replaced; their number.
    static int GetJZbj(AcDbObjectIdArray& ids);
    // The building whose outline holds the point (the smallest when nested); 1 when found.
    static int GetJZbj(const AcGePoint3d& point, AcDbObjectId& id);
    // Buildings among the candidates numbered so ("FS_JZBH", else "建筑编号"; trimmed),
    // appended when live and new; the length of ids.
    static int GetJZbjByBH(const CString& number, const AcDbObjectIdArray& candidates,
                           AcDbObjectIdArray& ids);
};
