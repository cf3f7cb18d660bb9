#pragma once
// The record of a planning unit (单元): a closed outline carrying a GIS record under
// "FAPP_GHDY" (older drawings: the item "单元属性") with the unit's number and indicators:
// population, average floor-area ratio and green ratio, building capacity, facilities,
// approval, dates.
//
// Constructing from an id stamps the record: the outline becomes a unit record whose type
// label is NAME of "FAPP_GHDY" in "FAppDataSet.ini", else "规划单元" (fields it has are
// kept). SetObject binds without stamping, to look at an outline without changing it.
// Every member returns 0 at once when no entity is bound; nothing is reported to the user.
//
// Fields (CBoundaryRecord): single-field access maps the label "单元编号" to "FS_DYBH" and
// takes anything else as the key; the bulk forms use the fixed labels "单元编号", "居住人口",
// "平均容积率", "平均绿地率", "建筑容量", "配套设施", "批准文号", "更新时间", "设计时间",
// "备注", stored under the keys of dk::UNIT_FIELDS.

#include "kplan/Export.h"
#include "record/BoundaryRecord.h"

class KPLAN_API CDYBJInfo : public CBoundaryRecord {
  public:
    CDYBJInfo();
    explicit CDYBJInfo(AcDbObjectId id);
    CDYBJInfo(const CDYBJInfo&) = default;
    CDYBJInfo& operator=(const CDYBJInfo&) = default;
    ~CDYBJInfo() override = default;

    // 1 when the simple item "FAPP_GHDY" or, failing that, "单元属性" is present.
    int IsDybj() const;
    // Hectares of the outline (shared with blocks).
    int GetArea(double& area) const;

    // Unit outlines ("POLYLINE,LWPOLYLINE,CIRCLE" carrying "FAPP_GHDY,单元属性") of the
    // whole drawing, model and paper space; ids replaced; their number.
    static int GetDYbj(AcDbObjectIdArray& ids);
    // The unit whose outline holds the point (the smallest when nested); 1 when found.
    static int GetDYbj(const AcGePoint3d& point, AcDbObjectId& id);
    // Units among the candidates numbered so ("FS_DYBH", else "单元编号"; trimmed),
    // appended when live and new; the length of ids.
    static int GetDYbjByBH(const CString& number, const AcDbObjectIdArray& candidates,
                           AcDbObjectIdArray& ids);
};
