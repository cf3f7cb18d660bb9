#include "host/arx/dbsymtb.h"

#include <cwctype>

#include "host/arx/acutads.h"
#include "host/arx/peek.h"

ACRX_DEFINE_MEMBERS(AcDbSymbolTableRecord, AcDbObject, L"")
ACRX_DEFINE_MEMBERS(AcDbSymbolTable, AcDbObject, L"TABLE")
ACRX_DEFINE_MEMBERS(AcDbLayerTableRecord, AcDbSymbolTableRecord, L"LAYER")
ACRX_DEFINE_MEMBERS(AcDbRegAppTableRecord, AcDbSymbolTableRecord, L"APPID")
ACRX_DEFINE_MEMBERS(AcDbLinetypeTableRecord, AcDbSymbolTableRecord, L"LTYPE")
ACRX_DEFINE_MEMBERS(AcDbBlockTableRecord, AcDbSymbolTableRecord, L"BLOCK_RECORD")
ACRX_DEFINE_MEMBERS(AcDbLayerTable, AcDbSymbolTable, L"TABLE")
ACRX_DEFINE_MEMBERS(AcDbRegAppTable, AcDbSymbolTable, L"TABLE")
ACRX_DEFINE_MEMBERS(AcDbLinetypeTable, AcDbSymbolTable, L"TABLE")
ACRX_DEFINE_MEMBERS(AcDbBlockTable, AcDbSymbolTable, L"TABLE")

namespace {

// Names the host refuses in symbol tables.
bool isValidSymbolName(const ACHAR* name) {
    if (name == nullptr || *name == 0) return false;
    for (const ACHAR* p = name; *p; ++p) {
        if (std::wcschr(L"<>/\\\":;?,=`", *p) != nullptr) return false;
        if (*p < 0x20) return false;
    }
    return true;
}

}  // namespace

// ---------------------------------------------------------------- records

Acad::ErrorStatus AcDbSymbolTableRecord::getName(ACHAR*& name) const {
    name = acutNewString(name_.c_str());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::getName(const ACHAR*& name) const {
    name = name_.c_str();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::setName(const ACHAR* name) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    // Block names may start with "*" (model and paper space, anonymous blocks).
    bool isBlock = AcDbBlockTableRecord::cast(this) != nullptr;
    const ACHAR* check = name && *name == L'*' && isBlock ? name + 1 : name;
    if (!isValidSymbolName(check)) return Acad::eInvalidSymbolTableName;
    if (auto* table = arx::peek<AcDbSymbolTable>(ownerId())) {
        AcDbObjectId other;
        if (table->getAt(name, other) == Acad::eOk && other != objectId()) {
            return Acad::eDuplicateRecordName;
        }
    }
    name_ = name;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsFrozen(bool frozen) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    frozen_ = frozen;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsPlottable(bool plottable) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    plottable_ = plottable;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLayerTableRecord::setLineWeight(Adesk::Int16 weight) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    lineWeight_ = weight;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLinetypeTableRecord::comments(const ACHAR*& text) const {
    text = comments_.c_str();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLinetypeTableRecord::setComments(const ACHAR* text) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    comments_ = text ? text : L"";
    return Acad::eOk;
}

double AcDbLinetypeTableRecord::dashLengthAt(int index) const {
    return index >= 0 && index < numDashes() ? dashes_[static_cast<std::size_t>(index)] : 0.0;
}

Acad::ErrorStatus AcDbLinetypeTableRecord::setNumDashes(int count) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (count < 0) return Acad::eInvalidInput;
    dashes_.resize(static_cast<std::size_t>(count), 0.0);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLinetypeTableRecord::setDashLengthAt(int index, double length) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (index < 0 || index >= numDashes()) return Acad::eInvalidIndex;
    dashes_[static_cast<std::size_t>(index)] = length;
    return Acad::eOk;
}

double AcDbLinetypeTableRecord::patternLength() const {
    double total = 0;
    for (double d : dashes_)
        total += d < 0 ? -d : d;
    return total;
}

// ---------------------------------------------------------------- tables

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* name, AcDbObjectId& id,
                                         bool getErased) const {
    if (name == nullptr) return Acad::eInvalidInput;
    std::wstring key = arx::foldCase(name);
    for (AcDbObjectId recordId : records_) {
        if (recordId.isErased() && !getErased) continue;
        auto* record = arx::peek<AcDbSymbolTableRecord>(recordId);
        if (record && arx::foldCase(record->nameText().c_str()) == key) {
            id = recordId;
            return Acad::eOk;
        }
    }
    return Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* name, AcDbSymbolTableRecord*& record,
                                         AcDb::OpenMode mode, bool openErased) const {
    record = nullptr;
    AcDbObjectId id;
    Acad::ErrorStatus es = getAt(name, id, openErased);
    if (es != Acad::eOk) return es;
    return acdbOpenObject(record, id, mode, openErased);
}

bool AcDbSymbolTable::has(const ACHAR* name) const {
    AcDbObjectId id;
    return getAt(name, id) == Acad::eOk;
}

bool AcDbSymbolTable::has(AcDbObjectId id) const {
    if (id.isErased()) return false;
    for (AcDbObjectId recordId : records_) {
        if (recordId == id) return true;
    }
    return false;
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbSymbolTableRecord* record) {
    AcDbObjectId id;
    return add(id, record);
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbObjectId& id, AcDbSymbolTableRecord* record) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (record == nullptr) return Acad::eNullObjectPointer;
    if (!accepts(record)) return Acad::eWrongObjectType;
    if (record->nameText().empty()) return Acad::eInvalidSymbolTableName;
    if (has(record->nameText().c_str())) return Acad::eDuplicateRecordName;
    if (!record->isDatabaseResident()) {
        if (database() == nullptr) return Acad::eNoDatabase;
        Acad::ErrorStatus es = database()->addAcDbObject(id, record);
        if (es != Acad::eOk) return es;
    }
    id = record->objectId();
    record->setOwnerId(objectId());
    records_.push_back(id);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::newIterator(AcDbSymbolTableIterator*& iterator, bool atBeginning,
                                               bool skipDeleted) const {
    iterator = new AcDbSymbolTableIterator(records_, atBeginning, skipDeleted);
    return Acad::eOk;
}

AcDbSymbolTableIterator::AcDbSymbolTableIterator(std::vector<AcDbObjectId> ids, bool atBeginning,
                                                 bool skipDeleted)
    : ids_(std::move(ids)) {
    start(atBeginning, skipDeleted);
}

void AcDbSymbolTableIterator::start(bool atBeginning, bool skipDeleted) {
    index_ = atBeginning ? 0 : static_cast<int>(ids_.size()) - 1;
    skip(atBeginning, skipDeleted);
}

void AcDbSymbolTableIterator::step(bool forward, bool skipDeleted) {
    index_ += forward ? 1 : -1;
    skip(forward, skipDeleted);
}

void AcDbSymbolTableIterator::skip(bool forward, bool skipDeleted) {
    while (skipDeleted && !done() && ids_[static_cast<std::size_t>(index_)].isErased()) {
        index_ += forward ? 1 : -1;
    }
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecordId(AcDbObjectId& id) const {
    if (done()) return Acad::eIteratorDone;
    id = ids_[static_cast<std::size_t>(index_)];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecord(AcDbSymbolTableRecord*& record,
                                                     AcDb::OpenMode mode, bool openErased) const {
    record = nullptr;
    AcDbObjectId id;
    Acad::ErrorStatus es = getRecordId(id);
    if (es != Acad::eOk) return es;
    return acdbOpenObject(record, id, mode, openErased);
}

// ---------------------------------------------------------------- blocks

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbEntity* entity) {
    AcDbObjectId id;
    return appendAcDbEntity(id, entity);
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (entity == nullptr) return Acad::eNullEntityPointer;
    if (database() == nullptr) return Acad::eNotInDatabase;
    if (entity->isDatabaseResident()) return Acad::eAlreadyInDb;
    // An entity made before it had a drawing may name a layer this drawing lacks.
    auto* layers = arx::peek<AcDbLayerTable>(database()->layerTableId());
    if (layers == nullptr || !layers->has(entity->layerName().c_str())) return Acad::eKeyNotFound;
    Acad::ErrorStatus es = database()->addAcDbObject(id, entity);
    if (es != Acad::eOk) return es;
    entity->setOwnerId(objectId());
    entities_.push_back(id);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::newIterator(AcDbBlockTableRecordIterator*& iterator,
                                                    bool atBeginning, bool skipDeleted) const {
    iterator = new AcDbBlockTableRecordIterator(entities_, atBeginning, skipDeleted);
    return Acad::eOk;
}

bool AcDbBlockTableRecord::isLayout() const {
    std::wstring key = arx::foldCase(nameText().c_str());
    return key == L"*MODEL_SPACE" || key.rfind(L"*PAPER_SPACE", 0) == 0;
}

AcDbBlockTableRecordIterator::AcDbBlockTableRecordIterator(std::vector<AcDbObjectId> ids,
                                                           bool atBeginning, bool skipDeleted)
    : ids_(std::move(ids)) {
    start(atBeginning, skipDeleted);
}

void AcDbBlockTableRecordIterator::start(bool atBeginning, bool skipDeleted) {
    index_ = atBeginning ? 0 : static_cast<int>(ids_.size()) - 1;
    skip(atBeginning, skipDeleted);
}

void AcDbBlockTableRecordIterator::step(bool forward, bool skipDeleted) {
    index_ += forward ? 1 : -1;
    skip(forward, skipDeleted);
}

void AcDbBlockTableRecordIterator::skip(bool forward, bool skipDeleted) {
    while (skipDeleted && !done() && ids_[static_cast<std::size_t>(index_)].isErased()) {
        index_ += forward ? 1 : -1;
    }
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntityId(AcDbObjectId& id) const {
    if (done()) return Acad::eIteratorDone;
    id = ids_[static_cast<std::size_t>(index_)];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntity(AcDbEntity*& entity, AcDb::OpenMode mode,
                                                          bool openErased) const {
    entity = nullptr;
    AcDbObjectId id;
    Acad::ErrorStatus es = getEntityId(id);
    if (es != Acad::eOk) return es;
    return acdbOpenObject(entity, id, mode, openErased);
}
