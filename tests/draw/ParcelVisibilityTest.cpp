// A parcel hidden and shown with everything linked to it; its hatch-side companions
// alone; entities that cannot be changed passed over without stopping the walk.
#include "draw/ParcelVisibility.h"

#include <gtest/gtest.h>

#include "host/kova/KovaDat.h"
#include "host/kova/KovaEnt.h"
#include "tests/support/KplanTest.h"

namespace {

class ParcelVisibilityTest : public KplanTest {
  protected:
    void SetUp() override {
        KplanTest::SetUp();
        parcel = addRectangle(0, 0, 100, 100);
        fill = addRectangle(0, 0, 100, 100);
        block = addCircle(50, 50, 5);
        gcLine = addRectangle(-10, -10, 110, 110);
        gcDims[0] = addCircle(-10, 50, 1);
        gcDims[1] = addCircle(110, 50, 1);
        dcLine = addRectangle(-20, -20, 120, 120);
        dcDim = addCircle(-20, 50, 1);
        link(parcel, L"填充色块", fill);
        link(parcel, L"ATTBLK_DKBJ_XNAME", block);
        link(parcel, L"DK_LINK_GC_BACKLINE", gcLine);
        link(gcLine, L"GCBACKLINE_LINK_DIM", gcDims[0]);
        link(gcLine, L"GCBACKLINE_LINK_DIM", gcDims[1]);
        link(parcel, L"DK_LINK_DC_BACKLINE", dcLine);
        link(dcLine, L"DCBACKLINE_LINK_DIM", dcDim);
    }
    static void link(AcDbObjectId from, const wchar_t* name, AcDbObjectId to) {
        ASSERT_EQ(kova::dat::PasteSoftId(from, name, to), 1);
    }
    std::vector<AcDbObjectId> companions() const {
        return {fill, block, gcLine, gcDims[0], gcDims[1], dcLine, dcDim};
    }
    AcDbObjectId parcel, fill, block, gcLine, gcDims[2], dcLine, dcDim;
};

TEST_F(ParcelVisibilityTest, HideDKTCLeavesTheBoundaryAndHideDKShowsAllAgain) {
    EXPECT_EQ(FHideDKTC(parcel, 1), 7);
    for (AcDbObjectId id : companions())
        EXPECT_EQ(FEntIsHide(id), 1);
    EXPECT_EQ(FEntIsHide(parcel), 0);

    EXPECT_EQ(FHideDK(parcel, 0), 8);
    for (AcDbObjectId id : companions())
        EXPECT_EQ(FEntIsHide(id), 0);

    AcDbObjectIdArray parcels;
    parcels.append(parcel);
    parcels.append(addRectangle(200, 0, 300, 100));  // a parcel without companions
    EXPECT_EQ(FHideDK(parcels, 1), 9);
    EXPECT_EQ(FEntIsHide(parcel), 1);
    EXPECT_EQ(FEntIsHide(parcels[1]), 1);
    EXPECT_EQ(FHideDKTC(parcels, 0), 7);
    EXPECT_EQ(FEntIsHide(parcel), 1) << "the boundaries stay hidden";
    EXPECT_EQ(FEntIsHide(fill), 0);
}

TEST_F(ParcelVisibilityTest, WhatCannotBeChangedIsPassedOver) {
    ASSERT_EQ(kova::ent::Erase(gcDims[0]), 1);
    AcDbEntity* reader = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(reader, block, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(FHideDK(parcel, 1), 6) << "all but the erased dimension and the open block";
    reader->close();
    EXPECT_EQ(FEntIsHide(block), 0);
    EXPECT_EQ(FEntIsHide(dcDim), 1) << "the walk went on after them";
    EXPECT_EQ(FEntIsHide(parcel), 1);

    AcDbObjectId gone = addRectangle(0, 0, 1, 1);
    ASSERT_EQ(kova::ent::Erase(gone), 1);
    for (AcDbObjectId id : {AcDbObjectId(), gone}) {
        EXPECT_EQ(FHideDK(id, 1), 0);
        EXPECT_EQ(FHideDKTC(id, 1), 0);
        EXPECT_EQ(FEntIsHide(id), 0);
    }
    // An entity open for write elsewhere cannot be asked.
    AcDbEntity* writer = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(writer, parcel, AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(FEntIsHide(parcel), 0);
    writer->close();
    EXPECT_EQ(FEntIsHide(parcel), 1);
}

}  // namespace
