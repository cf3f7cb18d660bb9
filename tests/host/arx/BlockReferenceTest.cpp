// Block definitions with attribute definitions, and references owning their attributes:
// order, ownership, the end marker, copies, placement of the extents, write discipline.
#include "host/arx/acutads.h"
#include "host/arx/dbblkref.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/kova/KovaEnt.h"
#include "tests/support/KplanTest.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

class BlockReferenceTest : public KplanTest {};

TEST_F(BlockReferenceTest, AttributesBelongToTheirReference) {
    AcDbObjectId block = addAttributeBlock();
    auto* ref = new AcDbBlockReference({100, 200, 0}, block);
    auto* number = new AcDbAttribute({101, 203, 0}, L"A-01", L"DKBH");
    number->setInvisible(true);
    ASSERT_EQ(ref->appendAttribute(number), Acad::eOk);
    ASSERT_EQ(ref->appendAttribute(new AcDbAttribute({101, 201, 0}, L"B1", L"DKXZ")), Acad::eOk);
    AcDbObjectId refId = addEntity(ref);

    AcDbBlockReference* opened = nullptr;
    ASSERT_EQ(acdbOpenObject(opened, refId, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(opened->blockTableRecord(), block);
    EXPECT_FALSE(opened->sequenceEndId().isNull());
    std::vector<std::wstring> tags, values;
    AcDbObjectIterator* it = opened->attributeIterator();
    for (it->start(); !it->done(); it->step()) {
        AcDbAttribute* attribute = nullptr;
        ASSERT_EQ(opened->openAttribute(attribute, it->objectId(), AcDb::kForRead), Acad::eOk);
        EXPECT_EQ(attribute->ownerId(), refId);
        tags.push_back(attribute->tagConst());
        values.push_back(attribute->text());
        if (tags.size() == 1) {
            EXPECT_TRUE(attribute->isInvisible());
            EXPECT_EQ(attribute->flags(), AcDbAttributeTag::kInvisibleBit);
        }
        attribute->close();
    }
    delete it;
    EXPECT_EQ(opened->setRotation(1), Acad::eNotOpenForWrite);
    opened->close();
    EXPECT_EQ(tags, (std::vector<std::wstring>{L"DKBH", L"DKXZ"}));
    EXPECT_EQ(values, (std::vector<std::wstring>{L"A-01", L"B1"}));

    // A copy owns copies: other objects, the same contents.
    AcDbObjectId copyId = kova::ent::Copy(refId);
    ASSERT_FALSE(copyId.isNull());
    ASSERT_EQ(acdbOpenObject(opened, copyId, AcDb::kForWrite), Acad::eOk);
    std::vector<AcDbObjectId> copied = opened->attributeIds();
    EXPECT_EQ(opened->setScaleFactors(AcGeScale3d(0, 1, 1)), Acad::eInvalidInput);
    // Appended to a resident reference, an attribute stays open for its caller.
    AcDbObjectId added;
    auto* extra = new AcDbAttribute({0, 0, 0}, L"2.5", L"RJL");
    ASSERT_EQ(opened->appendAttribute(added, extra), Acad::eOk);
    extra->close();
    opened->close();
    ASSERT_EQ(copied.size(), 2u);
    AcDbAttribute* first = nullptr;
    ASSERT_EQ(acdbOpenObject(first, copied[0], AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(first->ownerId(), copyId);
    EXPECT_EQ(first->text(), L"A-01");
    ACHAR* tag = first->tag();
    EXPECT_STREQ(tag, L"DKBH");
    acutDelString(tag);
    first->close();

    // The definitions keep their prompts and flags.
    AcDbBlockTableRecord* record = nullptr;
    ASSERT_EQ(acdbOpenObject(record, block, AcDb::kForRead), Acad::eOk);
    std::vector<AcDbObjectId> inside = record->entityIds();
    record->close();
    AcDbAttributeDefinition* def = nullptr;
    ASSERT_EQ(acdbOpenObject(def, inside[1], AcDb::kForRead), Acad::eOk);
    EXPECT_STREQ(def->promptConst(), L"地块编号");
    EXPECT_TRUE(def->isPreset());
    EXPECT_FALSE(def->isConstant());
    EXPECT_EQ(def->setTag(L"X"), Acad::eNotOpenForWrite);
    def->close();
}

TEST_F(BlockReferenceTest, ExtentsArePlacedByTheReference) {
    AcDbObjectId block = addAttributeBlock();
    auto* ref = new AcDbBlockReference({100, 200, 0}, block);
    ref->setScaleFactors(AcGeScale3d(2));  // before it is added: allowed
    ref->setRotation(kPi / 2);
    AcDbObjectId id = addEntity(ref);
    AcDbEntity* ent = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(ent, id, AcDb::kForRead), Acad::eOk);
    AcDbExtents extents;
    ASSERT_EQ(ent->getGeomExtents(extents), Acad::eOk);
    ent->close();
    // The frame (0..10, 0..5) doubled and turned a quarter: x from 90 to 100, y from 200
    // to 220 (the attribute definitions' texts lie inside it).
    EXPECT_NEAR(extents.minPoint().x, 90, 1e-9);
    EXPECT_NEAR(extents.maxPoint().x, 100, 1e-9);
    EXPECT_NEAR(extents.minPoint().y, 200, 1e-9);
    EXPECT_NEAR(extents.maxPoint().y, 220, 1e-9);
}

}  // namespace
