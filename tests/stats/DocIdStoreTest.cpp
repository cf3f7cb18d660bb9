#include "stats/DocIdStore.h"

#include "host/kova/KovaEnt.h"
#include "tests/stats/StatsFixture.h"

namespace {

class DocIdStoreTest : public StatsTest {
  protected:
    void SetUp() override {
        StatsTest::SetUp();
        forgetCurrent();
    }
    // A document opened by an earlier test may have had this address; its entry stays
    // in the store by design, so each drawing of these tests starts from an empty one.
    static void forgetCurrent() {
        FRemoveAllIdsDocData();
        FSetRegionToCurDoc({}, {}, {});
    }
    AcApDocument* openSecond() {
        AcApDocument* second = acDocManager->appendDocument();
        forgetCurrent();
        return second;
    }
};

TEST_F(DocIdStoreTest, MarksKeepRepeatsButAreReadOnceAndWithoutErasedOnes) {
    AcDbObjectId a = addRectangle(0, 0, 10, 10), b = addRectangle(20, 0, 30, 10);
    AcDbObjectId c = addRectangle(40, 0, 50, 10);
    EXPECT_EQ(FAddIdsToDocData(ids({a, a, b})), 3);
    EXPECT_EQ(FAddIdsToDocData(c), 1);
    EXPECT_EQ(FAddIdsToDocData(AcDbObjectId()), 0);  // the single form checks

    AcDbObjectIdArray out = ids({b});
    EXPECT_EQ(FGetIdsFromDocData(out), 2);  // not cleared; b not repeated
    EXPECT_EQ(out, ids({b, a, c}));

    // Erased after marking: skipped when read, still in the set.
    kova::ent::Erase(c);
    out.setLogicalLength(0);
    FGetIdsFromDocData(out);
    EXPECT_EQ(out, ids({a, b}));
    EXPECT_EQ(FAddIdsToDocData(c), 0);  // an erased id is refused by the single form

    // Removing one id removes every occurrence; the list form removes each.
    EXPECT_EQ(FRemoveIdsDocData(a), 2);
    EXPECT_EQ(FRemoveIdsDocData(a), 0);
    EXPECT_EQ(FRemoveIdsDocData(ids({b, c})), 2);
    out.setLogicalLength(0);
    EXPECT_EQ(FGetIdsFromDocData(out), 0);

    FAddIdsToDocData(ids({a, b}));
    FRemoveAllIdsDocData();
    EXPECT_EQ(FGetIdsFromDocData(out), 0);
    EXPECT_TRUE(out.isEmpty());
}

TEST_F(DocIdStoreTest, EachOpenDrawingHasItsOwnSets) {
    AcApDocument* first = document();
    AcDbObjectId a = addRectangle(0, 0, 10, 10);
    FAddIdsToDocData(a);
    FSetRegionToCurDoc(ids({a}), {}, ids({a}));

    AcApDocument* second = openSecond();
    ASSERT_EQ(acDocManager->curDocument(), second);
    AcDbObjectIdArray out, regions, parcels;
    EXPECT_EQ(FGetIdsFromDocData(out), 0);
    EXPECT_EQ(FGetRegionFromCurDoc(regions), 0);
    EXPECT_EQ(FGetCalcDKFromCurDoc(parcels), 0);
    FRemoveAllIdsDocData();  // clears the second drawing's marks only

    ASSERT_EQ(acDocManager->setCurDocument(first), Acad::eOk);
    EXPECT_EQ(FGetIdsFromDocData(out), 1);
    EXPECT_EQ(out, ids({a}));
    EXPECT_EQ(FGetRegionFromCurDoc(regions), 1);
    EXPECT_EQ(regions, ids({a}));
}

TEST_F(DocIdStoreTest, RegionListsAreReplacedCopiesAndRegionNullErasesOnlyRegions) {
    AcDbObjectId region = addRectangle(0, 0, 10, 10), error = addRectangle(20, 0, 30, 10);
    AcDbObjectId parcel = addRectangle(40, 0, 50, 10);
    FAddIdsToDocData(parcel);
    FSetRegionToCurDoc(ids({region}), ids({error}), ids({parcel}));

    AcDbObjectIdArray out = ids({parcel, parcel});  // replaced, not appended to
    EXPECT_EQ(FGetRegionFromCurDoc(out), 1);
    EXPECT_EQ(out, ids({region}));
    EXPECT_EQ(FGetErrRegionFromCurDoc(out), 1);
    EXPECT_EQ(out, ids({error}));
    EXPECT_EQ(FGetCalcDKFromCurDoc(out), 1);
    EXPECT_EQ(out, ids({parcel}));

    EXPECT_EQ(FSetRegionNull(), 1);
    EXPECT_TRUE(region.isErased());
    EXPECT_TRUE(error.isErased());
    EXPECT_FALSE(parcel.isErased());  // the calculated parcels are only forgotten
    EXPECT_EQ(FGetRegionFromCurDoc(out), 0);
    EXPECT_EQ(FGetErrRegionFromCurDoc(out), 0);
    EXPECT_EQ(FGetCalcDKFromCurDoc(out), 0);
    AcDbObjectIdArray marks;
    EXPECT_EQ(FGetIdsFromDocData(marks), 1);  // the marks stay
}

TEST_F(DocIdStoreTest, RegionNullOnAFreshDrawingErasesNothing) {
    AcDbObjectId kept = addRectangle(0, 0, 10, 10);
    FSetRegionToCurDoc(ids({kept}), {}, {});
    openSecond();
    EXPECT_EQ(FSetRegionNull(), 1);
    EXPECT_FALSE(kept.isErased());  // another drawing's region
    AcDbObjectIdArray out = ids({kept});
    EXPECT_EQ(FGetRegionFromCurDoc(out), 0);
    EXPECT_TRUE(out.isEmpty());
}

}  // namespace
