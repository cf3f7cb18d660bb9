// Fills behind the linework: the draw-order commands with their exact answers, what they
// select (the current space only, hatches and solids or hatches alone) and the order that
// results, kept in the space's SORTENTSTABLE.
#include "draw/DrawOrder.h"

#include <gtest/gtest.h>

#include "draw/Hatching.h"
#include "host/arx/acedads.h"
#include "host/arx/dbsortents.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/dbunknown.h"
#include "host/db/CommandLine.h"
#include "tests/support/KplanTest.h"

namespace {

class DrawOrderTest : public KplanTest {
  protected:
    void SetUp() override {
        KplanTest::SetUp();
        parcel_ = addRectangle(0, 0, 10, 10);
        FHatch(parcel_, fill_);
        solid_ = addEntity(new AcDbUnknownEntity("SOLID", {}));
        road_ = addRectangle(20, 0, 30, 10);
        FHatch(road_, L"ANSI31", 1, 0, roadFill_);
        db::commandLine().clearTranscript();
    }
    // The names of model space's entities from first drawn to last.
    std::vector<std::string> drawOrder() {
        std::vector<std::string> names;
        AcDbBlockTableRecord* space = nullptr;
        if (acdbOpenObject(space, database()->modelSpaceId(), AcDb::kForRead) != Acad::eOk)
            return names;
        AcDbSortentsTable* table = nullptr;
        AcDbObjectIdArray ids;
        if (space->getSortentsTable(table, AcDb::kForRead) == Acad::eOk) {
            table->getFullDrawOrder(ids);
            table->close();
        } else {
            for (AcDbObjectId id : space->entityIds())
                ids.append(id);
        }
        space->close();
        for (int i = 0; i < ids.length(); ++i) {
            AcDbObjectId id = ids[i];
            names.push_back(id == parcel_     ? "parcel"
                            : id == fill_     ? "fill"
                            : id == solid_    ? "solid"
                            : id == road_     ? "road"
                            : id == roadFill_ ? "roadFill"
                                              : "other");
        }
        return names;
    }
    AcDbObjectId parcel_, fill_, solid_, road_, roadFill_;
};

using Names = std::vector<std::string>;

TEST_F(DrawOrderTest, FSolidHatchDownSendsHatchesAndSolidsBehindEverythingElse) {
    EXPECT_EQ(drawOrder(), (Names{"parcel", "fill", "solid", "road", "roadFill"}));
    FSolidHatchDown();
    EXPECT_EQ(db::commandLine().commands(),
              std::vector<std::wstring>{L"draworder <3 selected> \"\" B \"\""});
    EXPECT_EQ(drawOrder(), (Names{"fill", "solid", "roadFill", "parcel", "road"}));
    EXPECT_EQ(transcript(), L"") << "the host took every answer";
}

TEST_F(DrawOrderTest, FSetHatchBottomOrTopMovesHatchesOnlyAndOneMeansFront) {
    struct Case {
        int top;
        Names order;
        const wchar_t* command;
    } cases[] = {
        {1, {"parcel", "solid", "road", "fill", "roadFill"}, L"draworder <2 selected> \"\" F"},
        {0, {"fill", "roadFill", "parcel", "solid", "road"}, L"draworder <2 selected> \"\" B"},
        {1, {"parcel", "solid", "road", "fill", "roadFill"}, L"draworder <2 selected> \"\" F"},
        {2, {"fill", "roadFill", "parcel", "solid", "road"}, L"draworder <2 selected> \"\" B"},
        {-1, {"fill", "roadFill", "parcel", "solid", "road"}, L"draworder <2 selected> \"\" B"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.top);
        db::commandLine().clearTranscript();
        FSetHatchBottomOrTop(c.top);
        EXPECT_EQ(db::commandLine().commands(), std::vector<std::wstring>{c.command});
        EXPECT_EQ(drawOrder(), c.order);
    }
    EXPECT_EQ(transcript(), L"");
}

TEST_F(DrawOrderTest, OnlyTheCurrentSpaceIsSelectedAndNothingRunsForNone) {
    // Fills of paper space are no concern of a model-space call, and the reverse.
    AcDbObjectId sheet = addRectangle(0, 0, 5, 5, database()->paperSpaceId());
    AcDbObjectId sheetFill;
    FHatch(sheet, sheetFill);  // made in the current space: model space
    ASSERT_EQ(database()->setTilemode(false), Acad::eOk);
    FSolidHatchDown();
    FSetHatchBottomOrTop(1);
    EXPECT_TRUE(db::commandLine().commands().empty()) << "paper space has no fills";
    ASSERT_EQ(database()->setTilemode(true), Acad::eOk);
    FSetHatchBottomOrTop(0);
    EXPECT_EQ(db::commandLine().commands(),
              std::vector<std::wstring>{L"draworder <3 selected> \"\" B"});
}

// The host's command takes exactly the answers its prompts ask for.
TEST_F(DrawOrderTest, TheHostRefusesAnswersThatDoNotFitItsPrompts) {
    ads_name ss;
    ASSERT_EQ(acedSSGet(L"X", nullptr, nullptr, nullptr, ss), RTNORM);
    struct Case {
        const char* what;
        int result;
        const wchar_t* said;
    } cases[] = {
        {"no end of selection", acedCommand(RTSTR, L"draworder", RTPICKS, ss, RTSTR, L"B", RTNONE),
         L"\nDRAWORDER: select objects, then an empty answer to end the selection."},
        {"no option", acedCommand(RTSTR, L"draworder", RTPICKS, ss, RTSTR, L"", RTNONE),
         L"\nDRAWORDER needs its option: Front or Back."},
        {"two trailing answers",
         acedCommand(RTSTR, L"._draworder", RTPICKS, ss, RTSTR, L"", RTSTR, L"_B", RTSTR, L"",
                     RTSTR, L"", RTNONE),
         L"\nDRAWORDER: more answers than it asks for."},
        {"unknown option",
         acedCommand(RTSTR, L"draworder", RTPICKS, ss, RTSTR, L"", RTSTR, L"X", RTNONE),
         L"\nInvalid option keyword for DRAWORDER: X"},
    };
    acedSSFree(ss);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.result, RTERROR);
        EXPECT_NE(transcript().find(c.said), std::wstring::npos) << transcript();
    }
    EXPECT_EQ(drawOrder(), (Names{"parcel", "fill", "solid", "road", "roadFill"}));
}

}  // namespace
