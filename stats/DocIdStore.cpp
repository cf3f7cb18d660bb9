#include "stats/DocIdStore.h"

#include <map>
#include <mutex>

#include "host/arx/acdocman.h"
#include "host/kova/KovaEnt.h"

namespace {

struct DocRecord {
    AcDbObjectIdArray marked;
    AcDbObjectIdArray regions;
    AcDbObjectIdArray errorRegions;
    AcDbObjectIdArray calculatedParcels;
};

// Keyed by the document's address as the host reports it; entries of closed drawings
// stay, as a later drawing at the same address would find them anyway.
std::map<const AcApDocument*, DocRecord>& store() {
    static std::map<const AcApDocument*, DocRecord> records;
    return records;
}

// The threads of a batch each work on a drawing of their own; only the map is shared.
DocRecord& current() {
    static std::mutex mutex;
    std::lock_guard<std::mutex> lock(mutex);
    return store()[acDocManager->curDocument()];
}

bool usable(AcDbObjectId id) {
    return id.isValid() && !id.isErased();
}

int removeAll(AcDbObjectIdArray& ids, AcDbObjectId id) {
    int removed = 0;
    for (int i = ids.length() - 1; i >= 0; --i) {
        if (ids[i] == id) {
            ids.removeAt(i);
            ++removed;
        }
    }
    return removed;
}

int copyOut(const AcDbObjectIdArray& from, AcDbObjectIdArray& out) {
    out = from;
    return out.length();
}

}  // namespace

int FAddIdsToDocData(const AcDbObjectIdArray& ids) {
    current().marked.append(ids);
    return ids.length();
}

int FAddIdsToDocData(AcDbObjectId id) {
    if (!usable(id)) return 0;
    current().marked.append(id);
    return 1;
}

int FRemoveIdsDocData(const AcDbObjectIdArray& ids) {
    DocRecord& record = current();
    int removed = 0;
    for (AcDbObjectId id : ids)
        removed += removeAll(record.marked, id);
    return removed;
}

int FRemoveIdsDocData(AcDbObjectId id) {
    return removeAll(current().marked, id);
}

int FRemoveAllIdsDocData() {
    current().marked.setLogicalLength(0);
    return 1;
}

int FGetIdsFromDocData(AcDbObjectIdArray& out) {
    int appended = 0;
    for (AcDbObjectId id : current().marked) {
        if (!usable(id) || out.contains(id)) continue;
        out.append(id);
        ++appended;
    }
    return appended;
}

int FGetRegionFromCurDoc(AcDbObjectIdArray& out) {
    return copyOut(current().regions, out);
}
int FGetErrRegionFromCurDoc(AcDbObjectIdArray& out) {
    return copyOut(current().errorRegions, out);
}
int FGetCalcDKFromCurDoc(AcDbObjectIdArray& out) {
    return copyOut(current().calculatedParcels, out);
}

int FSetRegionToCurDoc(const AcDbObjectIdArray& regions, const AcDbObjectIdArray& errorRegions,
                       const AcDbObjectIdArray& calculatedParcels) {
    DocRecord& record = current();
    record.regions = regions;
    record.errorRegions = errorRegions;
    record.calculatedParcels = calculatedParcels;
    return 1;
}

int FSetRegionNull() {
    DocRecord& record = current();
    kova::ent::Erase(record.regions);
    kova::ent::Erase(record.errorRegions);
    record.regions.setLogicalLength(0);
    record.errorRegions.setLogicalLength(0);
    record.calculatedParcels.setLogicalLength(0);
    return 1;
}
