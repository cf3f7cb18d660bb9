// Drawing-level helpers: space, symbol tables, system variables and their scoped holders,
// the last entity, the selection-set holder, the document lock and error messages.
#include <vector>

#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/arx/dbents.h"
#include "host/db/CommandLine.h"
#include "host/db/Leaks.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaCad.h"
#include "host/kova/KovaDocLock.h"
#include "host/kova/KovaError.h"
#include "host/kova/KovaSelSet.h"
#include "host/kova/KovaSysVar.h"
#include "tests/support/KplanTest.h"

namespace cad = kova::cad;

namespace {

std::vector<std::wstring> strings(const CStringArray& list) {
    std::vector<std::wstring> out;
    for (const CString& s : list)
        out.push_back(s.wstr());
    return out;
}

class CadTest : public KplanTest {
  protected:
    void SetUp() override {
        KplanTest::SetUp();
        arx::resetSystemVariables();
        db::commandLine().clearTranscript();
    }
    void TearDown() override {
        arx::resetSystemVariables();
        KplanTest::TearDown();
    }

    int osmode() {
        int value = -1;
        EXPECT_EQ(cad::GetSysVar(L"OSMODE", value), 1);
        return value;
    }
};

TEST_F(CadTest, CurrentSpaceFollowsTilemode) {
    EXPECT_EQ(cad::GetCurSpace(), 0);
    EXPECT_EQ(cad::IsPaperSpace(), 0);
    database()->setTilemode(false);
    EXPECT_EQ(cad::GetCurSpace(), 1);
    EXPECT_EQ(cad::IsPaperSpace(database()), 1);
}

TEST_F(CadTest, SymbolTableNames) {
    registerApp(L"FAPP_GHDK");
    registerApp(L"地块边界");
    struct Case {
        const ACHAR* table;
        std::vector<std::wstring> names;
    };
    const Case cases[] = {
        {L"APPID", {L"ACAD", L"FAPP_GHDK", L"地块边界"}},
        {L"appid", {L"ACAD", L"FAPP_GHDK", L"地块边界"}},
        {L"LAYER", {L"0"}},
        {L"LTYPE", {L"ByBlock", L"ByLayer", L"Continuous"}},
        {L"BLOCK_RECORD", {L"*Model_Space", L"*Paper_Space"}},
        {L"NOSUCHTABLE", {}},
    };
    for (const Case& c : cases) {
        CStringArray names;
        names.Add(L"left over");
        EXPECT_EQ(cad::GetSymTable(c.table, names), static_cast<int>(c.names.size()));
        EXPECT_EQ(strings(names), c.names);
    }
}

TEST_F(CadTest, SystemVariablesReadAndWritten) {
    int before = osmode();
    EXPECT_EQ(cad::SetSysVar(L"osmode", 0x221), 1);
    EXPECT_EQ(osmode(), 0x221);
    EXPECT_EQ(cad::SetSysVar(L"OSMODE", 70000), 0) << "out of a short's range";
    EXPECT_EQ(osmode(), 0x221);
    EXPECT_EQ(cad::SetSysVar(L"OSMODE", before), 1);

    CString layer;
    EXPECT_EQ(cad::GetSysVar(L"CLAYER", layer), 1);
    EXPECT_EQ(layer, L"0");
    double real = 0;
    EXPECT_EQ(cad::GetSysVar(L"PICKBOX", real), 1) << "an integer reads as a real";
    int number = 0;
    EXPECT_EQ(cad::GetSysVar(L"CLAYER", number), 0) << "a string is no integer";
    EXPECT_EQ(cad::GetSysVar(L"NOSUCHVAR", number), 0);
    EXPECT_EQ(cad::SetSysVar(L"NOSUCHVAR", 1), 0);
}

TEST_F(CadTest, ScopedVariablesAreRestored) {
    int before = osmode();
    {
        kova::CSysVar snap(L"OSMODE", (before & 0x3FFF) | 0x221);
        EXPECT_TRUE(snap.isSet());
        EXPECT_EQ(osmode(), (before & 0x3FFF) | 0x221);
    }
    EXPECT_EQ(osmode(), before);
    {
        kova::CSysVar refused(L"NOSUCHVAR", 1);
        EXPECT_FALSE(refused.isSet());
    }

    int echo = -1;
    for (bool off : {true, false}) {
        {
            kova::CSaveSysVar save(off);
            cad::GetSysVar(L"CMDECHO", echo);
            EXPECT_EQ(echo, off ? 0 : 1);
            cad::SetSysVar(L"CMDECHO", 0);  // whatever the holder's owner does
        }
        cad::GetSysVar(L"CMDECHO", echo);
        EXPECT_EQ(echo, 1);
    }
}

TEST_F(CadTest, LastEntityOfTheDrawing) {
    ads_name last;
    EXPECT_EQ(cad::GetLastEnt(last), 0);
    AcDbObjectId first = addCircle(0, 0, 1);
    AcDbObjectId inPaper = addCircle(1, 1, 1, database()->paperSpaceId());
    AcDbObjectId id;
    ASSERT_EQ(cad::GetLastEnt(last), 1);
    ASSERT_EQ(acdbGetObjectId(id, last), Acad::eOk);
    EXPECT_EQ(id, inPaper);

    AcDbEntity* ent = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(ent, inPaper, AcDb::kForWrite), Acad::eOk);
    ent->erase();
    ent->close();
    ASSERT_EQ(cad::GetLastEnt(last), 1);
    ASSERT_EQ(acdbGetObjectId(id, last), Acad::eOk);
    EXPECT_EQ(id, first);
}

TEST_F(CadTest, SelectionHolderFreesItsSet) {
    registerApp(L"FAPP_GHDK");
    AcDbObjectId parcel = addRectangle(0, 0, 10, 10);
    AcDbObjectId other = addRectangle(20, 0, 30, 10);
    addCircle(50, 50, 1);
    ASSERT_EQ(ARX_DATA::CFSimpleXData::SetTo(parcel, L"FAPP_GHDK", L"控规地块"), 1);
    long sets = db::leakCounts().liveSelectionSets;

    resbuf* filter = acutBuildList(RTDXF0, L"*POLYLINE", -3, 1001, L"FAPP_GHDK", 0);
    {
        kova::CFArxSelSet set;
        EXPECT_EQ(set.allSelect(filter), kova::CFArxSelSet::kSelected);
        EXPECT_EQ(set.length(), 1);
        AcDbObjectIdArray ids;
        set.asArray(ids);
        ASSERT_EQ(ids.length(), 1);
        EXPECT_EQ(ids[0], parcel);
        ads_name ss;
        set.asAdsName(ss);
        Adesk::Int32 n = 0;
        EXPECT_EQ(acedSSLength(ss, &n), RTNORM);
        EXPECT_EQ(n, 1);
        EXPECT_EQ(db::leakCounts().liveSelectionSets, sets + 1);

        // A new selection frees the old set first.
        AcGePoint3dArray window;
        for (AcGePoint3d p : {AcGePoint3d(-1, -1, 0), AcGePoint3d(35, -1, 0),
                              AcGePoint3d(35, 11, 0), AcGePoint3d(-1, 11, 0)}) {
            window.append(p);
        }
        EXPECT_EQ(set.windowPolygonSelect(window), kova::CFArxSelSet::kSelected);
        set.asArray(ids);
        EXPECT_EQ(std::vector<AcDbObjectId>(ids.begin(), ids.end()),
                  (std::vector<AcDbObjectId>{parcel, other}));
        EXPECT_EQ(db::leakCounts().liveSelectionSets, sets + 1);

        // Nothing found: no set.
        resbuf* none = acutBuildList(RTDXF0, L"HATCH", 0);
        EXPECT_EQ(set.allSelect(none), kova::CFArxSelSet::kNone);
        acutRelRb(none);
        EXPECT_FALSE(set.isInitialized());
        EXPECT_EQ(set.length(), 0);
        set.asArray(ids);
        EXPECT_TRUE(ids.isEmpty());
        EXPECT_EQ(db::leakCounts().liveSelectionSets, sets);

        EXPECT_EQ(set.allSelect(filter), kova::CFArxSelSet::kSelected);
    }
    acutRelRb(filter);
    EXPECT_EQ(db::leakCounts().liveSelectionSets, sets) << "freed with the holder";
}

TEST_F(CadTest, UserSelectionWithPromptsAndCancel) {
    AcDbObjectId a = addRectangle(0, 0, 10, 10);
    AcDbObjectId b = addCircle(50, 50, 1);
    auto input = db::useScriptedInput();
    input->select({a.handle().text(), b.handle().text()});
    input->cancel();
    kova::CFArxSelSet set;
    EXPECT_EQ(set.userSelect(L"\n选择要统计的地块[全部(ALL)]:", nullptr),
              kova::CFArxSelSet::kSelected);
    EXPECT_EQ(set.length(), 2);
    EXPECT_NE(db::commandLine().transcript().find(L"选择要统计的地块"), std::wstring::npos);
    EXPECT_EQ(set.userSelect(), kova::CFArxSelSet::kCanceled);
    EXPECT_FALSE(set.isInitialized());
}

TEST_F(CadTest, DocumentLockLastsAsLongAsTheHolder) {
    EXPECT_EQ(document()->lockCount(), 0);
    {
        kova::CFDocLock lock;
        EXPECT_TRUE(lock.isLocked());
        EXPECT_EQ(lock.document(), document());
        EXPECT_EQ(document()->lockCount(), 1);
    }
    EXPECT_EQ(document()->lockCount(), 0);
}

TEST_F(CadTest, ErrorMessagesNameFunctionAndStatus) {
    struct Case {
        Acad::ErrorStatus status;
        const ACHAR* tag;
        const wchar_t* printed;
    };
    const Case cases[] = {
        {Acad::eWasErased, L"qmplot::GetDkbjByClass", L"\nqmplot::GetDkbjByClass: eWasErased"},
        {Acad::eInvalidInput, L"FEntIsHide", L"\nFEntIsHide: eInvalidInput"},
    };
    for (const Case& c : cases) {
        db::commandLine().clearTranscript();
        kova::PrintErrorMsg(c.status, c.tag);
        EXPECT_EQ(db::commandLine().transcript(), c.printed);
    }
}

}  // namespace
