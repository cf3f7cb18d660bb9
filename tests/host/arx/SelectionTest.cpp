// Entity picks, selection sets and filter lists.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/arx/acdocman.h"
#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsortents.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/dbunknown.h"
#include "host/db/CommandLine.h"
#include "host/db/WildcardMatch.h"
#include "tests/support/LeakCheck.h"

namespace {

struct Props {
    Props(const wchar_t* layer = L"0", std::vector<const wchar_t*> apps = {}, bool paper = false,
          int color = 256)
        : layer(layer), apps(std::move(apps)), paper(paper), color(color) {}
    const wchar_t* layer;
    std::vector<const wchar_t*> apps;
    bool paper;
    int color;
};

void setShortVar(const wchar_t* name, short value) {
    resbuf rb{};
    rb.restype = RTSHORT;
    rb.resval.rint = value;
    ASSERT_EQ(acedSetVar(name, &rb), RTNORM);
}

short shortVar(const wchar_t* name) {
    resbuf rb{};
    EXPECT_EQ(acedGetVar(name, &rb), RTNORM);
    return rb.resval.rint;
}

// A drawing in a current document, with helpers that add named entities.
class SelectionTest : public ::testing::Test {
  protected:
    void SetUp() override {
        input = db::useScriptedInput();
        db::commandLine().clearTranscript();
        arx::resetSystemVariables();
        acedInitGet(0, nullptr);
        database = acDocManager->appendDocument()->database();
        for (const wchar_t* app : {L"FAPP_GHDK", L"FAPP_GHFWX", L"地块边界", L"OTHER"}) {
            registerApp(app);
        }
        addLayer(L"DK");
        addLayer(L"ROAD");
        addLayer(L"OFF", true, false);
        addLayer(L"FROZEN", false, true);
    }
    void TearDown() override {
        leaks.expectNone();
        acDocManager->closeAll();
        db::commandLine().setInput(nullptr);
        arx::resetSystemVariables();
    }

    void registerApp(const wchar_t* name) {
        AcDbRegAppTable* table = nullptr;
        ASSERT_EQ(database->getRegAppTable(table, AcDb::kForWrite), Acad::eOk);
        auto* record = new AcDbRegAppTableRecord();
        record->setName(name);
        ASSERT_EQ(table->add(record), Acad::eOk);
        record->close();
        table->close();
    }
    void addLayer(const wchar_t* name, bool off = false, bool frozen = false) {
        AcDbLayerTable* table = nullptr;
        ASSERT_EQ(database->getLayerTable(table, AcDb::kForWrite), Acad::eOk);
        auto* record = new AcDbLayerTableRecord();
        record->setName(name);
        record->setIsOff(off);
        record->setIsFrozen(frozen);
        ASSERT_EQ(table->add(record), Acad::eOk);
        record->close();
        table->close();
    }

    AcDbObjectId add(const std::string& label, AcDbEntity* entity, const Props& props = {}) {
        entity->setLayer(props.layer);
        entity->setColorIndex(static_cast<Adesk::UInt16>(props.color));
        AcDbBlockTableRecord* block = nullptr;
        AcDbObjectId space = props.paper ? database->paperSpaceId() : database->modelSpaceId();
        EXPECT_EQ(acdbOpenObject(block, space, AcDb::kForWrite), Acad::eOk);
        AcDbObjectId id;
        EXPECT_EQ(block->appendAcDbEntity(id, entity), Acad::eOk);
        for (const wchar_t* app : props.apps) {
            resbuf* xdata = acutBuildList(1001, app, 1000, L"x", 0);
            EXPECT_EQ(entity->setXData(xdata), Acad::eOk);
            acutRelRb(xdata);
        }
        entity->close();
        block->close();
        labels[id] = label;
        return id;
    }
    AcDbObjectId rectangle(const std::string& label, double x0, double y0, double x1, double y1,
                           const Props& props = {}, bool closed = true) {
        auto* pl = new AcDbPolyline();
        pl->addVertexAt(0, {x0, y0});
        pl->addVertexAt(1, {x1, y0});
        pl->addVertexAt(2, {x1, y1});
        pl->addVertexAt(3, {x0, y1});
        pl->setClosed(closed);
        return add(label, pl, props);
    }
    AcDbObjectId line(const std::string& label, double x0, double y0, double x1, double y1,
                      const Props& props = {}) {
        return add(label, new AcDbLine({x0, y0, 0}, {x1, y1, 0}), props);
    }
    AcDbObjectId circle(const std::string& label, double x, double y, double r,
                        const Props& props = {}) {
        return add(label, new AcDbCircle({x, y, 0}, AcGeVector3d::kZAxis, r), props);
    }
    AcDbObjectId text(const std::string& label, double x, double y, const wchar_t* s, double h,
                      const Props& props = {}) {
        return add(label, new AcDbText({x, y, 0}, s, AcDbObjectId(), h), props);
    }
    void erase(AcDbObjectId id) {
        AcDbEntity* e = nullptr;
        ASSERT_EQ(acdbOpenObject(e, id, AcDb::kForWrite), Acad::eOk);
        e->erase();
        e->close();
    }
    static std::wstring handleOf(AcDbObjectId id) { return id.handle().text(); }

    // The labels of a set's members, sorted; the set is freed.
    std::vector<std::string> take(ads_name ss) {
        std::vector<std::string> out;
        Adesk::Int32 n = 0;
        EXPECT_EQ(acedSSLength(ss, &n), RTNORM);
        for (Adesk::Int32 i = 0; i < n; ++i) {
            ads_name e;
            EXPECT_EQ(acedSSName(ss, i, e), RTNORM);
            AcDbObjectId id;
            EXPECT_EQ(acdbGetObjectId(id, e), Acad::eOk);
            out.push_back(labels.count(id) ? labels[id] : "?");
        }
        EXPECT_EQ(acedSSFree(ss), RTNORM);
        std::sort(out.begin(), out.end());
        return out;
    }
    // Runs a selection; the labels selected (empty when the call returned RTERROR).
    std::vector<std::string> select(const wchar_t* mode, const void* pt1, const void* pt2,
                                    resbuf* filter, int* rc = nullptr) {
        ads_name ss = {-1, -1};
        int status = acedSSGet(mode, pt1, pt2, filter, ss);
        if (rc) *rc = status;
        if (status != RTNORM) {
            EXPECT_TRUE(ads_name_nil(ss)) << "no set is handed out on failure";
            return {};
        }
        return take(ss);
    }
    std::string pickLabel(const ads_name e) {
        AcDbObjectId id;
        EXPECT_EQ(acdbGetObjectId(id, e), Acad::eOk);
        return labels.count(id) ? labels[id] : "?";
    }

    LeakCheck leaks;
    std::shared_ptr<db::ScriptedInput> input;
    AcDbDatabase* database = nullptr;
    std::map<AcDbObjectId, std::string> labels;
};

using Labels = std::vector<std::string>;

TEST(Wildcards, FollowTheHostsRules) {
    struct Case {
        const wchar_t* text;
        const wchar_t* pattern;
        bool match;
    } cases[] = {
        {L"LWPOLYLINE", L"*POLYLINE", true},
        {L"POLYLINE", L"*POLYLINE", true},
        {L"CIRCLE", L"*POLYLINE,CIRCLE", true},
        {L"LINE", L"*POLYLINE,CIRCLE", false},
        {L"lwpolyline", L"LWPOLY*", true},
        {L"A1", L"@#", true},
        {L"1A", L"@#", false},
        {L"地1", L"@#", true},
        {L"A-B", L"A.B", true},
        {L"AxB", L"A.B", false},
        {L"ABC", L"A?C", true},
        {L"AC", L"A?C", false},
        {L"B7", L"[A-C]#", true},
        {L"D7", L"[A-C]#", false},
        {L"D7", L"[~A-C]#", true},
        {L"LINE", L"~LINE", false},
        {L"ARC", L"~LINE", true},
        {L"A*B", L"A`*B", true},
        {L"AxB", L"A`*B", false},
        {L"A,B", L"A`,B", true},
        {L"FAPP_GHDK", L"FAPP_GH*", true},
        {L"FAPP_XZDK", L"FAPP_GHDK,FAPP_XZDK", true},
        {L"", L"*", true},
        {L"", L"", true},
        {L"X", L"", false},
        {L"AB", L"*A*B*", true},
        {L"ABAB", L"*AB", true},
        {L"[X", L"[X", true},
        // Plain names, compared without tokens: whole names only, case ignored.
        {L"circle", L"LINE,CIRCLE", true},
        {L"LINES", L"LINE,CIRCLE", false},
        {L"CIRCL", L"LINE,CIRCLE", false},
        {L"", L"LINE,", true},
        {L"", L"LINE", false},
        {L"地块", L"地块", true},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(db::wcmatch(c.text, c.pattern), c.match) << "case #" << &c - cases;
    }
}

// Patterns are kept tokenized for reuse; more of them than are kept, asked in turns, and
// the same pattern asked with and without case, still match each as its own.
TEST(Wildcards, ManyPatternsInTurnKeepTheirOwnMeaning) {
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 40; ++i) {
            std::wstring number = std::to_wstring(i);
            std::wstring pattern = L"*x" + number + L",~*";
            EXPECT_TRUE(db::wcmatch(L"ax" + number, pattern)) << i;
            EXPECT_FALSE(db::wcmatch(L"ax" + number + L"b", pattern)) << i;
        }
    }
    EXPECT_EQ(acutWcMatch(L"AX1", L"*x1"), RTERROR);
    EXPECT_TRUE(db::wcmatch(L"AX1", L"*x1"));
}

TEST(Wildcards, AcutWcMatchHeedsCase) {
    EXPECT_EQ(acutWcMatch(L"Name", L"N*"), RTNORM);
    EXPECT_EQ(acutWcMatch(L"Name", L"n*"), RTERROR);
    EXPECT_EQ(acutWcMatch(L"Name", L"[n]*"), RTERROR);
    EXPECT_EQ(acutWcMatch(L"Name", L"name"), RTERROR);
    EXPECT_EQ(acutWcMatch(L"Name", L"Line,Name"), RTNORM);
    EXPECT_EQ(acutWcMatch(nullptr, L"*"), RTERROR);
    EXPECT_TRUE(db::wcmatch(L"Name", L"n*"));
}

TEST_F(SelectionTest, FiltersOverTheWholeDrawing) {
    rectangle("parcel", 0, 0, 10, 10, {L"DK", {L"FAPP_GHDK"}});
    rectangle("open", 20, 0, 30, 10, {L"ROAD"}, false);
    circle("scope", 50, 50, 5, {L"0", {L"FAPP_GHFWX"}, false, 1});
    circle("both", 70, 50, 5, {L"DK", {L"FAPP_GHDK", L"FAPP_GHFWX"}});
    line("line", 0, 0, 5, 5, {L"ROAD"});
    text("text", 0, 20, L"地块", 2.5);
    AcGePoint3dArray vertices;
    for (auto [x, y] : {std::pair{0.0, 40.0}, {10.0, 40.0}, {10.0, 50.0}}) {
        vertices.append({x, y, 0});
    }
    add("old", new AcDb2dPolyline(AcDb::k2dSimplePoly, vertices, 0, true), {L"DK", {L"地块边界"}});
    rectangle("paper", 0, 0, 10, 10, {L"DK", {L"FAPP_GHDK"}, true});
    rectangle("frozen", 0, 0, 1, 1, {L"FROZEN"});
    erase(rectangle("erased", 0, 0, 10, 10, {L"DK", {L"FAPP_GHDK"}}));

    struct Case {
        const char* what;
        std::function<resbuf*()> filter;
        Labels expected;  // empty: RTERROR expected
    } cases[] = {
        {"no filter",
         [] { return nullptr; },
         {"both", "frozen", "line", "old", "open", "paper", "parcel", "scope", "text"}},
        {"type wildcard",
         [] { return acutBuildList(RTDXF0, L"*POLYLINE", 0); },
         {"frozen", "old", "open", "paper", "parcel"}},
        {"type list",
         [] { return acutBuildList(RTDXF0, L"LWPOLYLINE,circle", 0); },
         {"both", "frozen", "open", "paper", "parcel", "scope"}},
        {"negated type",
         [] { return acutBuildList(RTDXF0, L"~*POLYLINE", 0); },
         {"both", "line", "scope", "text"}},
        {"layer", [] { return acutBuildList(8, L"d?", 0); }, {"both", "old", "paper", "parcel"}},
        {"model space",
         [] { return acutBuildList(RTDXF0, L"LWPOLYLINE", 8, L"DK", 67, 0, 0); },
         {"parcel"}},
        {"paper space", [] { return acutBuildList(67, 1, 0); }, {"paper"}},
        {"closed",
         [] { return acutBuildList(RTDXF0, L"*POLYLINE", 70, 1, 0); },
         {"frozen", "old", "paper", "parcel"}},
        {"colour", [] { return acutBuildList(62, 1, 0); }, {"scope"}},
        {"one application",
         [] { return acutBuildList(-3, 1001, L"FAPP_GHDK", 0); },
         {"both", "paper", "parcel"}},
        {"application list",
         [] { return acutBuildList(RTDXF0, L"*POLYLINE", -3, 1001, L"地块边界,FAPP_GHFWX", 0); },
         {"old"}},
        {"application wildcard",
         [] { return acutBuildList(-3, 1001, L"fapp_gh*", 0); },
         {"both", "paper", "parcel", "scope"}},
        {"every listed application",
         [] { return acutBuildList(-3, 1001, L"FAPP_GHDK", 1001, L"FAPP_GHFWX", 0); },
         {"both"}},
        {"missing application", [] { return acutBuildList(-3, 1001, L"OTHER", 0); }, {}},
        {"or",
         [] { return acutBuildList(-4, L"<OR", RTDXF0, L"LINE", RTDXF0, L"TEXT", -4, L"OR>", 0); },
         {"line", "text"}},
        {"not",
         [] { return acutBuildList(-4, L"<NOT", RTDXF0, L"*POLYLINE,CIRCLE", -4, L"NOT>", 0); },
         {"line", "text"}},
        {"nested",
         [] {
             return acutBuildList(-4, L"<AND", -4, L"<OR", 8, L"DK", 8, L"ROAD", -4, L"OR>", -4,
                                  L"<NOT", -4, L"<OR", 67, 1, RTDXF0, L"LINE", -4, L"OR>", -4,
                                  L"NOT>", -4, L"AND>", 0);
         },
         {"both", "old", "open", "parcel"}},
        {"xor",
         [] {
             return acutBuildList(-4, L"<XOR", 8, L"DK", -3, 1001, L"FAPP_GHFWX", -4, L"XOR>", 0);
         },
         {"old", "paper", "parcel", "scope"}},
        {"relational", [] { return acutBuildList(-4, L">", 40, 4.0, 0); }, {"both", "scope"}},
        {"relational text height",
         [] { return acutBuildList(RTDXF0, L"TEXT", -4, L"<=", 40, 2.5, 0); },
         {"text"}},
        {"bit test",
         [] { return acutBuildList(RTDXF0, L"LWPOLYLINE", -4, L"&", 70, 1, 0); },
         {"frozen", "paper", "parcel"}},
        {"text contents", [] { return acutBuildList(1, L"地*", 0); }, {"text"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        resbuf* filter = c.filter();
        int rc = 0;
        Labels got = select(L"X", nullptr, nullptr, filter, &rc);
        acutRelRb(filter);
        EXPECT_EQ(rc, c.expected.empty() ? RTERROR : RTNORM);
        EXPECT_EQ(got, c.expected);
    }
}

// An entity kept as read is selected by the type its file gave it.
TEST_F(SelectionTest, KeptEntitiesAreSelectedByTheirFileType) {
    add("solid", new AcDbUnknownEntity("SOLID", {}));
    add("point", new AcDbUnknownEntity("POINT", {}));
    rectangle("parcel", 0, 0, 10, 10, {L"DK"});
    resbuf* filter = acutBuildList(RTDXF0, L"HATCH,SOLID", 0);
    EXPECT_EQ(select(L"X", nullptr, nullptr, filter), (Labels{"solid"}));
    acutRelRb(filter);
    filter = acutBuildList(RTDXF0, L"~POINT", 0);
    EXPECT_EQ(select(L"X", nullptr, nullptr, filter), (Labels{"parcel", "solid"}));
    acutRelRb(filter);
}

TEST_F(SelectionTest, MalformedFiltersFail) {
    rectangle("parcel", 0, 0, 10, 10);
    std::function<resbuf*()> filters[] = {
        [] { return acutBuildList(-4, L"<OR", RTDXF0, L"LINE", 0); },
        [] { return acutBuildList(-4, L"<NOT", RTDXF0, L"LINE", 8, L"0", -4, L"NOT>", 0); },
        [] { return acutBuildList(-4, L"<XOR", RTDXF0, L"LINE", -4, L"XOR>", 0); },
        [] { return acutBuildList(-4, L"<AND", -4, L"AND>", 0); },
        [] { return acutBuildList(-4, L"OR>", 0); },
        [] { return acutBuildList(-4, L"~", 8, L"0", 0); },
        [] { return acutBuildList(-4, L"<", 8, L"0", 0); },
        [] { return acutBuildList(-4, L"=", 0); },
        [] { return acutBuildList(10, asDblArray(AcGePoint3d(0, 0, 0)), 0); },
    };
    for (auto& make : filters) {
        resbuf* filter = make();
        ASSERT_NE(filter, nullptr);
        int rc = 0;
        EXPECT_EQ(select(L"X", nullptr, nullptr, filter, &rc), Labels{});
        EXPECT_EQ(rc, RTERROR) << "filter #" << &make - filters;
        acutRelRb(filter);
    }
}

TEST_F(SelectionTest, CrossingAndWindowPolygons) {
    // The polygon is the square (0,0)-(10,10) with a notch cut into its top edge.
    rectangle("inside", 2, 2, 4, 4);
    line("crossing", 5, 5, 15, 5);
    line("on edge", 0, 0, 0, 5);
    circle("outside", 30, 30, 2);
    circle("around", 5, 5, 50);
    text("text inside", 1, 1, L"AB", 1);
    text("text around", -100, -100, L"X", 300);
    line("spans notch", 3, 9, 7, 9);
    rectangle("paper", 2, 2, 4, 4, {L"0", {}, true});
    rectangle("off layer", 2, 2, 4, 4, {L"OFF"});
    erase(rectangle("erased", 2, 2, 4, 4));
    AcDbObjectId hidden = rectangle("invisible", 2, 2, 4, 4);
    {
        AcDbEntity* e = nullptr;
        ASSERT_EQ(acdbOpenObject(e, hidden, AcDb::kForWrite), Acad::eOk);
        e->setVisibility(AcDb::kInvisible);
        e->close();
    }

    double pts[][2] = {{0, 0}, {10, 0}, {10, 10}, {6, 10}, {5, 8}, {4, 10}, {0, 10}};
    resbuf* polygon = nullptr;
    resbuf* tail = nullptr;
    for (auto& p : pts) {
        ads_point q = {p[0], p[1], 0};
        resbuf* rb = acutBuildList(RTPOINT, q, 0);
        (tail ? tail->rbnext : polygon) = rb;
        tail = rb;
    }
    EXPECT_EQ(
        select(L"CP", polygon, nullptr, nullptr),
        (Labels{"crossing", "inside", "on edge", "spans notch", "text around", "text inside"}));
    EXPECT_EQ(select(L"_WP", polygon, nullptr, nullptr),
              (Labels{"inside", "on edge", "text inside"}));
    resbuf* lines = acutBuildList(RTDXF0, L"LINE", 0);
    EXPECT_EQ(select(L"CP", polygon, nullptr, lines),
              (Labels{"crossing", "on edge", "spans notch"}));
    acutRelRb(lines);
    acutRelRb(polygon);

    // A rectangle by two corners, given in either order.
    ads_point a = {12, -1, 0}, b = {-1, 6, 0};
    EXPECT_EQ(select(L"C", a, b, nullptr),
              (Labels{"crossing", "inside", "on edge", "text around", "text inside"}));
    EXPECT_EQ(select(L"W", a, b, nullptr), (Labels{"inside", "on edge", "text inside"}));

    // Too few vertices, or something other than points.
    resbuf* two = acutBuildList(RTPOINT, a, RTPOINT, b, 0);
    resbuf* bad = acutBuildList(RTPOINT, a, RTPOINT, b, RTSHORT, 1, 0);
    int rc = 0;
    select(L"CP", two, nullptr, nullptr, &rc);
    EXPECT_EQ(rc, RTERROR);
    select(L"CP", bad, nullptr, nullptr, &rc);
    EXPECT_EQ(rc, RTERROR);
    acutRelRb(two);
    acutRelRb(bad);
}

TEST_F(SelectionTest, CrossingLooksAtTheCurrentSpaceOnly) {
    rectangle("model", 2, 2, 4, 4);
    rectangle("paper", 2, 2, 4, 4, {L"0", {}, true});
    ads_point a = {0, 0, 0}, b = {10, 10, 0};
    EXPECT_EQ(select(L"C", a, b, nullptr), Labels{"model"});
    database->setTilemode(false);
    EXPECT_EQ(select(L"C", a, b, nullptr), Labels{"paper"});
    EXPECT_EQ(select(L"L", nullptr, nullptr, nullptr), Labels{"paper"});
    database->setTilemode(true);
    EXPECT_EQ(select(L"X", nullptr, nullptr, nullptr), (Labels{"model", "paper"}));
}

TEST_F(SelectionTest, LastAndAllOfTheCurrentSpace) {
    rectangle("first", 0, 0, 1, 1);
    rectangle("frozen", 0, 0, 1, 1, {L"FROZEN"});
    rectangle("last", 0, 0, 1, 1);
    erase(rectangle("erased", 0, 0, 1, 1));
    EXPECT_EQ(select(L"L", nullptr, nullptr, nullptr), Labels{"last"});
    EXPECT_EQ(select(L"A", nullptr, nullptr, nullptr), (Labels{"first", "last"}));
    int rc = 0;
    select(L"Q", nullptr, nullptr, nullptr, &rc);
    EXPECT_EQ(rc, RTERROR);
}

TEST_F(SelectionTest, UserSelection) {
    AcDbObjectId parcel = rectangle("parcel", 0, 0, 10, 10, {L"DK", {L"FAPP_GHDK"}});
    AcDbObjectId road = line("road", 20, 0, 20, 10, {L"ROAD"});
    AcDbObjectId paper = rectangle("paper", 0, 0, 10, 10, {L"DK", {}, true});
    AcDbObjectId gone = rectangle("gone", 0, 0, 1, 1);
    erase(gone);
    std::wstring h1 = handleOf(parcel), h2 = handleOf(road);

    struct Case {
        const char* what;
        std::vector<std::wstring> answers;
        bool filtered;  // only FAPP_GHDK parcels
        int rc;
        Labels expected;
    } cases[] = {
        {"handles", {L"handles:" + h1 + L"," + h2}, false, RTNORM, {"parcel", "road"}},
        {"handles filtered", {L"handles:" + h1 + L"," + h2}, true, RTNORM, {"parcel"}},
        {"other space and erased ignored",
         {L"handles:" + handleOf(paper) + L"," + handleOf(gone) + L"," + h2},
         false,
         RTNORM,
         {"road"}},
        {"picks until Enter",
         {L"pick:10,5", L"pick:20,5", L"pick:100,100", L""},
         false,
         RTNORM,
         {"parcel", "road"}},
        {"picked one filtered out", {L"pick:20,5", L""}, true, RTERROR, {}},
        {"typed point and handle",
         {L"10,5", L"handle:" + h2, L""},
         false,
         RTNORM,
         {"parcel", "road"}},
        {"all", {L"ALL", L""}, true, RTNORM, {"parcel"}},
        {"last", {L"L", L""}, false, RTNORM, {"road"}},
        {"invalid answer asked again", {L"what", L"pick:20,5", L""}, false, RTNORM, {"road"}},
        {"nothing chosen", {L""}, false, RTERROR, {}},
        {"Esc drops the choice", {L"pick:10,5", L"<esc>"}, false, RTCAN, {}},
        {"script runs dry", {L"pick:10,5"}, false, RTCAN, {}},
    };
    setShortVar(L"PICKBOX", 1);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        input->clear();
        db::commandLine().clearTranscript();
        for (const std::wstring& a : c.answers)
            input->push(a);
        resbuf* filter = c.filtered ? acutBuildList(-3, 1001, L"FAPP_GHDK", 0) : nullptr;
        int rc = 0;
        EXPECT_EQ(select(nullptr, nullptr, nullptr, filter, &rc), c.expected);
        EXPECT_EQ(rc, c.rc);
        acutRelRb(filter);
        EXPECT_EQ(input->pending(), 0u);
        EXPECT_EQ(db::commandLine().transcript().rfind(L"\nSelect objects: ", 0), 0u);
    }
}

TEST_F(SelectionTest, UserSelectionWithOwnPromptAndSinglePick) {
    rectangle("parcel", 0, 0, 10, 10);
    line("road", 20, 0, 20, 10);
    const ACHAR* prompts[2] = {L"\n选择要统计的地块[全部(ALL)]:", L"\n删除:"};
    input->push(L"pick:20,5");
    input->push(L"");
    EXPECT_EQ(select(L":$", prompts, nullptr, nullptr), Labels{"road"});
    EXPECT_NE(db::commandLine().transcript().find(prompts[0]), std::wstring::npos);

    input->clear();
    input->push(L"bogus");
    input->push(L"pick:0,5");
    input->push(L"pick:20,5");  // not asked for: one pick ends it
    EXPECT_EQ(select(L":S", nullptr, nullptr, nullptr), Labels{"parcel"});
    EXPECT_EQ(input->pending(), 1u);
}

TEST_F(SelectionTest, EntSel) {
    AcDbObjectId road = line("road", 0, 0, 10, 0);
    line("below", 0, 5, 10, 5);
    AcDbObjectId above = line("above", 0, 5, 10, 5);
    line("hidden layer", 0, 8, 10, 8, {L"OFF"});
    circle("ring", 20, 0, 2);
    text("label", 30, 0, L"ABCD", 2);
    AcDbObjectId paper = rectangle("paper", 0, 0, 10, 10, {L"0", {}, true});
    AcDbObjectId gone = line("gone", 0, 20, 10, 20);
    erase(gone);
    setShortVar(L"PICKBOX", 1);

    struct Case {
        const char* what;
        std::vector<std::wstring> answers;
        int rc;
        std::string picked;
        short errnoValue;
    } cases[] = {
        {"near a line", {L"pick:5,0.5"}, RTNORM, "road", 0},
        {"exactly on it", {L"pick:10,0"}, RTNORM, "road", 0},
        {"topmost of two", {L"pick:5,5"}, RTNORM, "above", 0},
        {"typed point", {L"5,-0.9"}, RTNORM, "road", 0},
        {"inside a circle misses it", {L"pick:20,0"}, RTERROR, "", 7},
        {"on the circle", {L"pick:22.5,0"}, RTNORM, "ring", 0},
        {"text box", {L"pick:33,1"}, RTNORM, "label", 0},
        {"nothing there", {L"pick:5,2.5"}, RTERROR, "", 7},
        {"layer off", {L"pick:5,8"}, RTERROR, "", 7},
        {"by handle", {L"handle:" + handleOf(road)}, RTNORM, "road", 0},
        {"handle in paper space", {L"handle:" + handleOf(paper)}, RTERROR, "", 7},
        {"handle of an erased entity", {L"handle:" + handleOf(gone)}, RTERROR, "", 7},
        {"unknown handle", {L"handle:FFFFF"}, RTERROR, "", 7},
        {"Enter", {L""}, RTERROR, "", 52},
        {"Esc", {L"<esc>"}, RTCAN, "", 0},
        {"text asked again", {L"road", L"pick:5,0"}, RTNORM, "road", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        input->clear();
        for (const std::wstring& a : c.answers)
            input->push(a);
        setShortVar(L"ERRNO", 0);
        ads_name e = {0, 0};
        ads_point at = {0, 0, 0};
        int rc = acedEntSel(L"\n点选范围线:", e, at);
        EXPECT_EQ(rc, c.rc);
        if (rc == RTNORM) {
            EXPECT_EQ(pickLabel(e), c.picked);
        }
        EXPECT_EQ(shortVar(L"ERRNO"), c.errnoValue);
        EXPECT_EQ(input->pending(), 0u);
    }

    // The draw order decides which of two lines on top of each other is picked.
    {
        AcDbBlockTableRecord* model = nullptr;
        ASSERT_EQ(acdbOpenObject(model, database->modelSpaceId(), AcDb::kForWrite), Acad::eOk);
        AcDbSortentsTable* order = nullptr;
        ASSERT_EQ(model->getSortentsTable(order, AcDb::kForWrite, true), Acad::eOk);
        AcDbObjectIdArray lower;
        lower.append(above);
        EXPECT_EQ(order->moveToBottom(lower), Acad::eOk);
        order->close();
        model->close();
    }
    input->push(L"pick:5,5");
    ads_name e;
    ads_point at;
    ASSERT_EQ(acedEntSel(nullptr, e, at), RTNORM);
    EXPECT_EQ(pickLabel(e), "below");

    // The picked point comes back; a pick by handle gives a point on the entity.
    input->push(L"pick:4,0.5");
    ASSERT_EQ(acedEntSel(nullptr, e, at), RTNORM);
    EXPECT_EQ(at[0], 4);
    EXPECT_EQ(at[1], 0.5);
    EXPECT_NE(db::commandLine().transcript().find(L"\nSelect object: "), std::wstring::npos);
    input->push(L"handle:" + handleOf(road));
    ASSERT_EQ(acedEntSel(nullptr, e, at), RTNORM);
    EXPECT_EQ(at[1], 0);
    EXPECT_GE(at[0], 0);
    EXPECT_LE(at[0], 10);
}

TEST_F(SelectionTest, EntSelWithKeyword) {
    line("road", 0, 0, 10, 0);
    input->push(L"d");
    acedInitGet(0, L"D");
    ads_name e;
    ads_point at;
    EXPECT_EQ(acedEntSel(L"\n选择范围线[绘制范围线(D)]:", e, at), RTKWORD);
    ACHAR kw[8];
    acedGetInput(kw, 8);
    EXPECT_EQ(std::wstring(kw), L"D");
}

TEST_F(SelectionTest, SetOperations) {
    AcDbObjectId a = rectangle("a", 0, 0, 1, 1);
    AcDbObjectId b = rectangle("b", 0, 0, 1, 1);
    ads_name na, nb;
    acdbGetAdsName(na, a);
    acdbGetAdsName(nb, b);

    ads_name empty;
    ASSERT_EQ(acedSSAdd(nullptr, nullptr, empty), RTNORM);
    Adesk::Int32 n = -1;
    EXPECT_EQ(acedSSLength(empty, &n), RTNORM);
    EXPECT_EQ(n, 0);
    ads_name out;
    EXPECT_EQ(acedSSName(empty, 0, out), RTERROR);

    ads_name ss;
    ASSERT_EQ(acedSSAdd(na, nullptr, ss), RTNORM);
    ads_name same;
    EXPECT_EQ(acedSSAdd(nb, ss, same), RTNORM);
    EXPECT_TRUE(ads_name_equal(ss, same));
    EXPECT_EQ(acedSSAdd(na, ss, same), RTNORM);  // already there: no second copy
    EXPECT_EQ(acedSSLength(ss, &n), RTNORM);
    EXPECT_EQ(n, 2);
    EXPECT_EQ(acedSSMemb(nb, ss), RTNORM);
    EXPECT_EQ(acedSSDel(nb, ss), RTNORM);
    EXPECT_EQ(acedSSMemb(nb, ss), RTERROR);
    EXPECT_EQ(acedSSDel(nb, ss), RTERROR);
    EXPECT_EQ(acedSSName(ss, 0, out), RTNORM);
    EXPECT_TRUE(ads_name_equal(out, na));
    EXPECT_EQ(acedSSName(ss, 1, out), RTERROR);
    EXPECT_EQ(acedSSName(ss, -1, out), RTERROR);

    // An entity name is no set name, and a bogus entity is refused.
    EXPECT_EQ(acedSSLength(na, &n), RTERROR);
    ads_name bogus = {999999, 1};
    EXPECT_EQ(acedSSAdd(bogus, ss, same), RTERROR);

    EXPECT_EQ(acedSSFree(ss), RTNORM);
    EXPECT_EQ(acedSSFree(ss), RTERROR);
    EXPECT_EQ(acedSSLength(ss, &n), RTERROR);
    EXPECT_EQ(acedSSMemb(na, ss), RTERROR);
    EXPECT_EQ(acedSSFree(empty), RTNORM);
}

TEST_F(SelectionTest, SetsAreCountedUntilFreedAndLimited) {
    rectangle("a", 0, 0, 1, 1);
    long before = db::leakCounts().liveSelectionSets;
    std::vector<std::array<std::int64_t, 2>> sets;
    for (;;) {
        ads_name ss;
        if (acedSSGet(L"X", nullptr, nullptr, nullptr, ss) != RTNORM) break;
        sets.push_back({ss[0], ss[1]});
        ASSERT_LE(sets.size(), 1000u);
    }
    EXPECT_EQ(sets.size(), 128u - static_cast<std::size_t>(before));
    EXPECT_EQ(db::leakCounts().liveSelectionSets, 128);
    EXPECT_EQ(leaks.leaks(), std::to_string(sets.size()) + " selection set(s) not freed");
    for (auto& s : sets)
        EXPECT_EQ(acedSSFree(s.data()), RTNORM);
    EXPECT_EQ(db::leakCounts().liveSelectionSets, before);
}

TEST_F(SelectionTest, NoDrawingNoSelection) {
    acDocManager->closeAll();
    ads_name ss, e;
    ads_point at;
    EXPECT_EQ(acedSSGet(L"X", nullptr, nullptr, nullptr, ss), RTERROR);
    input->push(L"pick:0,0");
    EXPECT_EQ(acedEntSel(nullptr, e, at), RTERROR);
}

}  // namespace
