#pragma once
// The first-generation parcel record: a closed curve whose attributes are a flat list of
// strings alternating label and value under "地块边界" (planned) or "现状用地" (current
// status), plus a few labels kept as simple items of their own name. Drawings made with
// earlier releases still hold such parcels; CDKBJXDInfo hands their reads to this class
// so they keep working without conversion.
//
// Every member returns 0 at once when no entity is bound. Nothing is reported to the
// user; failures are the result 0.
#include "host/arx/dbmain.h"
#include "host/arx/gepnt3d.h"
#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"
#include "kplan/Export.h"

class KPLAN_API CDKBJInfo {
  public:
    CDKBJInfo() = default;
    explicit CDKBJInfo(AcDbObjectId id);
    CDKBJInfo(const CDKBJInfo&) = default;
    CDKBJInfo& operator=(const CDKBJInfo&) = default;
    virtual ~CDKBJInfo() = default;

    // Binds the entity when the id is valid and not erased; otherwise the binding stays
    // as it was and the result is 0.
    int SetObject(AcDbObjectId id);
    // The bound id; 0 when none is bound.
    int GetObjectW(AcDbObjectId& id) const;

    // 1 when the entity has data under "地块边界" or, failing that, "地块属性".
    int IsDkbj() const;
    // 1 when the simple item "现状用地" is present.
    int IsXZDkbj() const;

    // A field by its label: "停车位" and "户数" only from their simple items; any other
    // label from its simple item when there is one, else from the "地块边界" list.
    int GetData(const wchar_t* label, CString& value) const;
    // Writes into the "地块边界" list (SetXZData: "现状用地"): replaced in place, else
    // appended, so the list keeps the order of first writing. "停车位", "户数", "性质名称"
    // and "兼容性质" become simple items; "配套公建" goes to SetPTGJInfo.
    int SetData(const wchar_t* label, const wchar_t* value);
    int SetXZData(const wchar_t* label, const wchar_t* value);

    // Bulk forms over the fixed label order dk::LEGACY_FIELDS: values[i] belongs to the
    // i-th label (extra values are ignored, missing ones not written); the islands are
    // linked after the fields. 1 when every write succeeded.
    int SetData(const CStringArray& values, const AcDbObjectIdArray& islands);
    int SetXZData(const CStringArray& values, const AcDbObjectIdArray& islands);
    // Every label of the fixed order ("" when absent), GetArea and GetIsland.
    int GetData(CStringArray& values, double& area, AcDbObjectIdArray& islands) const;

    // The "地块边界" list alone, no simple items and no routing.
    int GetAttrib(const CString& label, CString& value) const;
    int SetAttrib(const CString& label, const CString& value);

    // The current-status class: "地块类别" of the "现状用地" list, else of GetData.
    int SetXZYDDKData(const CString& cls);
    int GetXZYDDKData(CString& cls) const;

    // Public facilities: the first element as the simple item "配套公建" (an empty list
    // is refused with 0). Reading takes that item, else the list's "配套公建", splits it
    // at "=" and appends the trimmed, non-empty pieces.
    int SetPTGJInfo(const CStringArray& facilities);
    int GetPTGJInfo(CStringArray& facilities) const;

    // Islands, linked to the parcel under "DKBJ_LINK_NLK"; read from the older link
    // "地块内轮廓" too. Reading appends the valid, live ids not yet listed, never the
    // parcel itself, and returns 1.
    int GetIsland(AcDbObjectIdArray& islands) const;
    int SetIsland(const AcDbObjectIdArray& islands);

    // Hectares. As the current record: the geometric area less the islands' when the
    // project counts computed areas or no area above 1e-5 m² was entered; otherwise the
    // entered "用地面积" less each island's entered one.
    int GetArea(double& area) const;

    // The distinct numbers ("地块编号", trimmed, non-empty) of the old parcels, appended
    // in drawing order.
    int GetIndexArray(CStringArray& numbers) const;

    // Scans of the whole drawing, model and paper space alike: curves carrying
    // "地块边界" or "地块属性" / polylines carrying "现状用地". Each id not yet in ids is
    // appended; the result is the length of ids.
    static int GetDkbj(AcDbObjectIdArray& ids);
    static int GetAllXZYD(AcDbObjectIdArray& ids);

    // The first old parcel whose trimmed number equals number; 1 when found.
    static int GetDkbj(const wchar_t* number, AcDbObjectId& id);
    // Every old parcel (or candidate) with that number, appended when valid, live and
    // new; the result is the length of ids.
    static int GetDkbj(const wchar_t* number, AcDbObjectIdArray& ids);
    static int GetDkbjByBH(const wchar_t* number, AcDbObjectIdArray& ids);
    static int GetDkbjByBH(const wchar_t* number, const AcDbObjectIdArray& candidates,
                           AcDbObjectIdArray& ids);
    // Old parcels (or candidates passing IsDkbj) whose trimmed class begins with cls.
    static int GetDkbjByClass(const wchar_t* cls, AcDbObjectIdArray& ids);
    static int GetDkbjByClass(const wchar_t* cls, const AcDbObjectIdArray& candidates,
                              AcDbObjectIdArray& ids);
    // Old current-status parcels (or candidates passing IsXZDkbj) by class prefix.
    static int GetXZYDByClass(const wchar_t* cls, AcDbObjectIdArray& ids);
    static int GetXZYDByClass(const wchar_t* cls, const AcDbObjectIdArray& candidates,
                              AcDbObjectIdArray& ids);

    // The old parcel / old current-status parcel whose outline holds the point (the
    // smallest when nested); 1 when found.
    static int GetDkbj(const AcGePoint3d& point, AcDbObjectId& id);
    static int GetXZYDBj(const AcGePoint3d& point, AcDbObjectId& id);

    // The distinct classes in order of first appearance, appended to classes; the result
    // is the length of classes.
    static int GetAllDkbjClass(CStringArray& classes);
    static int GetAllXZDkbjClass(CStringArray& classes);

  private:
    int read(const wchar_t* app, const wchar_t* label, CString& value) const;
    int write(const wchar_t* app, const wchar_t* label, const wchar_t* value);
    int setLabel(const wchar_t* app, const wchar_t* label, const wchar_t* value);
    int writeAll(const wchar_t* app, const CStringArray& values, const AcDbObjectIdArray& islands);

    AcDbObjectId m_id;
};
