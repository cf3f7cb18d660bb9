#include "host/arx/dbblkref.h"

#include <cmath>

#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"

ACRX_DEFINE_MEMBERS(AcDbBlockReference, AcDbEntity, L"INSERT")

AcDbBlockReference::AcDbBlockReference(const AcDbBlockReference& other)
    : AcDbEntity(other),
      position_(other.position_),
      block_(other.block_),
      scale_(other.scale_),
      rotation_(other.rotation_),
      normal_(other.normal_) {
    for (AcDbObjectId id : other.attributeIds()) {
        if (auto* attribute = arx::peek<AcDbAttribute>(id)) {
            pending_.push_back(static_cast<AcDbAttribute*>(attribute->clone()));
        }
    }
}

AcDbBlockReference::~AcDbBlockReference() {
    for (AcDbAttribute* a : pending_)
        delete a;
}

#define KPLAN_REF_SETTER(NAME, TYPE, MEMBER)                  \
    Acad::ErrorStatus AcDbBlockReference::NAME(TYPE value) {  \
        if (!isWriteEnabled()) return Acad::eNotOpenForWrite; \
        MEMBER = value;                                       \
        return Acad::eOk;                                     \
    }
KPLAN_REF_SETTER(setBlockTableRecord, AcDbObjectId, block_)
KPLAN_REF_SETTER(setPosition, const AcGePoint3d&, position_)
KPLAN_REF_SETTER(setRotation, double, rotation_)
KPLAN_REF_SETTER(setNormal, const AcGeVector3d&, normal_)
#undef KPLAN_REF_SETTER

Acad::ErrorStatus AcDbBlockReference::setScaleFactors(const AcGeScale3d& scale) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (scale.sx == 0 || scale.sy == 0 || scale.sz == 0) return Acad::eInvalidInput;
    scale_ = scale;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbAttribute* attribute) {
    AcDbObjectId id;
    return appendAttribute(id, attribute);
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbObjectId& id, AcDbAttribute* attribute) {
    if (isDatabaseResident() && !isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (attribute == nullptr) return Acad::eNullEntityPointer;
    if (attribute->isDatabaseResident()) return Acad::eAlreadyInDb;
    if (!isDatabaseResident()) {
        pending_.push_back(attribute);
        return Acad::eOk;
    }
    Acad::ErrorStatus es = database()->addAcDbObject(id, attribute);
    if (es != Acad::eOk) return es;
    attribute->setOwnerId(objectId());
    attributes_.append(id);
    attributes_.addSeqend(*this);
    return Acad::eOk;
}

void AcDbBlockReference::subAddedToDatabase() {
    std::vector<AcDbAttribute*> pending;
    pending.swap(pending_);
    for (AcDbAttribute* a : pending) {
        AcDbObjectId id;
        if (appendAttribute(id, a) == Acad::eOk) {
            a->close();
        } else {
            delete a;
        }
    }
}

void AcDbBlockReference::restoreAttributes(std::vector<AcDbObjectId> attributes,
                                           AcDbObjectId seqend) {
    attributes_.restore(std::move(attributes), seqend);
}

std::vector<AcDbObjectId> AcDbBlockReference::attributeIds() const {
    return attributes_.liveIds();
}

AcDbObjectIterator* AcDbBlockReference::attributeIterator() const {
    return new AcDbObjectIterator(attributeIds());
}

Acad::ErrorStatus AcDbBlockReference::openAttribute(AcDbAttribute*& attribute, AcDbObjectId id,
                                                    AcDb::OpenMode mode, bool openErased) const {
    return acdbOpenObject(attribute, id, mode, openErased);
}

Acad::ErrorStatus AcDbBlockReference::getGeomExtents(AcDbExtents& extents) const {
    extents = AcDbExtents();
    // The block's own extents, each corner placed: less the block's base point, scaled,
    // turned about the insertion point, moved there.
    if (auto* block = arx::peek<AcDbBlockTableRecord>(block_)) {
        AcGePoint3d base = block->origin();
        double c = std::cos(rotation_), s = std::sin(rotation_);
        for (AcDbObjectId id : block->entityIds()) {
            auto* ent = id.isErased() ? nullptr : arx::peek<AcDbEntity>(id);
            AcDbExtents part;
            if (ent == nullptr || ent->getGeomExtents(part) != Acad::eOk) continue;
            const AcGePoint3d& lo = part.minPoint();
            const AcGePoint3d& hi = part.maxPoint();
            for (const AcGePoint3d& corner :
                 {lo, AcGePoint3d(hi.x, lo.y, lo.z), AcGePoint3d(lo.x, hi.y, hi.z), hi}) {
                double x = (corner.x - base.x) * scale_.sx, y = (corner.y - base.y) * scale_.sy;
                extents.addPoint({position_.x + x * c - y * s, position_.y + x * s + y * c,
                                  position_.z + (corner.z - base.z) * scale_.sz});
            }
        }
    }
    for (AcDbObjectId id : attributeIds()) {
        auto* attribute = arx::peek<AcDbAttribute>(id);
        AcDbExtents part;
        if (attribute && attribute->getGeomExtents(part) == Acad::eOk) extents.addExt(part);
    }
    if (extents.isEmpty()) extents.addPoint(position_);
    return Acad::eOk;
}
