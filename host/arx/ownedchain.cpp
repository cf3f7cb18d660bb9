#include "host/arx/ownedchain.h"

#include "host/arx/dbents.h"

namespace arx {

std::vector<AcDbObjectId> OwnedChain::liveIds() const {
    std::vector<AcDbObjectId> live;
    for (AcDbObjectId id : ids_) {
        if (!id.isErased()) live.push_back(id);
    }
    return live;
}

void OwnedChain::addSeqend(AcDbEntity& owner) {
    if (!seqend_.isNull() || owner.database() == nullptr) return;
    auto* end = new AcDbSequenceEnd();
    end->setPropertiesFrom(&owner);
    if (owner.database()->addAcDbObject(seqend_, end) == Acad::eOk) {
        end->setOwnerId(owner.objectId());
        end->close();
    } else {
        delete end;
    }
}

}  // namespace arx
