// Drawings made with the programming surface, saved and read back: what kplan writes
// (parcels with records, hatches, dictionaries, draw order) survives the file, new
// objects get fresh handles, and the file says what other programs need to know.
#include <gtest/gtest.h>

#include <sstream>

#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/arx/dbdict.h"
#include "host/arx/dbents.h"
#include "host/arx/dbhatch.h"
#include "host/arx/dbmtext.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsortents.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/dbxrecrd.h"
#include "host/arx/peek.h"
#include "host/dxf/Dxf.h"
#include "tests/host/dxf/DxfTestSupport.h"
#include "tests/support/KplanTest.h"

namespace {

class DxfDrawingTest : public KplanTest {
  protected:
    template <typename T, typename F>
    void edit(AcDbObjectId id, F change) {
        T* obj = nullptr;
        ASSERT_EQ(acdbOpenObject(obj, id, AcDb::kForWrite), Acad::eOk);
        change(obj);
        obj->close();
    }
    void setXData(AcDbObjectId id, resbuf* list) {
        edit<AcDbObject>(id, [&](AcDbObject* o) { EXPECT_EQ(o->setXData(list), Acad::eOk); });
        acutRelRb(list);
    }
    void eraseAll() {
        std::vector<AcDbObjectId> ids =
            arx::peek<AcDbBlockTableRecord>(database()->modelSpaceId())->entityIds();
        for (AcDbObjectId id : ids) {
            if (!id.isErased()) edit<AcDbObject>(id, [](AcDbObject* o) { o->erase(); });
        }
    }
    AcDbObjectId addHatch(AcDbObjectId boundary, const ACHAR* pattern) {
        auto* hatch = new AcDbHatch();
        hatch->setPatternScale(2.0);
        hatch->setPatternAngle(M_PI / 6);
        hatch->setPattern(AcDbHatch::kPreDefined, pattern);
        hatch->setAssociative(true);
        AcDbObjectIdArray ids;
        ids.append(boundary);
        EXPECT_EQ(hatch->appendLoop(AcDbHatch::kExternal, ids), Acad::eOk);
        AcDbObjectId id = addEntity(hatch);
        edit<AcDbObject>(boundary, [&](AcDbObject* o) { o->addPersistentReactor(id); });
        return id;
    }
    std::unique_ptr<AcDbDatabase> reload(const AcDbDatabase& from, std::string* text = nullptr,
                                         const std::string& version = "") {
        std::string saved = dxftest::saveText(from, version);
        if (text) *text = saved;
        std::string error;
        auto loaded = dxftest::loadText(saved, error);
        EXPECT_TRUE(loaded) << error;
        return loaded;
    }
};

TEST_F(DxfDrawingTest, ParcelsWithRecordsAndHatchesComeBack) {
    registerApp(L"FAPP_GHDK");
    AcDbObjectId parcel =
        addPolyline({{0, 0}, {100.125, 0}, {100.125, 50}, {0, 50}}, {0, 0.5, 0, 0});
    setXData(parcel, acutBuildList(1001, L"FAPP_GHDK", 1000, L"规划地块", 1002, L"{", 1000,
                                   L"FS_DKBH", 1000, L"A-01", 1040, 0.1, 1070, 3, 1002, L"}", 0));
    AcDbObjectId hatch = addHatch(parcel, L"ANSI31");

    auto loaded = reload(*database());
    ASSERT_TRUE(loaded);
    auto* pline = arx::peek<AcDbPolyline>(AcDbObjectId(loaded->find(parcel.handle().value())));
    ASSERT_NE(pline, nullptr);
    EXPECT_TRUE(pline->isClosed());
    ASSERT_EQ(pline->numVerts(), 4u);
    AcGePoint2d p;
    double bulge = 0;
    pline->getPointAt(1, p);
    pline->getBulgeAt(1, bulge);
    EXPECT_EQ(p, AcGePoint2d(100.125, 0));
    EXPECT_EQ(bulge, 0.5);
    EXPECT_EQ(pline->xdataValues(), arx::peek<AcDbObject>(parcel)->xdataValues());

    auto* h = arx::peek<AcDbHatch>(AcDbObjectId(loaded->find(hatch.handle().value())));
    ASSERT_NE(h, nullptr);
    EXPECT_STREQ(h->patternName(), L"ANSI31");
    EXPECT_TRUE(h->associative());
    EXPECT_DOUBLE_EQ(h->patternScale(), 2.0);
    EXPECT_DOUBLE_EQ(h->patternAngle(), M_PI / 6);
    EXPECT_EQ(h->patternLines(), arx::peek<AcDbHatch>(hatch)->patternLines());
    AcDbObjectIdArray sources;
    h->getAssocObjIdsAt(0, sources);
    ASSERT_EQ(sources.length(), 1);
    EXPECT_EQ(sources[0].handle(), parcel.handle());
    EXPECT_TRUE(pline->hasPersistentReactor(AcDbObjectId(loaded->find(hatch.handle().value()))));
}

TEST_F(DxfDrawingTest, EzdxfDrawsTheHatchPatternsFromTheirLines) {
    // Every predefined pattern the class tables name, as other programs see it.
    const ACHAR* patterns[] = {L"ANSI31", L"ANSI37", L"AR-SAND", L"DASH",  L"DOTS",  L"EARTH",
                               L"GRASS",  L"LINE",   L"NET",     L"STARS", L"SWAMP", L"TRIANG"};
    // A metric drawing takes the metric pattern file, as ezdxf's acadiso patterns.
    for (int measurement : {0, 1}) {
        SCOPED_TRACE(measurement);
        ASSERT_EQ(database()->setMeasurement(measurement), Acad::eOk);
        for (const ACHAR* name : patterns)
            addHatch(addRectangle(0, 0, 10, 10), name);
        std::string path = dxftest::makeTempFolder() + "/patterns.dxf";
        std::string error, output;
        ASSERT_TRUE(dxf::save(*database(), path, error)) << error;
        EXPECT_EQ(dxftest::runPython("check_patterns.py", {path}, output), 0) << output;
        auto loaded = dxf::load(path, error);
        ASSERT_TRUE(loaded) << error;
        EXPECT_EQ(loaded->measurement(), measurement);
        eraseAll();
    }
}

// The association lives in the file (the hatch's 330 in its boundary's {ACAD_REACTORS}):
// after a save and a load, editing the boundary still rebuilds the fill.
TEST_F(DxfDrawingTest, AFillReadFromAFileStillFollowsItsBoundary) {
    AcDbObjectId parcel = addRectangle(0, 0, 10, 10);
    AcDbObjectId hatch = addHatch(parcel, L"SOLID");
    std::string text;
    auto loaded = reload(*database(), &text);
    ASSERT_TRUE(loaded);
    EXPECT_NE(text.find("{ACAD_REACTORS"), std::string::npos);
    AcDbObjectId boundary(loaded->find(parcel.handle().value()));
    AcDbObjectId fill(loaded->find(hatch.handle().value()));
    AcDbPolyline* pline = nullptr;
    ASSERT_EQ(acdbOpenObject(pline, boundary, AcDb::kForWrite), Acad::eOk);
    pline->addVertexAt(2, AcGePoint2d(15, 5));
    pline->close();
    const AcDbHatch::Loop* loop = arx::peek<AcDbHatch>(fill)->loopAt(0);
    ASSERT_NE(loop, nullptr);
    ASSERT_EQ(loop->vertices.size(), 5u);
    EXPECT_EQ(loop->vertices[2], AcGePoint2d(15, 5));
}

TEST_F(DxfDrawingTest, AHatchWhoseBoundaryIsGoneIsWrittenNonAssociative) {
    AcDbObjectId parcel = addRectangle(0, 0, 10, 10);
    AcDbObjectId hatch = addHatch(parcel, L"SOLID");
    edit<AcDbObject>(parcel, [](AcDbObject* o) { o->erase(); });
    auto loaded = reload(*database());
    ASSERT_TRUE(loaded);
    auto* h = arx::peek<AcDbHatch>(AcDbObjectId(loaded->find(hatch.handle().value())));
    ASSERT_NE(h, nullptr);
    EXPECT_FALSE(h->associative());
    AcDbObjectIdArray sources;
    h->getAssocObjIdsAt(0, sources);
    EXPECT_EQ(sources.length(), 0);
    EXPECT_EQ(h->numLoops(), 1) << "the loop itself stays";
    EXPECT_EQ(loaded->find(parcel.handle().value()), nullptr) << "erased objects are not written";
}

TEST_F(DxfDrawingTest, DictionariesSoftLinksAndDrawOrderComeBack) {
    AcDbObjectId parcel = addRectangle(0, 0, 10, 10);
    AcDbObjectId island = addCircle(5, 5, 1);
    AcDbObjectId cover = addRectangle(1, 1, 2, 2);
    // The soft link of a parcel to its island, in the parcel's extension dictionary.
    edit<AcDbObject>(parcel, [&](AcDbObject* o) {
        ASSERT_EQ(o->createExtensionDictionary(), Acad::eOk);
        AcDbDictionary* dict = nullptr;
        ASSERT_EQ(acdbOpenObject(dict, o->extensionDictionary(), AcDb::kForWrite), Acad::eOk);
        auto* link = new AcDbXrecord();
        ads_name name;
        acdbGetAdsName(name, island);
        resbuf* list = acutBuildList(330, name, 1, L"岛", 0);
        EXPECT_EQ(link->setFromRbChain(*list), Acad::eOk);
        acutRelRb(list);
        AcDbObjectId id;
        dict->setAt(L"DKBJ_LINK_NLK", link, id);
        link->close();
        dict->close();
    });
    // A drawing-wide string in the named-object dictionary.
    AcDbDictionary* named = nullptr;
    ASSERT_EQ(database()->getNamedObjectsDictionary(named, AcDb::kForWrite), Acad::eOk);
    auto* colours = new AcDbDictionary();
    AcDbObjectId coloursId;
    named->setAt(L"FQMDKCOLOR", colours, coloursId);
    named->close();
    auto* entry = new AcDbXrecord();
    resbuf* list = acutBuildList(1, L"255,200,0", 0);
    entry->setFromRbChain(*list);
    acutRelRb(list);
    AcDbObjectId entryId;
    colours->setAt(L"R2", entry, entryId);
    entry->close();
    colours->close();
    // The parcel drawn on top.
    edit<AcDbBlockTableRecord>(database()->modelSpaceId(), [&](AcDbBlockTableRecord* space) {
        AcDbSortentsTable* order = nullptr;
        ASSERT_EQ(space->getSortentsTable(order, AcDb::kForWrite, true), Acad::eOk);
        AcDbObjectIdArray top;
        top.append(parcel);
        EXPECT_EQ(order->moveToTop(top), Acad::eOk);
        order->close();
    });

    auto loaded = reload(*database());
    ASSERT_TRUE(loaded);
    auto idIn = [&](AcDbObjectId id) { return AcDbObjectId(loaded->find(id.handle().value())); };
    auto* p = arx::peek<AcDbObject>(idIn(parcel));
    auto* dict = arx::peek<AcDbDictionary>(p->extensionDictionary());
    ASSERT_NE(dict, nullptr);
    AcDbObjectId linkId;
    ASSERT_EQ(dict->getAt(L"DKBJ_LINK_NLK", linkId), Acad::eOk);
    const db::ValueList& values = arx::peek<AcDbXrecord>(linkId)->values();
    ASSERT_EQ(values.size(), 2u);
    EXPECT_EQ(values[0].code, 330);
    EXPECT_EQ(std::get<db::Stub*>(values[0].data), idIn(island).stub());
    EXPECT_EQ(*values[1].text(), L"岛");

    auto* root = arx::peek<AcDbDictionary>(loaded->namedObjectsDictionaryId());
    ASSERT_NE(root, nullptr);
    AcDbObjectId c;
    ASSERT_EQ(root->getAt(L"FQMDKCOLOR", c), Acad::eOk);
    AcDbObjectId r2;
    ASSERT_EQ(arx::peek<AcDbDictionary>(c)->getAt(L"R2", r2), Acad::eOk);
    EXPECT_EQ(*arx::peek<AcDbXrecord>(r2)->values()[0].text(), L"255,200,0");

    auto* space = arx::peek<AcDbBlockTableRecord>(loaded->modelSpaceId());
    AcDbSortentsTable* order = nullptr;
    ASSERT_EQ(space->getSortentsTable(order, AcDb::kForRead), Acad::eOk);
    AcDbObjectIdArray drawn;
    order->getFullDrawOrder(drawn);
    order->close();
    ASSERT_EQ(drawn.length(), 3);
    EXPECT_EQ(drawn[0], idIn(island));
    EXPECT_EQ(drawn[1], idIn(cover));
    EXPECT_EQ(drawn[2], idIn(parcel));
}

// Fills sent behind by the host's DRAWORDER are drawn first by other programs too.
TEST_F(DxfDrawingTest, FillsSentBehindAreDrawnFirstByEzdxf) {
    AcDbObjectId first = addRectangle(0, 0, 10, 10);
    AcDbObjectId second = addRectangle(20, 0, 30, 10);
    AcDbObjectId firstFill = addHatch(first, L"SOLID");
    AcDbObjectId secondFill = addHatch(second, L"ANSI31");
    ads_name ss = {0, 0}, name;
    for (AcDbObjectId fill : {firstFill, secondFill}) {
        ASSERT_EQ(acdbGetAdsName(name, fill), Acad::eOk);
        ASSERT_EQ(acedSSAdd(name, ads_name_nil(ss) ? nullptr : ss, ss), RTNORM);
    }
    EXPECT_EQ(
        acedCommand(RTSTR, L"draworder", RTPICKS, ss, RTSTR, L"", RTSTR, L"B", RTSTR, L"", RTNONE),
        RTNORM);
    acedSSFree(ss);
    std::string path = dxftest::makeTempFolder() + "/order.dxf";
    std::string error, output;
    ASSERT_TRUE(dxf::save(*database(), path, error)) << error;
    ASSERT_EQ(dxftest::runPython("list_draw_order.py", {path}, output), 0) << output;
    std::string expected;
    for (AcDbObjectId id : {firstFill, secondFill, first, second}) {
        std::wstring handle = id.handle().text();
        expected += std::string(handle.begin(), handle.end()) + "\n";
    }
    EXPECT_EQ(output, expected);
}

TEST_F(DxfDrawingTest, NewObjectsGetFreshHandlesAndTheSeedMovesOn) {
    std::string error;
    auto loaded = dxf::load(std::string(KPLAN_TEST_DATA) + "/dxf/kept_parts.dxf", error);
    ASSERT_TRUE(loaded) << error;
    std::uint64_t seed = loaded->handseed().value();
    EXPECT_GE(seed, 0x200u) << "the file's $HANDSEED";
    AcDbBlockTableRecord* space = nullptr;
    ASSERT_EQ(acdbOpenObject(space, loaded->modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0));
    AcDbObjectId id;
    ASSERT_EQ(space->appendAcDbEntity(id, line), Acad::eOk);
    line->close();
    space->close();
    EXPECT_GE(id.handle().value(), seed);

    std::string text;
    auto again = reload(*loaded, &text);
    ASSERT_TRUE(again);
    EXPECT_NE(again->find(id.handle().value()), nullptr);
    EXPECT_GT(again->handseed().value(), id.handle().value());
    // The unknown entity still refers to the unknown object by its handle.
    EXPECT_NE(text.find("ACME_WIDGET\n  5\n100\n102\n{ACME_GROUP\n330\n101\n"), std::string::npos);
}

TEST_F(DxfDrawingTest, EveryApplicationOfXdataIsRegisteredInTheFile) {
    // A file whose xdata names an application its APPID table lacks.
    std::string text = dxftest::readFile(std::string(KPLAN_TEST_DATA) + "/dxf/kept_parts.dxf");
    std::string::size_type at = text.find("1001\nFAPP_GHDK\n1000\n规划地块\n  0\nLINE");
    ASSERT_NE(at, std::string::npos);
    text.replace(at, 14, "1001\nNOT_IN_APPID");
    std::string error;
    auto loaded = dxftest::loadText(text, error);
    ASSERT_TRUE(loaded) << error;
    auto again = reload(*loaded);
    ASSERT_TRUE(again);
    auto* apps = arx::peek<AcDbRegAppTable>(again->regAppTableId());
    ASSERT_NE(apps, nullptr);
    EXPECT_TRUE(apps->has(L"NOT_IN_APPID"));
    EXPECT_TRUE(apps->has(L"FAPP_GHDK"));

    // A file that brings the application table twice gets the missing name once.
    std::string::size_type end = text.find("ENDTAB\n", text.find("  2\nAPPID\n"));
    ASSERT_NE(end, std::string::npos);
    text.insert(end + 7,
                "  0\nTABLE\n  2\nAPPID\n  5\n9A\n330\n0\n100\nAcDbSymbolTable\n 70\n0\n"
                "  0\nENDTAB\n");
    auto twice = dxftest::loadText(text, error);
    ASSERT_TRUE(twice) << error;
    std::string written = dxftest::saveText(*twice, "");
    ASSERT_EQ(written.find("error: "), std::string::npos) << written;
    std::string::size_type first = written.find("  2\nNOT_IN_APPID\n");
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(written.find("  2\nNOT_IN_APPID\n", first + 1), std::string::npos);
    EXPECT_TRUE(dxftest::loadText(written, error)) << error;
}

TEST_F(DxfDrawingTest, OlderVersionsAreWrittenInTheCodePage) {
    auto* text = new AcDbText(AcGePoint3d(0, 0, 0), L"地块 🙂 ü", AcDbObjectId(), 2.5);
    AcDbObjectId id = addEntity(text);
    std::string saved;
    auto loaded = reload(*database(), &saved, "AC1018");
    ASSERT_TRUE(loaded);
    EXPECT_NE(saved.find("\n\xB5\xD8\xBF\xE9 \\U+D83D\\U+DE42 \xA8\xB9\n"), std::string::npos)
        << "GBK with escapes";
    EXPECT_NE(saved.find("$DWGCODEPAGE\n  3\nANSI_936\n"), std::string::npos);
    auto* back = arx::peek<AcDbText>(AcDbObjectId(loaded->find(id.handle().value())));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->text(), L"地块 🙂 ü");
}

TEST_F(DxfDrawingTest, ViewAndUnitsAreKept) {
    std::string error;
    auto loaded = dxf::load(std::string(KPLAN_TEST_DATA) + "/dxf/kept_parts.dxf", error);
    ASSERT_TRUE(loaded) << error;
    dxf::DrawingInfo info = dxf::drawingInfo(*loaded);
    EXPECT_EQ(info.version, "AC1024");
    EXPECT_EQ(info.codePage, "ANSI_936");
    EXPECT_EQ(info.insUnits, 6);
    EXPECT_TRUE(info.hasView);
    EXPECT_EQ(info.viewCenterX, 50.0);
    EXPECT_EQ(info.viewHeight, 80.0);
    dxf::setView(*loaded, 1000.5, 2000.25, 300, 2);
    dxf::setInsUnits(*loaded, 4);
    auto again = reload(*loaded);
    ASSERT_TRUE(again);
    info = dxf::drawingInfo(*again);
    EXPECT_EQ(info.viewCenterX, 1000.5);
    EXPECT_EQ(info.viewCenterY, 2000.25);
    EXPECT_EQ(info.viewHeight, 300.0);
    EXPECT_EQ(info.viewAspect, 2.0);
    EXPECT_EQ(info.insUnits, 4);
}

// Xdata stays packed as read until used; used, it is the values the file held.
TEST_F(DxfDrawingTest, XdataReadsAsTheValuesTheFileHeld) {
    ASSERT_FALSE(dxftest::ezdxfDrawings().empty());
    std::string error;
    auto loaded = dxf::load(dxftest::ezdxfDrawings() + "/full_r2010.dxf", error);
    ASSERT_TRUE(loaded) << error;
    const AcDbPolyline* parcel = nullptr;
    for (AcDbObjectId id : arx::peek<AcDbBlockTableRecord>(loaded->modelSpaceId())->entityIds()) {
        if (auto* p = arx::peek<AcDbPolyline>(id)) parcel = p;
    }
    ASSERT_NE(parcel, nullptr);
    EXPECT_NE(parcel->packedXdata(), nullptr) << "nothing has used it yet";
    db::ValueList expected = {
        db::Value::string(1001, L"FAPP_GHDK"),
        db::Value::string(1000, L"规划地块"),
        db::Value::string(1002, L"{"),
        db::Value::string(1000, L"FS_DKBH"),
        db::Value::string(1000, L"A-01"),
        db::Value::string(1000, L"FS_DKXZ"),
        db::Value::string(1000, L"R2"),
        db::Value::string(1000, L"FD_RJL"),
        db::Value::string(1000, L"2.5"),
        db::Value::string(1002, L"}"),
        db::Value::string(1001, L"KPLAN_TEST"),
        db::Value::string(1000, L"text"),
        db::Value::real(1040, 0.1),
        db::Value::integer(1070, 7),
        db::Value::integer(1071, 70000),
        db::Value::point(1010, {1.5, 2.5, 3.5}),
        db::Value::string(1005, L"0"),
    };
    EXPECT_EQ(parcel->xdataValues(), expected);
    EXPECT_EQ(parcel->packedXdata(), nullptr);
}

TEST_F(DxfDrawingTest, ADrawingMadeHereIsAValidFile) {
    registerApp(L"FAPP_GHDK");
    AcDbObjectId parcel = addRectangle(0, 0, 10, 10);
    setXData(parcel, acutBuildList(1001, L"FAPP_GHDK", 1000, L"规划地块", 0));
    addHatch(parcel, L"NET");
    auto* heavy = new AcDb2dPolyline(AcDb::k2dSimplePoly, AcGePoint3dArray(), 0, true);
    heavy->appendVertex(new AcDb2dVertex(AcGePoint3d(0, 0, 0)));
    heavy->appendVertex(new AcDb2dVertex(AcGePoint3d(5, 0, 0), 1.0));
    addEntity(heavy);
    auto* mtext = new AcDbMText();
    mtext->setContents((std::wstring(L"长文本") + std::wstring(400, L'字')).c_str());
    addEntity(mtext);
    std::string path = dxftest::makeTempFolder() + "/made.dxf";
    std::string error, output;
    ASSERT_TRUE(dxf::save(*database(), path, error)) << error;
    EXPECT_EQ(dxftest::runPython("compare_drawings.py", {"--audit", path}, output), 0) << output;
    auto loaded = dxf::load(path, error);
    ASSERT_TRUE(loaded) << error;
    EXPECT_EQ(dxftest::saveText(*loaded), dxftest::saveText(*reload(*loaded)));
}

}  // namespace
