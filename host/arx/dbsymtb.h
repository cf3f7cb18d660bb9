#pragma once
// Symbol tables (layers, applications, linetypes, blocks) and their records.
// Record names are unique within a table, compared without regard to ASCII case.
#include <string>
#include <vector>

#include "host/arx/dbmain.h"
#include "kplan/Export.h"

#define ACDB_MODEL_SPACE L"*Model_Space"
#define ACDB_PAPER_SPACE L"*Paper_Space"

class KPLAN_API AcDbSymbolTableRecord : public AcDbObject {
  public:
    ACRX_DECLARE_ABSTRACT_MEMBERS(AcDbSymbolTableRecord)
    // A copy the caller frees with acutDelString.
    Acad::ErrorStatus getName(ACHAR*& name) const;
    // The record's own text, valid while the record is open.
    Acad::ErrorStatus getName(const ACHAR*& name) const;
    const std::wstring& nameText() const { return name_; }
    Acad::ErrorStatus setName(const ACHAR* name);
    bool isDependent() const { return name_.find(L'|') != std::wstring::npos; }

  private:
    std::wstring name_;
};

class AcDbSymbolTableIterator;

class KPLAN_API AcDbSymbolTable : public AcDbObject {
  public:
    ACRX_DECLARE_ABSTRACT_MEMBERS(AcDbSymbolTable)

    Acad::ErrorStatus getAt(const ACHAR* name, AcDbObjectId& id, bool getErased = false) const;
    Acad::ErrorStatus getAt(const ACHAR* name, AcDbSymbolTableRecord*& record, AcDb::OpenMode mode,
                            bool openErased = false) const;
    bool has(const ACHAR* name) const;
    bool has(AcDbObjectId id) const;
    // Adds a record (resident already or not) under its name; the table must be open
    // for write, the name must be valid and not taken.
    Acad::ErrorStatus add(AcDbSymbolTableRecord* record);
    Acad::ErrorStatus add(AcDbObjectId& id, AcDbSymbolTableRecord* record);
    Acad::ErrorStatus newIterator(AcDbSymbolTableIterator*& iterator, bool atBeginning = true,
                                  bool skipDeleted = true) const;
    // Record ids in the order they were added, erased ones included.
    const std::vector<AcDbObjectId>& recordIds() const { return records_; }
    // For loaders: a record already resident, unchecked (files may repeat a name).
    void restoreRecord(AcDbObjectId id) { records_.push_back(id); }

  protected:
    virtual bool accepts(const AcDbSymbolTableRecord* record) const = 0;

  private:
    std::vector<AcDbObjectId> records_;
};

class KPLAN_API AcDbSymbolTableIterator {
  public:
    AcDbSymbolTableIterator(std::vector<AcDbObjectId> ids, bool atBeginning, bool skipDeleted);
    virtual ~AcDbSymbolTableIterator() = default;
    void start(bool atBeginning = true, bool skipDeleted = true);
    bool done() const { return index_ < 0 || index_ >= static_cast<int>(ids_.size()); }
    void step(bool forward = true, bool skipDeleted = true);
    Acad::ErrorStatus getRecordId(AcDbObjectId& id) const;
    Acad::ErrorStatus getRecord(AcDbSymbolTableRecord*& record, AcDb::OpenMode mode,
                                bool openErased = false) const;

  private:
    void skip(bool forward, bool skipDeleted);
    std::vector<AcDbObjectId> ids_;
    int index_ = 0;
};

// The typed table of one kind of record, as the host declares one class per kind.
template <typename Record, typename Iterator>
class AcDbTypedSymbolTable : public AcDbSymbolTable {
  public:
    using AcDbSymbolTable::add;
    using AcDbSymbolTable::getAt;
    Acad::ErrorStatus getAt(const ACHAR* name, Record*& record, AcDb::OpenMode mode,
                            bool openErased = false) const {
        record = nullptr;
        AcDbObjectId id;
        Acad::ErrorStatus es = getAt(name, id, openErased);
        if (es != Acad::eOk) return es;
        return acdbOpenObject(record, id, mode, openErased);
    }
    Acad::ErrorStatus newIterator(Iterator*& iterator, bool atBeginning = true,
                                  bool skipDeleted = true) const {
        iterator = new Iterator(recordIds(), atBeginning, skipDeleted);
        return Acad::eOk;
    }

  protected:
    bool accepts(const AcDbSymbolTableRecord* record) const override {
        return Record::cast(record) != nullptr;
    }
};

template <typename Record>
class AcDbTypedSymbolTableIterator : public AcDbSymbolTableIterator {
  public:
    using AcDbSymbolTableIterator::AcDbSymbolTableIterator;
    using AcDbSymbolTableIterator::getRecord;
    Acad::ErrorStatus getRecord(Record*& record, AcDb::OpenMode mode,
                                bool openErased = false) const {
        record = nullptr;
        AcDbObjectId id;
        Acad::ErrorStatus es = getRecordId(id);
        if (es != Acad::eOk) return es;
        return acdbOpenObject(record, id, mode, openErased);
    }
};

class KPLAN_API AcDbLayerTableRecord : public AcDbSymbolTableRecord {
  public:
    ACRX_DECLARE_MEMBERS(AcDbLayerTableRecord)
    AcDbLayerTableRecord() { color_.setColorIndex(7); }

    AcCmColor color() const { return color_; }
    void setColor(const AcCmColor& color) { color_ = color; }
    bool isOff() const { return off_; }
    void setIsOff(bool off) { off_ = off; }
    bool isFrozen() const { return frozen_; }
    Acad::ErrorStatus setIsFrozen(bool frozen);
    bool isLocked() const { return locked_; }
    void setIsLocked(bool locked) { locked_ = locked; }
    bool isPlottable() const { return plottable_; }
    Acad::ErrorStatus setIsPlottable(bool plottable);
    AcDbObjectId linetypeObjectId() const { return linetype_; }
    void setLinetypeObjectId(AcDbObjectId id) { linetype_ = id; }
    Adesk::Int16 lineWeight() const { return lineWeight_; }
    Acad::ErrorStatus setLineWeight(Adesk::Int16 weight);

  private:
    AcCmColor color_;
    AcDbObjectId linetype_;
    Adesk::Int16 lineWeight_ = -3;  // default
    bool off_ = false, frozen_ = false, locked_ = false, plottable_ = true;
};

class KPLAN_API AcDbRegAppTableRecord : public AcDbSymbolTableRecord {
  public:
    ACRX_DECLARE_MEMBERS(AcDbRegAppTableRecord)
};

class KPLAN_API AcDbLinetypeTableRecord : public AcDbSymbolTableRecord {
  public:
    ACRX_DECLARE_MEMBERS(AcDbLinetypeTableRecord)
    Acad::ErrorStatus comments(const ACHAR*& text) const;
    Acad::ErrorStatus setComments(const ACHAR* text);
    int numDashes() const { return static_cast<int>(dashes_.size()); }
    double dashLengthAt(int index) const;
    Acad::ErrorStatus setNumDashes(int count);
    Acad::ErrorStatus setDashLengthAt(int index, double length);
    double patternLength() const;

  private:
    std::wstring comments_;
    std::vector<double> dashes_;
};

class AcDbBlockTableRecordIterator;

class KPLAN_API AcDbBlockTableRecord : public AcDbSymbolTableRecord {
  public:
    ACRX_DECLARE_MEMBERS(AcDbBlockTableRecord)

    // Adds an entity to this block; the record must be open for write. The entity is
    // added to the database if it is not resident yet and stays open for write.
    Acad::ErrorStatus appendAcDbEntity(AcDbEntity* entity);
    Acad::ErrorStatus appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity);
    Acad::ErrorStatus newIterator(AcDbBlockTableRecordIterator*& iterator, bool atBeginning = true,
                                  bool skipDeleted = true) const;
    // Entity ids in drawing order of creation, erased ones included.
    const std::vector<AcDbObjectId>& entityIds() const { return entities_; }
    // For loaders: an entity already resident, in file order, unchecked.
    void restoreEntity(AcDbObjectId id) { entities_.push_back(id); }
    // The draw order of this block, kept in its extension dictionary; with
    // createIfNecessary a missing one is made (the record must be open for write).
    Acad::ErrorStatus getSortentsTable(class AcDbSortentsTable*& table, AcDb::OpenMode mode,
                                       bool createIfNecessary = false);
    bool isLayout() const;
    AcGePoint3d origin() const { return origin_; }
    void setOrigin(const AcGePoint3d& origin) { origin_ = origin; }

  private:
    std::vector<AcDbObjectId> entities_;
    AcGePoint3d origin_;
};

class KPLAN_API AcDbBlockTableRecordIterator {
  public:
    AcDbBlockTableRecordIterator(std::vector<AcDbObjectId> ids, bool atBeginning, bool skipDeleted);
    void start(bool atBeginning = true, bool skipDeleted = true);
    bool done() const { return index_ < 0 || index_ >= static_cast<int>(ids_.size()); }
    void step(bool forward = true, bool skipDeleted = true);
    Acad::ErrorStatus getEntityId(AcDbObjectId& id) const;
    Acad::ErrorStatus getEntity(AcDbEntity*& entity, AcDb::OpenMode mode,
                                bool openErased = false) const;

  private:
    void skip(bool forward, bool skipDeleted);
    std::vector<AcDbObjectId> ids_;
    int index_ = 0;
};

using AcDbLayerTableIterator = AcDbTypedSymbolTableIterator<AcDbLayerTableRecord>;
using AcDbRegAppTableIterator = AcDbTypedSymbolTableIterator<AcDbRegAppTableRecord>;
using AcDbLinetypeTableIterator = AcDbTypedSymbolTableIterator<AcDbLinetypeTableRecord>;
using AcDbBlockTableIterator = AcDbTypedSymbolTableIterator<AcDbBlockTableRecord>;

class KPLAN_API AcDbLayerTable
    : public AcDbTypedSymbolTable<AcDbLayerTableRecord, AcDbLayerTableIterator> {
  public:
    ACRX_DECLARE_MEMBERS(AcDbLayerTable)
};
class KPLAN_API AcDbRegAppTable
    : public AcDbTypedSymbolTable<AcDbRegAppTableRecord, AcDbRegAppTableIterator> {
  public:
    ACRX_DECLARE_MEMBERS(AcDbRegAppTable)
};
class KPLAN_API AcDbLinetypeTable
    : public AcDbTypedSymbolTable<AcDbLinetypeTableRecord, AcDbLinetypeTableIterator> {
  public:
    ACRX_DECLARE_MEMBERS(AcDbLinetypeTable)
};
class KPLAN_API AcDbBlockTable
    : public AcDbTypedSymbolTable<AcDbBlockTableRecord, AcDbBlockTableIterator> {
  public:
    ACRX_DECLARE_MEMBERS(AcDbBlockTable)
};
