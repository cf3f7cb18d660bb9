#pragma once
// The maker's xdata library: simple items (one string under an application name), GIS
// records (a type label and an ordered list of field / value strings under an application
// name) and one application's raw xdata.
//
// Layout of a GIS record (one application block):
//   1001 <application>  1000 <type label>  1002 {  (1000 <key>  1000 <value>)...  1002 }
// A block without the brace group is not a GIS record. The type label is the record's
// head and is what CFSimpleXData reads and writes, so a presence marker ("FAPP_XZDK" =
// "现状地块=") and the record under the same application share one block.
//
// All functions return 1 on success (or a count) and 0 on failure; they open and close
// what they need and never throw.
#include "host/arx/acutads.h"
#include "host/arx/dbmain.h"
#include "host/db/Value.h"
#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"
#include "kplan/Export.h"

namespace ARX_DATA {

class KPLAN_API CFSimpleXData {
  public:
    // Clears names and lists every application that carries xdata on the entity, in stored
    // order; returns their number.
    static int GetAllAppNames(AcDbObjectId id, CStringArray& names);

    // 1 when the application is present, with its string (the head of a GIS record; ""
    // when the block carries no string outside a brace group); else 0, value unchanged.
    static int GetFrom(AcDbObjectId id, const ACHAR* appName, CString& value);

    // Registers the application when needed. On a GIS record the head is replaced and the
    // fields are kept; any other block of the application is replaced by the one string.
    static int SetTo(AcDbObjectId id, const ACHAR* appName, const ACHAR* value);
};

class KPLAN_API CFGisXData {
  public:
    // The value of the field in the entity's GIS records, searched in stored order; the
    // second form also gives the record's application. 0 when absent, outputs unchanged.
    static int GetFrom(AcDbObjectId id, const ACHAR* field, CString& value);
    static int GetFrom(AcDbObjectId id, const ACHAR* field, CString& value, CString& appName);

    // Writes one field: replaced in place when the record has it, appended otherwise.
    // appName names the record; "" means the entity's existing record: the record that
    // already has the field, else the first record other than "FAPP_ENTCODE", else
    // "FAPP_ENTCODE", else the first simple item whose application begins with "FAPP_"
    // (a marker item becomes a record and keeps its string as head). An entity with none
    // of these gets no record from this call, which then returns 0: the application of
    // a new record tells the entity's kind, and only the caller knows it.
    //
    // Record creation, SetTo(id, application, "", typeLabel): when value is empty and the
    // last argument is neither an application the entity carries, nor a registered one,
    // nor a name beginning "FAPP_" (so it can only be a type label), the first argument
    // is the application of a record to create with that label as head; a block the
    // application already has keeps its fields and gets the new head.
    static int SetTo(AcDbObjectId id, const ACHAR* field, const ACHAR* value,
                     const ACHAR* appName = L"");

    // Writes many fields in one xdata write, in the given order, each as the single-field
    // form with appName "" (or with the matching entry of appNames) would. 0, and nothing
    // written, when the lists differ in length, a key is empty or a field has no record.
    static int SetTo(AcDbObjectId id, const CStringArray& fields, const CStringArray& values);
    static int SetTo(AcDbObjectId id, const CStringArray& appNames, const CStringArray& fields,
                     const CStringArray& values);

    // Clears the lists and fills them with every field of every GIS record of the entity,
    // records in stored order and fields in record order; returns the number of fields.
    static int GetAllXDatas(AcDbObjectId id, CStringArray& appNames, CStringArray& fields);
    static int GetAllXDatas(AcDbObjectId id, CStringArray& appNames, CStringArray& fields,
                            CStringArray& values);
};

// One application's xdata, read from and written to objects the caller has open. Built
// empty and written, it removes that application's data.
class KPLAN_API ArxDbgAppXdata {
  public:
    ArxDbgAppXdata(const ACHAR* appName, AcDbDatabase* database);

    const ACHAR* appName() const { return app_.c_str(); }
    bool isEmpty() const { return values_.empty(); }

    // Takes the application's data from an object open for read or write; empty when the
    // object carries none.
    Acad::ErrorStatus getXdata(const AcDbObject* obj);
    // Gives the object (open for write) this data, registering the application in the
    // database first; empty data removes the application's xdata.
    Acad::ErrorStatus setXdata(AcDbObject* obj) const;

    // The data after the application name as a new list the caller releases; null when
    // empty.
    resbuf* allocResbufChain() const;
    // Replaces the data with a copy of a list (a leading 1001 item is skipped).
    Acad::ErrorStatus setResbufChain(const resbuf* list);

  private:
    std::wstring app_;
    AcDbDatabase* database_;
    db::ValueList values_;
};

}  // namespace ARX_DATA
