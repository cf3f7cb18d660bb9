#pragma once
// What the unit, block and building records share: a GIS record on a closed outline,
// found anywhere in the drawing (model and paper space), read and written through a
// fixed table of labels and keys.
#include <span>

#include "host/arx/dbmain.h"
#include "host/arx/gepnt3d.h"
#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"
#include "kplan/Export.h"
#include "record/DKKeys.h"

namespace dk {

using LabelTable = std::span<const LabelKey>;

// 1 when the entity is live and carries the simple item app or, failing that, oldApp
// (null for none).
KPLAN_API int CarriesItem(AcDbObjectId id, const wchar_t* app, const wchar_t* oldApp);

// Makes the entity a record of app: its type label is NAME of app's section of
// "FAppDataSet.ini" (read as FGetValueFromFieldName reads it), else fallback. Fields the
// entity already has under app are kept.
KPLAN_API int StampRecord(AcDbObjectId id, const wchar_t* app, const wchar_t* fallback);

// The key of a label of the table; anything else is a key already.
KPLAN_API const wchar_t* KeyOfLabel(LabelTable table, const wchar_t* label);

// Every label of the table in its order and its value: the field of its key, else a field
// named by the label itself (as older records stored it), else "". The number of values
// found.
KPLAN_API int ReadLabelled(AcDbObjectId id, LabelTable table, CStringArray& labels,
                           CStringArray& values);
// Writes the pairs in one write, labels of the table stored under their keys; appNames,
// when given, names the record of each pair ("" the entity's own). 0, and nothing
// written, when the lists differ in length or the entity has no record to write to.
KPLAN_API int WriteLabelled(AcDbObjectId id, LabelTable table, const CStringArray& labels,
                            const CStringArray& values, const CStringArray* appNames);

// The geometric area of the outline in hectares.
KPLAN_API int OutlineArea(AcDbObjectId id, double& area);

// Closed curves ("POLYLINE,LWPOLYLINE,CIRCLE") carrying any of the applications, in the
// whole drawing; ids is replaced. The number found.
KPLAN_API int SelectOutlines(const wchar_t* apps, AcDbObjectIdArray& ids);
// The outline among those that holds the point (the smallest when nested); 1 when found.
KPLAN_API int OutlineAt(const wchar_t* apps, const AcGePoint3d& point, AcDbObjectId& id);

// Candidates whose trimmed number ("key", else the label) equals number, appended to ids
// when live and new; the length of ids.
KPLAN_API int SelectByNumber(const wchar_t* key, const wchar_t* label, const CString& number,
                             const AcDbObjectIdArray& candidates, AcDbObjectIdArray& ids);

// The planned parcels of the current space that lie in the outline: those whose
// centroid (of the polygon through their vertices) it holds, so that each parcel of a
// partition belongs to one unit and one block. Appended to parcels when new; their number.
KPLAN_API int EnclosedParcels(AcDbObjectId outline, AcDbObjectIdArray& parcels);

}  // namespace dk

// The shape the unit, block and building records share: a bound outline, single and bulk
// field access through the kind's label table, and the parcels the outline holds. The
// kind's own class adds its kind test, area and scans.
class KPLAN_API CBoundaryRecord {
  public:
    struct Kind {
        const wchar_t* app;        // the record's application
        const wchar_t* oldApp;     // the older item that marks the kind, or null
        const wchar_t* typeLabel;  // type label when the register names none
        dk::LabelTable fields;     // the bulk forms' labels and keys
        std::size_t mappedLabels;  // how many of them single-field access maps
        bool createOnWrite;        // writes create the record when the outline has none
    };

    virtual ~CBoundaryRecord() = default;

    // Binds the entity when the id is valid and not erased (no stamping); otherwise the
    // binding stays as it was and the result is 0.
    int SetObject(AcDbObjectId id);
    // The bound id; 0 when none is bound.
    int GetObjectW(AcDbObjectId& id) const;

    // One field by key, or by one of the kind's mapped labels.
    int GetData(const wchar_t* label, CString& value) const;
    // The same after label mapping; appName "" means the outline's own record.
    int SetData(const wchar_t* label, const wchar_t* value);
    int SetData(const wchar_t* label, const wchar_t* value, const wchar_t* appName);
    // Every label of the kind's table and its value ("" when absent); the number found.
    int GetData(CStringArray& labels, CStringArray& values) const;
    // Many fields in one write, the table's labels stored under their keys.
    int SetData(const CStringArray& labels, const CStringArray& values);
    int SetData(const CStringArray& labels, const CStringArray& values,
                const CStringArray& appNames);

    // The planned parcels of the current space whose centroid the outline holds,
    // appended; their number.
    int GetDkbj(AcDbObjectIdArray& parcels) const;

  protected:
    explicit CBoundaryRecord(const Kind& kind) : kind_(&kind) {}
    CBoundaryRecord(const CBoundaryRecord&) = default;
    CBoundaryRecord& operator=(const CBoundaryRecord&) = default;

    // Makes the bound outline a record of the kind (see dk::StampRecord).
    int stamp();
    // The record exists, or is made when the kind creates it on writing.
    int ensureRecord();

    AcDbObjectId m_id;

  private:
    const Kind* kind_;
};
