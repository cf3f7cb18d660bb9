#pragma once
// The draw order of one block: each entity draws in the order of its sort handle,
// which is its own handle unless the table gives it another one.
#include <utility>
#include <vector>

#include "host/arx/dbmain.h"
#include "kplan/Export.h"

class KPLAN_API AcDbSortentsTable : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbSortentsTable)

    AcDbObjectId blockId() const { return block_; }
    Acad::ErrorStatus setBlockId(AcDbObjectId block);

    Acad::ErrorStatus getSortHandle(AcDbObjectId id, AcDbHandle& handle) const;
    // The block's live entities from first drawn to last.
    Acad::ErrorStatus getFullDrawOrder(AcDbObjectIdArray& ids, Adesk::UInt8 honorMask = 0) const;
    // Draws the entities after (before) every other one, keeping their relative order.
    Acad::ErrorStatus moveToTop(const AcDbObjectIdArray& ids);
    Acad::ErrorStatus moveToBottom(const AcDbObjectIdArray& ids);
    Acad::ErrorStatus moveAbove(const AcDbObjectIdArray& ids, AcDbObjectId target);
    Acad::ErrorStatus moveBelow(const AcDbObjectIdArray& ids, AcDbObjectId target);

    // The entities whose sort handle is not their own, as stored.
    const std::vector<std::pair<AcDbObjectId, AcDbHandle>>& entries() const { return entries_; }
    // For loaders: one (entity, sort handle) pair as read.
    void restoreEntry(AcDbObjectId id, AcDbHandle sortHandle) {
        entries_.emplace_back(id, sortHandle);
    }

  private:
    std::vector<AcDbObjectId> drawOrder() const;
    Acad::ErrorStatus reorder(std::vector<AcDbObjectId> order);
    Acad::ErrorStatus moveRelative(const AcDbObjectIdArray& ids, AcDbObjectId target, bool above);

    AcDbObjectId block_;
    std::vector<std::pair<AcDbObjectId, AcDbHandle>> entries_;
};
