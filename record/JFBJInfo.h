#pragma once
// The record of a block (街坊): a closed outline carrying a GIS record under "FAPP_GHJF"
// (older drawings: the item "街坊属性") with the block's number, leading use and totals:
// population, site, floor and green areas, facilities, design guidance, dates.
//
// Constructing from an id stamps the record: the outline becomes a block record whose
// type label is NAME of "FAPP_GHJF" in "FAppDataSet.ini", else "规划街坊" (fields it has
// are kept). SetObject binds without stamping, to look at an outline without changing it.
// Every member returns 0 at once when no entity is bound; nothing is reported to the user.
//
// Fields (CBoundaryRecord): single-field access maps the label "街坊编号" to "FS_JFBH" and
// takes anything else as the key; the bulk forms use the fixed labels "街坊编号", "主导属性",
// "居住人口", "用地面积", "建筑面积", "绿地面积", "配套设施", "设计导向", "更新时间",
// "设计时间", "备注", stored under the keys of dk::BLOCK_FIELDS.

#include "kplan/Export.h"
#include "record/BoundaryRecord.h"

class KPLAN_API CJFBJInfo : public CBoundaryRecord {
  public:
    CJFBJInfo();
    explicit CJFBJInfo(AcDbObjectId id);
    CJFBJInfo(const CJFBJInfo&) = default;
    CJFBJInfo& operator=(const CJFBJInfo&) = default;
    ~CJFBJInfo() override = default;

    // 1 when the simple item "FAPP_GHJF" or, failing that, "街坊属性" is present.
    int IsJfbj() const;
    // Hectares of the outline (shared with units).
    int GetArea(double& area) const;

    // Block outlines ("POLYLINE,LWPOLYLINE,CIRCLE" carrying "FAPP_GHJF,街坊属性") of the
    // whole drawing, model and paper space; ids replaced; their number.
    static int GetJFbj(AcDbObjectIdArray& ids);
    // The block whose outline holds the point (the smallest when nested); 1 when found.
    static int GetJFbj(const AcGePoint3d& point, AcDbObjectId& id);
    // Blocks among the candidates numbered so ("FS_JFBH", else "街坊编号"; trimmed),
    // appended when live and new; the length of ids.
    static int GetJFbjByBH(const CString& number, const AcDbObjectIdArray& candidates,
                           AcDbObjectIdArray& ids);
};
