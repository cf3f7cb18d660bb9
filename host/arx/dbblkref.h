#pragma once
// A block reference (INSERT): a block definition placed at a point, scaled and turned,
// with the attributes it owns. The attributes live as objects of their own, owned by the
// reference and ended by a SEQEND, as in the CAD.
#include <vector>

#include "host/arx/dbattr.h"
#include "host/arx/gescl3d.h"
#include "kplan/Export.h"

class KPLAN_API AcDbBlockReference : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbBlockReference)
    AcDbBlockReference() = default;
    AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId blockTableRecord)
        : position_(position), block_(blockTableRecord) {}
    // A copy owns copies of the attributes, added with it.
    AcDbBlockReference(const AcDbBlockReference& other);
    ~AcDbBlockReference() override;

    AcDbObjectId blockTableRecord() const { return block_; }
    Acad::ErrorStatus setBlockTableRecord(AcDbObjectId block);
    AcGePoint3d position() const { return position_; }
    Acad::ErrorStatus setPosition(const AcGePoint3d& position);
    AcGeScale3d scaleFactors() const { return scale_; }
    // eInvalidInput for a zero factor.
    Acad::ErrorStatus setScaleFactors(const AcGeScale3d& scale);
    double rotation() const { return rotation_; }
    Acad::ErrorStatus setRotation(double rotation);
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);

    // Adds an attribute at the end; a resident reference adds it to the database (where
    // it stays open for the caller to close), a new one keeps it until it is added.
    Acad::ErrorStatus appendAttribute(AcDbAttribute* attribute);
    Acad::ErrorStatus appendAttribute(AcDbObjectId& id, AcDbAttribute* attribute);
    // The live attributes in order; the caller deletes the iterator.
    AcDbObjectIterator* attributeIterator() const;
    Acad::ErrorStatus openAttribute(AcDbAttribute*& attribute, AcDbObjectId id, AcDb::OpenMode mode,
                                    bool openErased = false) const;
    std::vector<AcDbObjectId> attributeIds() const;
    AcDbObjectId sequenceEndId() const { return attributes_.seqend(); }
    // For loaders: attributes and end marker read from a file, already resident.
    void restoreAttributes(std::vector<AcDbObjectId> attributes, AcDbObjectId seqend);

    // The block's entities placed by the reference, and its attributes.
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;

  protected:
    void subAddedToDatabase() override;

  private:
    AcGePoint3d position_;
    AcDbObjectId block_;
    AcGeScale3d scale_;
    double rotation_ = 0;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    arx::OwnedChain attributes_;
    std::vector<AcDbAttribute*> pending_;  // owned until the reference is added
};
