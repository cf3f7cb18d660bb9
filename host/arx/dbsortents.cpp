#include "host/arx/dbsortents.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "host/arx/dbdict.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"

ACRX_DEFINE_MEMBERS(AcDbSortentsTable, AcDbObject, L"SORTENTSTABLE")

namespace {

// Ids hashed by the object they refer to, without the std::hash of ids that the platform
// check leaves out.
struct IdHash {
    std::size_t operator()(AcDbObjectId id) const noexcept {
        return std::hash<db::Stub*>()(id.stub());
    }
};

}  // namespace

Acad::ErrorStatus AcDbSortentsTable::setBlockId(AcDbObjectId block) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    block_ = block;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::getSortHandle(AcDbObjectId id, AcDbHandle& handle) const {
    if (id.isNull()) return Acad::eNullObjectId;
    for (const auto& [entity, sortHandle] : entries_) {
        if (entity == id) {
            handle = sortHandle;
            return Acad::eOk;
        }
    }
    handle = id.handle();
    return Acad::eOk;
}

std::vector<AcDbObjectId> AcDbSortentsTable::drawOrder() const {
    std::vector<AcDbObjectId> ids;
    auto* block = arx::peek<AcDbBlockTableRecord>(block_);
    if (block == nullptr) return ids;
    // Looked up once per entity: a drawing whose fills all moved has as many entries.
    std::unordered_map<AcDbObjectId, std::uint64_t, IdHash> sortHandles;
    for (const auto& [entity, sortHandle] : entries_)
        sortHandles.emplace(entity, sortHandle.value());
    std::vector<std::pair<std::uint64_t, AcDbObjectId>> keyed;
    keyed.reserve(block->entityIds().size());
    for (AcDbObjectId id : block->entityIds()) {
        if (id.isErased()) continue;
        auto found = sortHandles.find(id);
        keyed.emplace_back(found == sortHandles.end() ? id.handle().value() : found->second, id);
    }
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& entry : keyed)
        ids.push_back(entry.second);
    return ids;
}

Acad::ErrorStatus AcDbSortentsTable::getFullDrawOrder(AcDbObjectIdArray& ids, Adesk::UInt8) const {
    if (arx::peek<AcDbBlockTableRecord>(block_) == nullptr) return Acad::eNotInBlock;
    ids.setLogicalLength(0);
    for (AcDbObjectId id : drawOrder())
        ids.append(id);
    return Acad::eOk;
}

// Gives the entities, in their new order, the sorted set of their own handles, as the
// host does: the table then holds only the entities whose place changed.
Acad::ErrorStatus AcDbSortentsTable::reorder(std::vector<AcDbObjectId> order) {
    std::vector<std::uint64_t> handles;
    for (AcDbObjectId id : order)
        handles.push_back(id.handle().value());
    std::sort(handles.begin(), handles.end());
    entries_.clear();
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (order[i].handle().value() != handles[i]) entries_.emplace_back(order[i], handles[i]);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::moveToTop(const AcDbObjectIdArray& ids) {
    return moveRelative(ids, AcDbObjectId(), true);
}

Acad::ErrorStatus AcDbSortentsTable::moveToBottom(const AcDbObjectIdArray& ids) {
    return moveRelative(ids, AcDbObjectId(), false);
}

Acad::ErrorStatus AcDbSortentsTable::moveAbove(const AcDbObjectIdArray& ids, AcDbObjectId target) {
    if (target.isNull()) return Acad::eNullObjectId;
    return moveRelative(ids, target, true);
}

Acad::ErrorStatus AcDbSortentsTable::moveBelow(const AcDbObjectIdArray& ids, AcDbObjectId target) {
    if (target.isNull()) return Acad::eNullObjectId;
    return moveRelative(ids, target, false);
}

Acad::ErrorStatus AcDbSortentsTable::moveRelative(const AcDbObjectIdArray& ids, AcDbObjectId target,
                                                  bool above) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    std::vector<AcDbObjectId> current = drawOrder();
    std::unordered_set<AcDbObjectId, IdHash> live(current.begin(), current.end());
    std::unordered_set<AcDbObjectId, IdHash> moving;
    for (int i = 0; i < ids.length(); ++i) {
        if (!live.count(ids[i])) return Acad::eInvalidInput;  // not a live entity of this block
        moving.insert(ids[i]);
    }
    if (moving.count(target)) return Acad::eInvalidInput;
    std::vector<AcDbObjectId> moved, rest;
    for (AcDbObjectId id : current)
        (moving.count(id) ? moved : rest).push_back(id);
    auto at = above ? rest.end() : rest.begin();
    if (!target.isNull()) {
        at = std::find(rest.begin(), rest.end(), target);
        if (at == rest.end()) return Acad::eInvalidInput;
        if (above) ++at;
    }
    rest.insert(at, moved.begin(), moved.end());
    return reorder(std::move(rest));
}

Acad::ErrorStatus AcDbBlockTableRecord::getSortentsTable(AcDbSortentsTable*& table,
                                                         AcDb::OpenMode mode,
                                                         bool createIfNecessary) {
    table = nullptr;
    if (!isDatabaseResident()) return Acad::eNotInDatabase;
    auto* dict = arx::peek<AcDbDictionary>(extensionDictionary());
    AcDbObjectId id;
    if (dict && !extensionDictionary().isErased() &&
        dict->getAt(L"ACAD_SORTENTS", id) == Acad::eOk) {
        return acdbOpenObject(table, id, mode);
    }
    if (!createIfNecessary) return Acad::eKeyNotFound;
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (dict == nullptr || extensionDictionary().isErased()) {
        Acad::ErrorStatus es = createExtensionDictionary();
        if (es != Acad::eOk) return es;
    }
    AcDbDictionary* extension = nullptr;
    Acad::ErrorStatus es = acdbOpenObject(extension, extensionDictionary(), AcDb::kForWrite);
    if (es != Acad::eOk) return es;
    auto* created = new AcDbSortentsTable();
    created->setBlockId(objectId());
    es = extension->setAt(L"ACAD_SORTENTS", created, id);
    extension->close();
    if (es != Acad::eOk) {
        delete created;
        return es;
    }
    created->close();
    return acdbOpenObject(table, id, mode);
}
