#pragma once
// The entities an entity owns as a chain ended by a SEQEND: the vertices of a 2D
// polyline, the attributes of a block reference.
#include <vector>

#include "host/arx/dbmain.h"
#include "kplan/Export.h"

namespace arx {

class KPLAN_API OwnedChain {
  public:
    // Every member, erased ones included, in order.
    const std::vector<AcDbObjectId>& ids() const { return ids_; }
    // The members not erased, in order.
    std::vector<AcDbObjectId> liveIds() const;
    AcDbObjectId seqend() const { return seqend_; }
    void append(AcDbObjectId id) { ids_.push_back(id); }
    // For loaders: members and end marker read from a file, already resident.
    void restore(std::vector<AcDbObjectId> ids, AcDbObjectId seqend) {
        ids_ = std::move(ids);
        seqend_ = seqend;
    }
    // Adds the end marker, with the owner's properties, when the chain has none yet; the
    // owner must be resident.
    void addSeqend(AcDbEntity& owner);

  private:
    std::vector<AcDbObjectId> ids_;
    AcDbObjectId seqend_;
};

}  // namespace arx
