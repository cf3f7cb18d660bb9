#pragma once
// The record of a parcel hatch: a hatch (or solid) filling a parcel, whose xdata under
// "FAPP_DKTC" (older drawings: "地块填充") is a label / value list naming the parcel it
// fills: "地块编号" and "地块类别". Lists are read and written as first-generation parcels
// are: a label written again is replaced in place, a new one appended.
//
// Every member returns 0 at once when no entity is bound; nothing is reported to the user.
#include "host/arx/dbmain.h"
#include "host/arx/gepnt3d.h"
#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"
#include "kplan/Export.h"

class KPLAN_API CDKTCInfo {
  public:
    CDKTCInfo() = default;
    explicit CDKTCInfo(AcDbObjectId id);
    CDKTCInfo(const CDKTCInfo&) = default;
    CDKTCInfo& operator=(const CDKTCInfo&) = default;
    virtual ~CDKTCInfo() = default;

    // Binds the entity when the id is valid and not erased; otherwise the binding stays
    // as it was and the result is 0.
    int SetObject(AcDbObjectId id);
    // The bound id; 0 when none is bound.
    int GetObjectW(AcDbObjectId& id) const;

    // 1 when the entity has xdata under "FAPP_DKTC".
    int IsDktc() const;
    // 1 when the entity is a hatch whose pattern is "SOLID", case ignored.
    int IsDksktc() const;

    // The value of a label: from the "FAPP_DKTC" list, else from an older "地块填充" one.
    int GetData(const wchar_t* label, CString& value) const;
    // Writes the pair into the "FAPP_DKTC" list.
    int SetData(const wchar_t* label, const wchar_t* value);
    // Every pair of the list in order ("FAPP_DKTC", else "地块填充"); their number.
    int GetData(CStringArray& labels, CStringArray& values) const;
    // Writes the pairs as the one-pair form would in turn, in one write; 0, and nothing
    // written, when the lists differ in length.
    int SetData(const CStringArray& labels, const CStringArray& values);

    // The planned parcel the hatch fills: the first one whose number is the hatch's
    // "地块编号"; 1 when found.
    int GetDkbj(AcDbObjectId& parcel) const;

    // Hatches and solids of the current space carrying "FAPP_DKTC" or "地块填充"; ids
    // replaced; their number.
    static int GetDktc(AcDbObjectIdArray& ids);
    // Those whose trimmed "地块编号" equals the number.
    static int GetDktc(AcDbObjectIdArray& ids, const wchar_t* number);
    // Those (or the hatch records among the candidates) whose trimmed "地块类别" equals the
    // class; ids replaced.
    static int GetDktc(const wchar_t* cls, AcDbObjectIdArray& ids);
    static int GetDktc(const wchar_t* cls, AcDbObjectIdArray& ids,
                       const AcDbObjectIdArray& candidates);
    // The hatch record of the current space whose outer loop holds the point and none of
    // whose inner loops does (the smallest when several do); 1 when found.
    static int GetDktc(const AcGePoint3d& point, AcDbObjectId& id);

  private:
    AcDbObjectId m_id;
};
