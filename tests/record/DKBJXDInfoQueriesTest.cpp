#include <functional>
#include <memory>
#include <string>

#include "host/arx/dbdict.h"
#include "host/arx/dbents.h"
#include "host/arx/dbxrecrd.h"
#include "host/db/Leaks.h"
#include "host/db/Progress.h"
#include "record/DKBJInfo.h"
#include "record/DKBJXDInfo.h"
#include "tests/record/ParcelFixture.h"

namespace {

// Keeps every progress event as text: "start <message> <total>", "step <n>", "end".
class RecordedProgress : public db::ProgressSink {
  public:
    void start(std::wstring_view message, long total) override {
        events.push_back(L"start " + std::wstring(message) + L" " + std::to_wstring(total));
    }
    void step(long position) override { events.push_back(L"step " + std::to_wstring(position)); }
    void end() override { events.push_back(L"end"); }
    std::vector<std::wstring> events;
};

}  // namespace

class DKBJXDInfoQueriesTest : public ParcelTest {
  protected:
    // A parcel of the application with number and class, at a place of its own.
    AcDbObjectId parcel(const wchar_t* app, const wchar_t* number, const wchar_t* cls,
                        AcDbObjectId space = {}) {
        double x = 200.0 * static_cast<double>(count_++);
        AcDbObjectId id = addRectangle(x, 0, x + 100, 100, space);
        if (std::wstring_view(app) == dk::FAPP_XZDK) {
            ARX_DATA::CFSimpleXData::SetTo(id, app, dk::MARK_XZDK);
        } else {
            stamp(id, app, dk::TYPE_KGDK, {});
        }
        if (number) ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKBH, number, app);
        if (cls) ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKXZ, cls, app);
        return id;
    }
    static AcDbObjectIdArray ids(std::initializer_list<AcDbObjectId> list) {
        AcDbObjectIdArray array;
        for (AcDbObjectId id : list)
            array.append(id);
        return array;
    }

    int count_ = 0;
};

TEST_F(DKBJXDInfoQueriesTest, ScansSelectByApplicationInTheCurrentSpace) {
    AcDbObjectId gh = parcel(dk::FAPP_GHDK, L"1", L"R2");
    AcDbObjectId fg = parcel(dk::FAPP_GHDK_FG, L"2", L"R2");
    AcDbObjectId zg = parcel(dk::FAPP_GHDK_ZG, L"3", L"R2");
    AcDbObjectId tx = parcel(dk::FAPP_GHDK_TX, L"4", L"R2");
    parcel(dk::FAPP_GHDK_FJ, L"5", L"R2");  // never planned here
    AcDbObjectId xz = parcel(dk::FAPP_XZDK, L"6", L"R2");
    AcDbObjectId ghdx = underground({{dk::FS_DXKJBH, L"D1"}}, 1);
    AcDbObjectId xzdx = underground({{dk::FS_DXKJBH, L"D2"}}, 0);
    first({{L"地块编号", L"7"}});  // old parcels are not scanned here
    AcDbObjectId paper = parcel(dk::FAPP_GHDK, L"8", L"R2", database()->paperSpaceId());
    AcDbObjectId circle = addCircle(5000, 5000, 10);
    stamp(circle, dk::FAPP_GHDK, dk::TYPE_KGDK, {});
    AcDbObjectId line = addEntity(new AcDbLine({0, 0, 0}, {1, 1, 0}));
    stamp(line, dk::FAPP_GHDK, dk::TYPE_KGDK, {});

    using Scan = std::function<int(AcDbObjectIdArray&)>;
    struct Case {
        const char* name;
        Scan scan;
        std::vector<AcDbObjectId> expected;
    } cases[] = {
        {"GetDkbj", [](auto& a) { return CDKBJXDInfo::GetDkbj(a); }, {gh, fg, zg, tx, circle}},
        {"GetAllDkbj",
         [](auto& a) { return CDKBJXDInfo::GetAllDkbj(a); },
         {gh, fg, zg, tx, xz, circle}},
        {"GetAllXZYD", [](auto& a) { return CDKBJXDInfo::GetAllXZYD(a); }, {xz}},
        {"GetDXKJ planned", [](auto& a) { return CDKBJXDInfo::GetDXKJ(a, 1); }, {ghdx}},
        {"GetDXKJ current", [](auto& a) { return CDKBJXDInfo::GetDXKJ(a, 0); }, {xzdx}},
        {"GetHaveBHDkbj planned",
         [](auto& a) { return CDKBJXDInfo::GetHaveBHDkbj(a, 1); },
         {gh, fg, zg, tx}},
        {"GetHaveBHDkbj current", [](auto& a) { return CDKBJXDInfo::GetHaveBHDkbj(a, 0); }, {xz}},
    };
    for (const Case& c : cases) {
        AcDbObjectIdArray found = ids({paper});  // emptied by every scan
        EXPECT_EQ(c.scan(found), static_cast<int>(c.expected.size())) << c.name;
        EXPECT_EQ(vec(found), c.expected) << c.name;
    }

    // Paper space becomes searchable when it is current.
    ASSERT_EQ(database()->setTilemode(false), Acad::eOk);
    AcDbObjectIdArray found;
    EXPECT_EQ(CDKBJXDInfo::GetDkbj(found), 1);
    EXPECT_EQ(vec(found), std::vector<AcDbObjectId>{paper});
}

TEST_F(DKBJXDInfoQueriesTest, CurrentPlanningTypeChoosesOneApplication) {
    AcDbObjectId gh = parcel(dk::FAPP_GHDK, L"1", L"R");
    AcDbObjectId fg = parcel(dk::FAPP_GHDK_FG, L"2", L"R");
    AcDbObjectId zg = parcel(dk::FAPP_GHDK_ZG, L"3", L"R");
    AcDbObjectId tx = parcel(dk::FAPP_GHDK_TX, L"4", L"R");
    parcel(dk::FAPP_GHDK_FJ, L"5", L"R");
    struct Case {
        const wchar_t* type;
        AcDbObjectId expected;
    } cases[] = {
        {L"KG,控规", gh}, {L"FG,分规", fg},     {L"ZG,总规", zg},
        {L"TX,体系", tx}, {L"FJ,风景园林", gh},  // a landscape plan searches the regulatory parcels
        {L"XX,其它", gh},
    };
    for (const Case& c : cases) {
        setPlanningType(c.type);
        AcDbObjectIdArray found;
        EXPECT_EQ(CDKBJXDInfo::GetCurGHTypeDkbj(found), 1) << CString(c.type);
        EXPECT_EQ(vec(found), std::vector<AcDbObjectId>{c.expected}) << CString(c.type);
    }
}

TEST_F(DKBJXDInfoQueriesTest, ClassPrefixAgainstExactClass) {
    AcDbObjectId r = parcel(dk::FAPP_GHDK, L"1", L"R");
    AcDbObjectId r1 = parcel(dk::FAPP_GHDK, L"2", L" R1 ");
    AcDbObjectId r21 = parcel(dk::FAPP_GHDK_ZG, L"3", L"R21");
    AcDbObjectId r2lower = parcel(dk::FAPP_GHDK, L"4", L"r2");
    AcDbObjectId g1 = parcel(dk::FAPP_GHDK, L"5", L"G1");
    AcDbObjectId xzR2 = parcel(dk::FAPP_XZDK, L"6", L"R2");
    AcDbObjectId none = parcel(dk::FAPP_GHDK, L"7", nullptr);
    AcDbObjectId gen1 = first({{L"地块编号", L"8"}, {L"地块类别", L"R22"}});
    AcDbObjectId all[] = {r, r1, r21, r2lower, g1, xzR2, none, gen1};
    AcDbObjectIdArray candidates;
    for (AcDbObjectId id : all)
        candidates.append(id);

    struct Case {
        const wchar_t* cls;
        int planned;
        std::vector<AcDbObjectId> prefix, exact;
    } cases[] = {
        {L"R", 1, {r, r1, r21, gen1}, {r}},
        {L"R2", 1, {r21, gen1}, {}},
        {L"R1", 1, {r1}, {r1}},
        {L"r", 1, {r2lower}, {}},
        {L"", 1, {}, {}},
        {L"R2", 0, {xzR2}, {xzR2}},
        {L"G", 0, {}, {}},
    };
    for (const Case& c : cases) {
        AcDbObjectIdArray prefix, exact;
        EXPECT_EQ(CDKBJXDInfo::GetDkbjByClass(c.cls, candidates, prefix, c.planned),
                  static_cast<int>(c.prefix.size()));
        EXPECT_EQ(vec(prefix), c.prefix) << CString(c.cls) << " " << c.planned;
        CDKBJXDInfo::GetDkbjByClassCompare(c.cls, candidates, exact, c.planned);
        EXPECT_EQ(vec(exact), c.exact) << CString(c.cls) << " " << c.planned;
    }

    // The scanning forms take the planned parcels of the current space (no old ones).
    AcDbObjectIdArray found;
    EXPECT_EQ(CDKBJXDInfo::GetDkbjByClass(L"R", found), 3);
    EXPECT_EQ(vec(found), (std::vector<AcDbObjectId>{r, r1, r21}));
    found = ids({r});  // results are appended without repeats
    EXPECT_EQ(CDKBJXDInfo::GetDkbjByClass(L"R", candidates, found), 4);
    EXPECT_EQ(vec(found), (std::vector<AcDbObjectId>{r, r1, r21, gen1}));
    found.removeAll();
    EXPECT_EQ(CDKBJXDInfo::GetDkbjByClassCompare(L"R21", found), 1);
    found.removeAll();
    EXPECT_EQ(CDKBJXDInfo::GetDkbjByClassCompare(L"R21", candidates, found), 1);
    found.removeAll();
    EXPECT_EQ(CDKBJXDInfo::GetXZYDByClass(L"R", found), 1);
    EXPECT_EQ(vec(found), std::vector<AcDbObjectId>{xzR2});
    found.removeAll();
    EXPECT_EQ(CDKBJXDInfo::GetXZYDByClass(L"R2", candidates, found), 1);

    // Erased candidates are never returned.
    erase(r1);
    found.removeAll();
    EXPECT_EQ(CDKBJXDInfo::GetDkbjByClass(L"R1", candidates, found), 0);
}

TEST_F(DKBJXDInfoQueriesTest, LargeAndMidClassesOfCodesAndChineseNames) {
    struct Parcel {
        const wchar_t* app;
        const wchar_t* cls;
    } parcels[] = {
        {dk::FAPP_GHDK, L"r21"},   {dk::FAPP_GHDK, L"R22"},      {dk::FAPP_GHDK, L" M1 "},
        {dk::FAPP_GHDK, L"公园"},  {dk::FAPP_GHDK, L"居住用地"}, {dk::FAPP_GHDK, L""},
        {dk::FAPP_GHDK, L"R22"},   {dk::FAPP_XZDK, L"G1"},       {dk::FAPP_XZDK, L"水域"},
        {dk::FAPP_GHDK_FJ, L"E1"},
    };
    AcDbObjectIdArray all;
    for (const Parcel& p : parcels)
        all.append(parcel(p.app, L"n", p.cls));

    using List = int (*)(CStringArray&);
    using FromCandidates = int (*)(const AcDbObjectIdArray&, CStringArray&);
    struct Case {
        const char* name;
        List scan;
        FromCandidates fromCandidates;
        std::vector<CString> expected;
    } cases[] = {
        {"full",
         &CDKBJXDInfo::GetAllDkbjClass,
         &CDKBJXDInfo::GetAllDkbjClass,
         {L"r21", L"R22", L"M1", L"公园", L"居住用地"}},
        {"large",
         &CDKBJXDInfo::GetAllDkbjLargeClass,
         &CDKBJXDInfo::GetAllDkbjLargeClass,
         {L"R", L"M", L"公园", L"居住"}},
        {"mid",
         &CDKBJXDInfo::GetAllDkbjMidClass,
         &CDKBJXDInfo::GetAllDkbjMidClass,
         {L"R2", L"M1", L"公园", L"居住用"}},
        {"current full",
         &CDKBJXDInfo::GetAllXZDkbjClass,
         &CDKBJXDInfo::GetAllXZDkbjClass,
         {L"G1", L"水域"}},
        {"current large",
         &CDKBJXDInfo::GetAllXZDkbjLargeClass,
         &CDKBJXDInfo::GetAllXZDkbjLargeClass,
         {L"G", L"水域"}},
        {"current mid",
         &CDKBJXDInfo::GetAllXZDkbjMidClass,
         &CDKBJXDInfo::GetAllXZDkbjMidClass,
         {L"G1", L"水域"}},
    };
    for (const Case& c : cases) {
        CStringArray scanned = strings({L"kept"});
        std::vector<CString> expected{L"kept"};
        expected.insert(expected.end(), c.expected.begin(), c.expected.end());
        EXPECT_EQ(c.scan(scanned), static_cast<int>(expected.size())) << c.name;
        EXPECT_EQ(vec(scanned), expected) << c.name;
        CStringArray listed;
        c.fromCandidates(all, listed);
        EXPECT_EQ(vec(listed), c.expected) << c.name;
    }

    // Parcels whose large class is listed.
    struct Trim {
        const wchar_t* classes;
        int planned;
        int count;
    } trims[] = {
        {L" R,M ", 1, 4}, {L"R", 1, 3}, {L"公园", 1, 1}, {L"居住,公园", 1, 2},
        {L"r", 1, 0},     {L"G", 0, 1}, {L"", 1, 0},     {L"E", 1, 0},
    };
    for (const Trim& t : trims) {
        AcDbObjectIdArray found;
        EXPECT_EQ(CDKBJXDInfo::GetDkbjTrimClass(t.classes, found, t.planned), t.count)
            << CString(t.classes);
    }
}

TEST_F(DKBJXDInfoQueriesTest, NumbersAreTrimmedAndComparedExactly) {
    AcDbObjectId a = parcel(dk::FAPP_GHDK, L" A-1 ", L"R");
    AcDbObjectId b = parcel(dk::FAPP_GHDK_FG, L"A-1", L"R");
    AcDbObjectId c = parcel(dk::FAPP_GHDK, L"a-1", L"R");
    parcel(dk::FAPP_XZDK, L"A-1", L"R");
    AcDbObjectId found;
    EXPECT_EQ(CDKBJXDInfo::GetDkbj(L"A-1", found), 1);
    EXPECT_EQ(found, a) << "the first one found";
    EXPECT_EQ(CDKBJXDInfo::GetDkbj(L"B", found), 0);
    AcDbObjectIdArray byNumber;
    EXPECT_EQ(CDKBJXDInfo::GetDkbjByBH(L"A-1", byNumber), 2);
    EXPECT_EQ(vec(byNumber), (std::vector<AcDbObjectId>{a, b}));
    AcDbObjectIdArray fromCandidates;
    AcDbObjectId gen1 = first({{L"地块编号", L"a-1"}});
    EXPECT_EQ(CDKBJXDInfo::GetDkbjByBH(L"a-1", ids({c, gen1, c}), fromCandidates), 2);
    EXPECT_EQ(vec(fromCandidates), (std::vector<AcDbObjectId>{c, gen1}));

    // Underground spaces.
    AcDbObjectId d1 = underground({{dk::FS_DXKJBH, L" D1"}, {dk::FS_DXKJXZ, L"S4"}}, 1);
    AcDbObjectId d2 = underground({{dk::FS_DXKJBH, L"D2"}, {dk::FS_DXKJXZ, L"S4 "}}, 1);
    AcDbObjectId d3 = underground({{dk::FS_DXKJBH, L"D1"}, {dk::FS_DKXZ, L"U1"}}, 0);
    AcDbObjectIdArray dx;
    EXPECT_EQ(CDKBJXDInfo::GetDXKJByBH(L"D1", ids({d1, d2, d3}), dx), 2);
    EXPECT_EQ(vec(dx), (std::vector<AcDbObjectId>{d1, d3}));
    dx.removeAll();
    EXPECT_EQ(CDKBJXDInfo::GetDXKJByField(dk::FS_DXKJXZ, L"S4", dx), 2);
    EXPECT_EQ(vec(dx), (std::vector<AcDbObjectId>{d1, d2}));
    CStringArray numbers;
    EXPECT_EQ(CDKBJXDInfo::GetAllDxkjBH(numbers, 1), 2);
    EXPECT_EQ(vec(numbers), (std::vector<CString>{L"D1", L"D2"}));
    numbers.RemoveAll();
    EXPECT_EQ(CDKBJXDInfo::GetAllDxkjBH(numbers, 0), 1);
    CStringArray uses;
    EXPECT_EQ(CDKBJXDInfo::GetAllDxkjClass(uses, 1), 1);
    EXPECT_EQ(vec(uses), std::vector<CString>{L"S4"});
    uses.RemoveAll();
    EXPECT_EQ(CDKBJXDInfo::GetAllDxkjClass(uses, 0), 1);
    EXPECT_EQ(vec(uses), std::vector<CString>{L"U1"}) << "no use: the class";
}

TEST_F(DKBJXDInfoQueriesTest, PointQueriesFindTheSmallestOutlineAround) {
    AcDbObjectId outer = addRectangle(0, 0, 100, 100);
    AcDbObjectId inner = addRectangle(20, 20, 40, 40);
    AcDbObjectId bulged = addPolyline({{200, 0}, {300, 0}}, {1.0, 1.0});  // a full circle
    AcDbObjectId current = addRectangle(400, 0, 500, 100);
    AcDbObjectId dxPlanned = addRectangle(0, 0, 50, 50);
    AcDbObjectId dxCurrent = addRectangle(0, 0, 60, 60);
    for (AcDbObjectId id : {outer, inner, bulged})
        stamp(id, dk::FAPP_GHDK, dk::TYPE_KGDK, {});
    ARX_DATA::CFSimpleXData::SetTo(current, dk::FAPP_XZDK, dk::MARK_XZDK);
    ARX_DATA::CFSimpleXData::SetTo(dxPlanned, dk::FAPP_GHDK_DX, dk::MARK_GHDX);
    ARX_DATA::CFSimpleXData::SetTo(dxCurrent, dk::FAPP_XZDK_DX, dk::MARK_XZDX);

    using Query = std::function<int(const AcGePoint3d&, AcDbObjectId&)>;
    struct Case {
        AcGePoint3d point;
        Query query;
        AcDbObjectId expected;  // null: nothing found
    } cases[] = {
        {{30, 30, 0}, [](auto& p, auto& id) { return CDKBJXDInfo::GetDkbj(p, id); }, inner},
        {{70, 70, 0}, [](auto& p, auto& id) { return CDKBJXDInfo::GetDkbj(p, id); }, outer},
        {{250, 45, 0}, [](auto& p, auto& id) { return CDKBJXDInfo::GetDkbj(p, id); }, bulged},
        {{250, -45, 0}, [](auto& p, auto& id) { return CDKBJXDInfo::GetDkbj(p, id); }, bulged},
        {{205, 45, 0}, [](auto& p, auto& id) { return CDKBJXDInfo::GetDkbj(p, id); }, {}},
        {{450, 50, 0}, [](auto& p, auto& id) { return CDKBJXDInfo::GetDkbj(p, id); }, {}},
        {{450, 50, 0}, [](auto& p, auto& id) { return CDKBJXDInfo::GetXZYDBj(p, id); }, current},
        {{30, 30, 0}, [](auto& p, auto& id) { return CDKBJXDInfo::GetDXKJ(p, id, 1); }, dxPlanned},
        {{55, 55, 0}, [](auto& p, auto& id) { return CDKBJXDInfo::GetDXKJ(p, id, 1); }, {}},
        {{55, 55, 0}, [](auto& p, auto& id) { return CDKBJXDInfo::GetDXKJ(p, id, 0); }, dxCurrent},
    };
    for (const Case& c : cases) {
        AcDbObjectId found;
        EXPECT_EQ(c.query(c.point, found), c.expected.isNull() ? 0 : 1) << "case " << (&c - cases);
        EXPECT_EQ(found, c.expected) << "case " << (&c - cases);
    }
    AcDbObjectId found;
    EXPECT_EQ(CDKBJXDInfo::GetDkbj(ids({outer, current}), AcGePoint3d(30, 30, 0), found), 1);
    EXPECT_EQ(found, outer) << "only the candidates count";
    EXPECT_EQ(CDKBJXDInfo::GetDXKJ(ids({dxCurrent, dxPlanned}), AcGePoint3d(30, 30, 0), found), 1);
    EXPECT_EQ(found, dxPlanned);
}

TEST_F(DKBJXDInfoQueriesTest, NumberedParcelScanReportsItsProgress) {
    auto recorded = std::make_shared<RecordedProgress>();
    std::shared_ptr<db::ProgressSink> previous = db::setProgressSink(recorded);
    AcDbObjectId a = parcel(dk::FAPP_GHDK, L"1", L"R");
    parcel(dk::FAPP_GHDK, L"  ", L"R");
    AcDbObjectId c = parcel(dk::FAPP_GHDK_ZG, L"3", L"R");
    AcDbObjectIdArray found;
    EXPECT_EQ(CDKBJXDInfo::GetHaveBHDkbj(found, 1), 2);
    EXPECT_EQ(vec(found), (std::vector<AcDbObjectId>{a, c}));
    EXPECT_EQ(recorded->events,
              (std::vector<std::wstring>{L"start 正在获取有编号地块，请稍候... 3", L"step 1",
                                         L"step 2", L"step 3", L"end"}));
    recorded->events.clear();
    EXPECT_EQ(CDKBJXDInfo::GetHaveBHDkbj(found, 0), 0);
    EXPECT_EQ(recorded->events,
              (std::vector<std::wstring>{L"start 正在获取有编号地块，请稍候... 0", L"end"}));
    // The other queries say nothing.
    recorded->events.clear();
    CStringArray classes;
    CDKBJXDInfo::GetAllDkbjClass(classes);
    CDKBJXDInfo::GetDkbj(found);
    EXPECT_TRUE(recorded->events.empty());
    db::setProgressSink(previous);
}

TEST_F(DKBJXDInfoQueriesTest, OldestFormatThroughTheLinkList) {
    setProjectParam(dk::PARAM_CALC_AREA, L"Y");
    AcDbObjectId id = addRectangle(0, 0, 100, 100);
    AcDbObjectId island = addRectangle(10, 10, 20, 20);
    CDKBJXDInfo(id).SetIsland(ids({island}));

    // The parcel's link list names its record in the drawing dictionary.
    {
        AcDbObject* obj = nullptr;
        ASSERT_EQ(acdbOpenObject(obj, id, AcDb::kForWrite), Acad::eOk);
        AcDbObjectId ext = obj->extensionDictionary();
        obj->close();
        AcDbDictionary* dict = nullptr;
        ASSERT_EQ(acdbOpenObject(dict, ext, AcDb::kForWrite), Acad::eOk);
        auto* links = new AcDbDictionary();
        AcDbObjectId linksId;
        ASSERT_EQ(dict->setAt(dk::QM_ENTLINK, links, linksId), Acad::eOk);
        dict->close();
        auto* list = new AcDbXrecord();
        AcDbObjectId listId;
        ASSERT_EQ(links->setAt(dk::QM_LINKLIST, list, listId), Acad::eOk);
        resbuf* rb =
            acutBuildList(1000, L"现状用地", 1000, L"other", 1000, L"规划用地", 1000, L"DK0007", 0);
        list->setFromRbChain(*rb);
        acutRelRb(rb);
        list->close();
        links->close();
    }
    resbuf* record =
        acutBuildList(1000, L"00_dkbh", 1000, L"07", 1000, L"00_rjl", 1000, L"2.0", 1000,
                      L"地块性质", 1000, L"R2", 1000, L"00_dlkkfx", 1000, L"北", 0);
    ASSERT_EQ(kova::dat::AddNamedObjDict(dk::QM_DKXX, L"DK0007", record), 1);
    acutRelRb(record);

    CStringArray values;
    double area = 0;
    AcDbObjectIdArray islands;
    ASSERT_EQ(CDKBJXDInfo::GetQm99PlotInfo(id, values, area, islands), 1);
    EXPECT_EQ(vec(values), (std::vector<CString>{L"07", L"", L"R2", L"", L"", L"", L"", L"2.0", L"",
                                                 L"", L"北"}));
    EXPECT_DOUBLE_EQ(area, 0.99);
    EXPECT_EQ(vec(islands), std::vector<AcDbObjectId>{island});

    EXPECT_EQ(CDKBJXDInfo::GetQm99PlotInfo(island, values, area, islands), 0);
    EXPECT_TRUE(values.IsEmpty());
    EXPECT_EQ(area, 0);
    EXPECT_EQ(CDKBJXDInfo::GetQm99PlotInfo(AcDbObjectId(), values, area, islands), 0);
}

TEST_F(DKBJXDInfoQueriesTest, EveryQueryReleasesWhatItUses) {
    // Run on a drawing with nothing to find and on one with parcels: a selection that
    // finds nothing must release its filter too.
    for (int round = 0; round < 2; ++round) {
        if (round == 1) {
            parcel(dk::FAPP_GHDK, L"1", L"R2");
            parcel(dk::FAPP_XZDK, L"2", L"G1");
            underground({{dk::FS_DXKJBH, L"D"}}, 1);
            underground({{dk::FS_DXKJBH, L"E"}}, 0);
            first({{L"地块编号", L"3"}, {L"地块类别", L"M1"}});
            first({{L"地块类别", L"M2"}}, {}, dk::APP_XZYD);
        }
        std::function<void()> queries[] = {
            [] {
                AcDbObjectIdArray a;
                CDKBJXDInfo::GetDkbj(a);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJXDInfo::GetCurGHTypeDkbj(a);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJXDInfo::GetAllDkbj(a);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJXDInfo::GetAllXZYD(a);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJXDInfo::GetDXKJ(a, 1);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJXDInfo::GetHaveBHDkbj(a, 1);
            },
            [] {
                AcDbObjectId id;
                CDKBJXDInfo::GetDkbj(AcGePoint3d(50, 50, 0), id);
            },
            [] {
                AcDbObjectId id;
                CDKBJXDInfo::GetXZYDBj(AcGePoint3d(250, 50, 0), id);
            },
            [] {
                AcDbObjectId id;
                CDKBJXDInfo::GetDXKJ(AcGePoint3d(50, 50, 0), id, 0);
            },
            [] {
                AcDbObjectId id;
                CDKBJXDInfo::GetDkbj(L"1", id);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJXDInfo::GetDkbjByBH(L"1", a);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJXDInfo::GetDXKJByField(dk::FS_DXKJBH, L"D", a);
            },
            [] {
                CStringArray s;
                CDKBJXDInfo::GetAllDxkjBH(s, 0);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJXDInfo::GetDkbjByClass(L"R", a);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJXDInfo::GetDkbjByClassCompare(L"R2", a);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJXDInfo::GetXZYDByClass(L"G", a);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJXDInfo::GetDkbjTrimClass(L"R,G", a, 0);
            },
            [] {
                CStringArray s;
                CDKBJXDInfo::GetAllDkbjMidClass(s);
            },
            [] {
                CStringArray s;
                CDKBJXDInfo::GetAllXZDkbjLargeClass(s);
            },
            [] {
                CStringArray s;
                CDKBJXDInfo::GetAllDxkjClass(s, 1);
            },
            [] {
                CStringArray s;
                CDKBJXDInfo().GetIndexArray(s);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJInfo::GetDkbj(a);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJInfo::GetAllXZYD(a);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJInfo::GetDkbjByClass(L"M", a);
            },
            [] {
                AcDbObjectIdArray a;
                CDKBJInfo::GetXZYDByClass(L"M", a);
            },
            [] {
                AcDbObjectId id;
                CDKBJInfo::GetDkbj(L"3", id);
            },
            [] {
                AcDbObjectId id;
                CDKBJInfo::GetXZYDBj(AcGePoint3d(1, 1, 0), id);
            },
            [] {
                CStringArray s;
                CDKBJInfo::GetAllDkbjClass(s);
            },
            [] {
                CStringArray s;
                CDKBJInfo::GetAllXZDkbjClass(s);
            },
        };
        for (auto& query : queries) {
            db::LeakCounts before = db::leakCounts();
            query();
            EXPECT_EQ(db::describeLeaks(before, db::leakCounts()), "")
                << "round " << round << " query " << (&query - queries);
        }
    }
}
