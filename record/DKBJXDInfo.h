#pragma once
// The record of one land parcel: a closed boundary curve whose attributes live in a GIS
// record under an application name that tells its kind ("FAPP_GHDK" planned,
// "FAPP_XZDK" current status, "FAPP_GHDK_DX" / "FAPP_XZDK_DX" underground). Reads
// accept all three record generations and both keys and labels; writes go to the
// current generation only. The static members find parcels in the current drawing.
//
// Every member returns 0 at once when no entity is bound. Nothing is reported to the
// user and nothing is thrown; failures are the result 0.
#include "host/arx/dbmain.h"
#include "host/arx/gepnt3d.h"
#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"
#include "kplan/Export.h"

class KPLAN_API CDKBJXDInfo {
  public:
    CDKBJXDInfo() = default;
    explicit CDKBJXDInfo(AcDbObjectId id);
    CDKBJXDInfo(const CDKBJXDInfo&) = default;
    CDKBJXDInfo& operator=(const CDKBJXDInfo&) = default;
    virtual ~CDKBJXDInfo() = default;

    // Binds the entity when the id is valid and not erased; otherwise the binding stays
    // as it was and the result is 0.
    int SetObject(AcDbObjectId id);
    // The bound id; 0 when none is bound.
    int GetObjectW(AcDbObjectId& id) const;

    // ---------------------------------------------------------------- kind tests
    // A planned parcel: "FAPP_GHDK", "_FG", "_ZG", "_TX", "地块属性" or "地块边界"
    // ("FAPP_GHDK_FJ" does not count).
    int IsDkbj() const;
    // The simple items "FAPP_XZDK", "FAPP_GHDK_DX", "FAPP_XZDK_DX".
    int IsXZDkbj() const;
    int IsGHDxkj() const;
    int IsXZDxkj() const;

    // ---------------------------------------------------------------- reading
    // One field by key or label, from whichever generation the curve carries. The
    // generation form skips asking for it (1, 2 or 3; anything else reads the key as is).
    int GetData(const wchar_t* key, CString& value) const;
    int GetData(int generation, const wchar_t* key, CString& value) const;
    // The current record's field, no label mapping.
    int GetAttrib(const CString& key, CString& value) const;

    // Several fields with one read of the curve's data. With keys given (keys or labels),
    // values[i] and appNames[i] are the value of keys[i] and the record holding it ("" and
    // "" when absent); the result is the number found. With keys empty, all three are
    // filled with every field of the record (a first-generation list gives its labels,
    // with "地块边界" as the record); the result is the number of fields.
    int GetData(CStringArray& keys, CStringArray& values, CStringArray& appNames) const;
    // The basic fields in their fixed order (dk::BASIC_FIELDS, "" when absent) with
    // GetArea and GetIsland.
    int GetData(CStringArray& values, double& area, AcDbObjectIdArray& islands) const;
    // The keyed form above with GetArea and GetIsland.
    int GetData(CStringArray& keys, CStringArray& values, CStringArray& appNames, double& area,
                AcDbObjectIdArray& islands) const;

    // ---------------------------------------------------------------- writing
    // One field after label mapping ("面积" is taken for "FD_YDMJ" here too); appName ""
    // means the curve's existing record. Old parcels get a current field added.
    int SetData(const wchar_t* key, const wchar_t* value);
    int SetData(const wchar_t* key, const wchar_t* value, const wchar_t* appName);
    // The same without label mapping.
    int SetAttrib(const CString& key, const CString& value);
    int SetAttrib(const CString& key, const CString& value, const CString& appName);
    // Creates the planned record of the current planning type when the curve carries no
    // parcel record yet, then writes every pair as given (no label mapping) in one write;
    // the island form links the islands afterwards.
    int SetData(const CStringArray& keys, const CStringArray& values);
    int SetData(const CStringArray& keys, const CStringArray& values,
                const AcDbObjectIdArray& islands);
    // Marks the curve a current-status parcel ("FAPP_XZDK" = "现状地块=") and writes.
    int SetXZData(const wchar_t* key, const wchar_t* value);
    int SetXZData(const wchar_t* key, const wchar_t* value, const wchar_t* appName);
    int SetXZData(const CStringArray& keys, const CStringArray& values);
    int SetXZData(const CStringArray& keys, const CStringArray& values, const wchar_t* appName);
    // Marks the curve an underground space, planned ("规划地下=") or current ("现状地下="),
    // unless it already is, and writes.
    int SetDXKJData(const wchar_t* key, const wchar_t* value, const wchar_t* appName, int planned);
    int SetDXKJData(const CStringArray& keys, const CStringArray& values, const wchar_t* appName,
                    int planned);

    // The current-status class: the field "FAPP_XZDK", read back from there or, when
    // empty, from "FS_DKXZ".
    int SetXZYDDKData(const CString& cls);
    int GetXZYDDKData(CString& cls) const;

    // Public facilities, joined by the caller: the first element to "FS_PTSS" (an empty
    // list is refused with 0). Reading takes "FS_PTSS", else the field "配套公建", else the
    // simple item "配套公建", splits it at "=" and appends the trimmed, non-empty pieces.
    int SetPTGJInfo(const CStringArray& facilities);
    int GetPTGJInfo(CStringArray& facilities) const;

    // Islands: linked under "DKBJ_LINK_NLK"; read from "地块内轮廓" and "DKBJ_LINK_NLK",
    // appending valid, live ids not yet listed, never the parcel itself. Returns 1.
    int SetIsland(const AcDbObjectIdArray& islands);
    int GetIsland(AcDbObjectIdArray& islands) const;

    // ---------------------------------------------------------------- areas (hectares)
    // Computed area when the project says so; else the entered "FD_YDMJ" (above 1e-5)
    // less each island's entered one; else the computed area.
    int GetArea(double& area) const;
    // The boundary's geometric area less each island's, m² / 10000. The boundary's result.
    int GetCalcArea(double& area) const;
    // The entered area alone (islands not subtracted), else the computed one.
    int GetInputArea(double& area) const;
    // Project parameters (default yes): count computed areas; clip parcels that cross
    // the boundary line of a statistic.
    static int FIsCalcArea();
    static int FCutBoundaryCalcArea();

    // The distinct trimmed numbers of all planned parcels, appended in drawing order.
    int GetIndexArray(CStringArray& numbers) const;

    // ---------------------------------------------------------------- drawing scans
    // One host selection of "*POLYLINE,CIRCLE" in the current space carrying any of the
    // applications named; ids is emptied first; the result is its length.
    static int GetDkbj(AcDbObjectIdArray& ids);               // planned
    static int GetCurGHTypeDkbj(AcDbObjectIdArray& ids);      // planned, current type
    static int GetAllDkbj(AcDbObjectIdArray& ids);            // planned and current
    static int GetAllXZYD(AcDbObjectIdArray& ids);            // current status
    static int GetDXKJ(AcDbObjectIdArray& ids, int planned);  // underground
    // Planned (or current-status) parcels whose trimmed "FS_DKBH" is not empty, with a
    // progress bar over the selection.
    static int GetHaveBHDkbj(AcDbObjectIdArray& ids, int planned);

    // ---------------------------------------------------------------- point queries
    // The parcel whose outline holds the point (the smallest when nested); 1 when found.
    static int GetDkbj(const AcGePoint3d& point, AcDbObjectId& id);
    static int GetDkbj(const AcDbObjectIdArray& candidates, const AcGePoint3d& point,
                       AcDbObjectId& id);
    static int GetXZYDBj(const AcGePoint3d& point, AcDbObjectId& id);
    static int GetDXKJ(const AcGePoint3d& point, AcDbObjectId& id, int planned);
    static int GetDXKJ(const AcDbObjectIdArray& candidates, const AcGePoint3d& point,
                       AcDbObjectId& id);

    // ---------------------------------------------------------------- by number
    // Numbers are read from "FS_DKBH" (else "地块编号"), trimmed and compared exactly.
    // Matches are appended when valid, live and new; the result is the length of ids.
    static int GetDkbj(const wchar_t* number, AcDbObjectId& id);
    static int GetDkbjByBH(const wchar_t* number, AcDbObjectIdArray& ids);
    static int GetDkbjByBH(const CString& number, const AcDbObjectIdArray& candidates,
                           AcDbObjectIdArray& ids);
    // Underground spaces by "FS_DXKJBH", or by any field (trimmed) among all of them.
    static int GetDXKJByBH(const CString& number, const AcDbObjectIdArray& candidates,
                           AcDbObjectIdArray& ids);
    static int GetDXKJByField(const CString& key, const CString& value, AcDbObjectIdArray& ids);
    // Distinct trimmed underground numbers, appended; the result is the list's length.
    static int GetAllDxkjBH(CStringArray& numbers, int planned);

    // ---------------------------------------------------------------- by class
    // Candidates passing IsDkbj (planned non-zero) or IsXZDkbj whose trimmed class
    // begins with cls; the forms without the flag take planned parcels, the form without
    // candidates scans GetDkbj first. Appended as by number.
    static int GetDkbjByClass(const CString& cls, const AcDbObjectIdArray& candidates,
                              AcDbObjectIdArray& ids, int planned);
    static int GetDkbjByClass(const CString& cls, const AcDbObjectIdArray& candidates,
                              AcDbObjectIdArray& ids);
    static int GetDkbjByClass(const CString& cls, AcDbObjectIdArray& ids);
    // The same with the whole class compared.
    static int GetDkbjByClassCompare(const CString& cls, const AcDbObjectIdArray& candidates,
                                     AcDbObjectIdArray& ids, int planned);
    static int GetDkbjByClassCompare(const CString& cls, const AcDbObjectIdArray& candidates,
                                     AcDbObjectIdArray& ids);
    static int GetDkbjByClassCompare(const CString& cls, AcDbObjectIdArray& ids);
    // Current-status parcels by class prefix.
    static int GetXZYDByClass(const CString& cls, AcDbObjectIdArray& ids);
    static int GetXZYDByClass(const CString& cls, const AcDbObjectIdArray& candidates,
                              AcDbObjectIdArray& ids);
    // Parcels whose large class is one of a comma-separated list.
    static int GetDkbjTrimClass(const CString& classes, AcDbObjectIdArray& ids, int planned);

    // Distinct classes in order of first appearance (full, large, mid), appended to
    // classes; the result is the list's length. Without candidates: GetDkbj / GetAllXZYD.
    static int GetAllDkbjClass(CStringArray& classes);
    static int GetAllDkbjClass(const AcDbObjectIdArray& candidates, CStringArray& classes);
    static int GetAllDkbjLargeClass(CStringArray& classes);
    static int GetAllDkbjLargeClass(const AcDbObjectIdArray& candidates, CStringArray& classes);
    static int GetAllDkbjMidClass(CStringArray& classes);
    static int GetAllDkbjMidClass(const AcDbObjectIdArray& candidates, CStringArray& classes);
    static int GetAllXZDkbjClass(CStringArray& classes);
    static int GetAllXZDkbjClass(const AcDbObjectIdArray& candidates, CStringArray& classes);
    static int GetAllXZDkbjLargeClass(CStringArray& classes);
    static int GetAllXZDkbjLargeClass(const AcDbObjectIdArray& candidates, CStringArray& classes);
    static int GetAllXZDkbjMidClass(CStringArray& classes);
    static int GetAllXZDkbjMidClass(const AcDbObjectIdArray& candidates, CStringArray& classes);
    // Underground spaces: their use "FS_DXKJXZ", else their class.
    static int GetAllDxkjClass(CStringArray& classes, int planned);

    // ---------------------------------------------------------------- oldest format
    // A parcel whose attributes sit in the drawing dictionary "QM_DKXX": its extension
    // dictionary holds DICTIONARY "QM_ENTLINK" -> XRECORD "LINKLIST", a label/value list
    // whose entry "规划用地" names the parcel's XRECORD in "QM_DKXX", itself a label/value
    // list. values gets one entry per key of dk::QM_FIELDS in that order ("" when absent;
    // "00_ydlb" falls back to the label "地块性质"); area is the computed area, islands as
    // GetIsland. 1 when the record was found.
    static int GetQm99PlotInfo(AcDbObjectId id, CStringArray& values, double& area,
                               AcDbObjectIdArray& islands);

  private:
    int readClass(bool labelFirst, CString& cls) const;
    int recordArea(double& area) const;
    int calcArea(double& area) const;
    int entered(double& metres) const;
    int markAndWrite(const wchar_t* marker, const wchar_t* value, bool keepExisting,
                     const CStringArray& keys, const CStringArray& values, const wchar_t* appName);

    AcDbObjectId m_id;
};
