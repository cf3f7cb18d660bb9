// Draw order of a block: sort handles, moving to top and bottom, above and below.
#include "host/arx/dbsortents.h"
#include "host/arx/dbsymtb.h"
#include "tests/support/KplanTest.h"

namespace {

class SortentsTableTest : public KplanTest {
  protected:
    void SetUp() override {
        KplanTest::SetUp();
        for (int i = 0; i < 4; ++i)
            ids_.push_back(addRectangle(i, i, i + 1, i + 1));
    }
    // Moves and returns the draw order as indexes of ids_.
    std::vector<int> move(const char* how, std::vector<int> which, int target = -1) {
        AcDbBlockTableRecord* space = nullptr;
        std::vector<int> order;
        if (acdbOpenObject(space, database()->modelSpaceId(), AcDb::kForWrite) != Acad::eOk) {
            return order;
        }
        AcDbSortentsTable* table = nullptr;
        EXPECT_EQ(space->getSortentsTable(table, AcDb::kForWrite, true), Acad::eOk);
        space->close();
        AcDbObjectIdArray ids;
        for (int i : which)
            ids.append(ids_[static_cast<std::size_t>(i)]);
        std::string h = how;
        AcDbObjectId t = target >= 0 ? ids_[static_cast<std::size_t>(target)] : AcDbObjectId();
        Acad::ErrorStatus es = h == "top"      ? table->moveToTop(ids)
                               : h == "bottom" ? table->moveToBottom(ids)
                               : h == "above"  ? table->moveAbove(ids, t)
                                               : table->moveBelow(ids, t);
        EXPECT_EQ(es, Acad::eOk);
        AcDbObjectIdArray drawn;
        table->getFullDrawOrder(drawn);
        table->close();
        for (int i = 0; i < drawn.length(); ++i) {
            for (std::size_t k = 0; k < ids_.size(); ++k) {
                if (ids_[k] == drawn[i]) order.push_back(static_cast<int>(k));
            }
        }
        return order;
    }
    std::vector<AcDbObjectId> ids_;
};

TEST_F(SortentsTableTest, MovesKeepTheRestInOrder) {
    struct Case {
        const char* how;
        std::vector<int> which;
        int target;
        std::vector<int> expected;
    } cases[] = {
        {"top", {0}, -1, {1, 2, 3, 0}},
        {"bottom", {3, 2}, -1, {2, 3, 1, 0}},  // keeps their relative order
        {"above", {2}, 1, {3, 1, 2, 0}},
        {"below", {0}, 3, {0, 3, 1, 2}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.how);
        EXPECT_EQ(move(c.how, c.which, c.target), c.expected);
    }
}

TEST_F(SortentsTableTest, SortHandlesAreTheEntitiesOwnHandlesHandedRound) {
    move("top", {0});
    AcDbBlockTableRecord* space = nullptr;
    ASSERT_EQ(acdbOpenObject(space, database()->modelSpaceId(), AcDb::kForRead), Acad::eOk);
    AcDbSortentsTable* table = nullptr;
    ASSERT_EQ(space->getSortentsTable(table, AcDb::kForRead), Acad::eOk);
    space->close();
    // Drawn 1,2,3,0: each takes the handle of the one it now stands in place of.
    EXPECT_EQ(table->entries().size(), 4u);
    AcDbHandle h;
    table->getSortHandle(ids_[0], h);
    EXPECT_EQ(h, ids_[3].handle());
    EXPECT_EQ(table->blockId(), database()->modelSpaceId());
    table->close();
}

TEST_F(SortentsTableTest, ABlockWithoutATableSaysSo) {
    AcDbBlockTableRecord* space = nullptr;
    ASSERT_EQ(acdbOpenObject(space, database()->modelSpaceId(), AcDb::kForRead), Acad::eOk);
    AcDbSortentsTable* table = nullptr;
    EXPECT_EQ(space->getSortentsTable(table, AcDb::kForRead), Acad::eKeyNotFound);
    EXPECT_EQ(space->getSortentsTable(table, AcDb::kForWrite, true), Acad::eNotOpenForWrite);
    space->close();
    EXPECT_EQ(table, nullptr);
}

}  // namespace
