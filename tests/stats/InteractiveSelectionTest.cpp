// The scope dialogues driven through the scripted command line: the prompts as the user
// sees them, what each answer chooses, and what the drawing holds afterwards.
#include "stats/InteractiveSelection.h"

#include "draw/Highlight.h"
#include "draw/ParcelVisibility.h"
#include "host/arx/dbents.h"
#include "host/arx/dbhatch.h"
#include "host/kova/KovaCad.h"
#include "host/kova/KovaDat.h"
#include "stats/BoundarySelection.h"
#include "tests/stats/StatsFixture.h"

namespace {

constexpr int kOldSnaps = 0x4005;  // endpoint, centre, snaps switched off

// Answers from a script, noting the object snap mode at each question.
class SnapWatchingInput : public db::InputSource {
  public:
    explicit SnapWatchingInput(std::shared_ptr<db::ScriptedInput> script)
        : script_(std::move(script)) {}
    db::Answer next(const db::InputRequest& request) override {
        int mode = -1;
        kova::cad::GetSysVar(L"OSMODE", mode);
        snaps.push_back(mode);
        return script_->next(request);
    }
    std::vector<int> snaps;

  private:
    std::shared_ptr<db::ScriptedInput> script_;
};

class InteractiveSelectionTest : public StatsTest {
  protected:
    void SetUp() override {
        StatsTest::SetUp();
        ASSERT_EQ(kova::cad::SetSysVar(L"OSMODE", kOldSnaps), 1);
        script_ = std::make_shared<db::ScriptedInput>();
        watch_ = std::make_shared<SnapWatchingInput>(script_);
        db::commandLine().setInput(watch_);
    }
    db::ScriptedInput& answers() { return *script_; }
    const std::vector<std::wstring>& prompts() const { return script_->prompts(); }

    AcDbObjectId scopeLine(double x0, double y0, double x1, double y1,
                           const ACHAR* app = dk::FAPP_GHFWX) {
        AcDbObjectId id = rect(x0, y0, x1, y1);
        EXPECT_EQ(ARX_DATA::CFSimpleXData::SetTo(id, app, L"范围线"), 1);
        return id;
    }
    AcDbObjectId parcel(double x0, double y0, double x1, double y1) {
        AcDbObjectId id = rect(x0, y0, x1, y1);
        planned(id, {{dk::FS_DKXZ, L"R2"}});
        return id;
    }
    static std::wstring handleOf(AcDbObjectId id) { return id.handle().text(); }
    static std::wstring at(double x, double y) {
        return std::to_wstring(X0 + x) + L"," + std::to_wstring(Y0 + y);
    }
    // Ends with the snaps as they were and no highlight line left over.
    void expectDrawingAsBefore(int entitiesBefore) {
        int mode = -1;
        kova::cad::GetSysVar(L"OSMODE", mode);
        EXPECT_EQ(mode, kOldSnaps);
        EXPECT_EQ(entityCount(), entitiesBefore);
    }

    std::shared_ptr<db::ScriptedInput> script_;
    std::shared_ptr<SnapWatchingInput> watch_;
};

const std::wstring kConfirmScope = L"\n是否按指定范围线[(Y)/(N)]<Y>:";
const std::wstring kConfirmPlan = L"\n是否按指定规划范围线统计[(Y)/(N)]<Y>:";
const std::wstring kPickOrDraw = L"\n选择范围线[绘制范围线(D)]:";
const std::wstring kPointAt = L"\n点选规划范围线:";
const std::wstring kNoScope = L"\n无规划范围线，是否继续统计[(Y)/(N)]<Y>:";
const std::wstring kMode = L"\n确定统计方式[选地块(S)/选闭合线(F)/绘闭合线(D)]<S>:";
const std::wstring kParcels = L"\n选择要统计的地块[全部(ALL)]:";
const std::wstring kTotal = L"\n输入总用地面积<不确定>:";
const std::wstring kClosed = L"\n选择闭合线:";
const std::wstring kStart = L"\n指定起点:";
const std::wstring kNext = L"\n指定下一点:";

TEST_F(InteractiveSelectionTest, PlanningScopeLineIsConfirmedPickedOrDrawn) {
    AcDbObjectId small = scopeLine(0, 0, 100, 100), big = scopeLine(200, 0, 500, 300);
    AcDbObjectId plain = rect(600, 0, 700, 100);
    AcDbObjectId circle = addCircle(X0 + 900, Y0, 10);
    const int before = entityCount();

    struct Case {
        const char* what;
        std::vector<std::wstring> answers;
        std::vector<std::wstring> prompts;
        int appended;  // -1: the drawn line
        AcDbObjectId expected;
    } cases[] = {
        {"Enter takes the largest", {L""}, {kConfirmScope}, 1, big},
        {"yes", {L"Y"}, {kConfirmScope}, 1, big},
        {"no, then a picked polyline",
         {L"N", L"handle:" + handleOf(plain)},
         {kConfirmScope, kPickOrDraw},
         1,
         plain},
        {"no, then a circle",
         {L"N", L"handle:" + handleOf(circle)},
         {kConfirmScope, kPickOrDraw},
         0,
         {}},
        {"no, then Enter", {L"N", L""}, {kConfirmScope, kPickOrDraw}, 0, {}},
        {"Esc at the question", {L"<esc>"}, {kConfirmScope}, 0, {}},
        {"no, then drawn",
         {L"N", L"D", at(0, 0), at(250, 0), at(250, 100), at(0, 100), L""},
         {kConfirmScope, kPickOrDraw, kStart, kNext, kNext, kNext, kNext},
         -1,
         {}},
        {"no, draw, Esc half way",
         {L"N", L"D", at(0, 0), L"<esc>"},
         {kConfirmScope, kPickOrDraw, kStart, kNext},
         0,
         {}},
    };
    for (const Case& c : cases) {
        script_->clear();
        watch_->snaps.clear();
        const std::size_t asked = prompts().size();
        for (const std::wstring& a : c.answers)
            answers().push(a);
        AcDbObjectIdArray scopes;
        scopes.append(small);  // appended to, not replaced
        int rc = KovaSelectGHFWX(scopes);
        std::vector<std::wstring> seen(prompts().begin() + static_cast<long>(asked),
                                       prompts().end());
        EXPECT_EQ(seen, c.prompts) << c.what;
        if (c.appended == -1) {
            ASSERT_EQ(scopes.length(), 2) << c.what;
            double area = 0;
            kova::ent::GetArea(scopes[1], area);
            EXPECT_DOUBLE_EQ(area, 25000) << c.what;
            // The snaps forced on while drawing: endpoint, intersection, nearest.
            EXPECT_EQ(watch_->snaps.back(), (kOldSnaps & 0x3FFF) | 0x221) << c.what;
            erase(scopes[1]);
        } else {
            EXPECT_EQ(rc, c.appended) << c.what;
            EXPECT_EQ(scopes.length(), 1 + c.appended) << c.what;
            if (c.appended) {
                EXPECT_EQ(scopes[1], c.expected) << c.what;
            }
        }
        expectDrawingAsBefore(before);
    }
}

TEST_F(InteractiveSelectionTest, NoScopeLineGoesStraightToPickOrDraw) {
    AcDbObjectId plain = rect(0, 0, 100, 100);
    answers().pickHandle(handleOf(plain));
    AcDbObjectIdArray scopes;
    EXPECT_EQ(KovaSelectGHFWX(scopes), 1);
    EXPECT_EQ(prompts(), std::vector<std::wstring>{kPickOrDraw});
    ASSERT_EQ(scopes.length(), 1);
    EXPECT_EQ(scopes[0], plain);
}

TEST_F(InteractiveSelectionTest, ScopeLinesAreConfirmedOrPointedAt) {
    // Two scope lines overlapping in x 100..200; a unit line far off.
    AcDbObjectId west = scopeLine(0, 0, 200, 100), east = scopeLine(100, 0, 400, 100);
    AcDbObjectId unit = scopeLine(1000, 0, 1050, 50, dk::FAPP_GHDY);
    AcDbObjectId both = parcel(120, 10, 180, 90);  // inside both scope lines
    AcDbObjectId onEdge = parcel(0, 0, 50, 100);   // shares three edges with west
    AcDbObjectId eastOnly = parcel(300, 10, 350, 90);
    AcDbObjectId astride = parcel(380, 10, 450, 90);  // crosses east's edge
    AcDbObjectId inUnit = parcel(1010, 10, 1040, 40);
    AcDbObjectId stranger = rect(310, 20, 320, 30);  // no parcel record
    (void)stranger;
    const int before = entityCount();

    struct Case {
        const char* what;
        std::vector<std::wstring> answers;
        std::vector<std::wstring> prompts;
        AcDbObjectIdArray scopes, parcels;  // empty: untouched
    } cases[] = {
        {"yes: the largest alone", {L"Y"}, {kConfirmPlan}, ids({east}), ids({both, eastOnly})},
        {"no, both pointed at",
         {L"N", L"pick:" + at(50, 50), L"pick:" + at(300, 50), L""},
         {kConfirmPlan, kPointAt, kPointAt, kPointAt},
         ids({west, east}),
         ids({both, onEdge, eastOnly})},
        {"no, east pointed at twice drops it",
         {L"N", L"pick:" + at(50, 50), L"pick:" + at(300, 50), L"pick:" + at(300, 60), L""},
         {kConfirmPlan, kPointAt, kPointAt, kPointAt, kPointAt},
         ids({west}),
         ids({both, onEdge})},
        {"no, the unit and a miss",
         {L"N", L"pick:" + at(1020, 20), L"pick:" + at(5000, 5000), L""},
         {kConfirmPlan, kPointAt, kPointAt, kPointAt},
         ids({unit}),
         ids({inUnit})},
        {"no, then Esc",
         {L"N", L"pick:" + at(50, 50), L"<esc>"},
         {kConfirmPlan, kPointAt, kPointAt},
         {},
         {}},
        {"no, nothing chosen", {L"N", L""}, {kConfirmPlan, kPointAt}, {}, {}},
        {"Esc at the question", {L"<esc>"}, {kConfirmPlan}, {}, {}},
    };
    for (const Case& c : cases) {
        script_->clear();
        const std::size_t asked = prompts().size();
        for (const std::wstring& a : c.answers)
            answers().push(a);
        AcDbObjectIdArray scopes, parcels = ids({astride});
        double total = 7.5;
        int rc = KovaSelectPlot(scopes, total, parcels);
        std::vector<std::wstring> seen(prompts().begin() + static_cast<long>(asked),
                                       prompts().end());
        EXPECT_EQ(seen, c.prompts) << c.what;
        EXPECT_EQ(total, 7.5) << c.what;
        if (c.parcels.isEmpty()) {
            EXPECT_EQ(rc, 0) << c.what;
            EXPECT_EQ(parcels, ids({astride})) << c.what;
        } else {
            EXPECT_EQ(rc, 1) << c.what;
            EXPECT_EQ(scopes, c.scopes) << c.what;
            EXPECT_EQ(parcels, c.parcels) << c.what;
        }
        expectDrawingAsBefore(before);
    }
}

TEST_F(InteractiveSelectionTest, WithoutScopeLinesParcelsClosedLinesOrADrawnLine) {
    AcDbObjectId a = parcel(0, 0, 100, 250), b = parcel(100, 0, 250, 100);
    AcDbObjectId far = parcel(1000, 0, 1100, 100);
    AcDbObjectId closed = rect(900, -10, 1200, 200);
    AcDbObjectId open = addPolyline({{X0, Y0}, {X0 + 300, Y0}, {X0 + 300, Y0 + 300}}, {}, false);
    const int before = entityCount();

    struct Case {
        const char* what;
        std::vector<std::wstring> answers;
        std::vector<std::wstring> prompts;
        AcDbObjectIdArray scopes, parcels;  // parcels empty: untouched
        double total;
    } cases[] = {
        {"S on Enter keeps the total",
         {L"", L"", L"handles:" + handleOf(a) + L"," + handleOf(far), L""},
         {kNoScope, kMode, kParcels, kTotal},
         {},
         ids({a, far}),
         7.5},
        {"S with ALL",
         {L"Y", L"S", L"ALL", L"", L""},
         {kNoScope, kMode, kParcels, kParcels, kTotal},
         {},
         ids({a, b, far}),
         7.5},
        {"S with a total typed",
         {L"Y", L"S", L"handles:" + handleOf(b), L"12.5"},
         {kNoScope, kMode, kParcels, kTotal},
         {},
         ids({b}),
         12.5},
        {"S, Esc at the total",
         {L"Y", L"S", L"handles:" + handleOf(b), L"<esc>"},
         {kNoScope, kMode, kParcels, kTotal},
         {},
         {},
         7.5},
        {"F keeps closed lines only",
         {L"Y", L"F", L"handles:" + handleOf(closed) + L"," + handleOf(open)},
         {kNoScope, kMode, kClosed},
         ids({closed}),
         ids({far}),
         7.5},
        {"D: 250 x 100 is 2.5 ha",
         {L"Y", L"D", at(0, 0), at(250, 0), at(250, 100), at(0, 100), L""},
         {kNoScope, kMode, kStart, kNext, kNext, kNext, kNext},
         {},
         ids({b}),
         2.5},
        {"D round nothing",
         {L"Y", L"D", at(2000, 0), at(2100, 0), at(2100, 100), L""},
         {kNoScope, kMode, kStart, kNext, kNext, kNext},
         {},
         {},
         0.5},
        {"no", {L"N"}, {kNoScope}, {}, {}, 7.5},
        {"Esc at the mode", {L"Y", L"<esc>"}, {kNoScope, kMode}, {}, {}, 7.5},
    };
    for (const Case& c : cases) {
        script_->clear();
        const std::size_t asked = prompts().size();
        for (const std::wstring& s : c.answers)
            answers().push(s);
        AcDbObjectIdArray scopes, parcels = ids({a, b, far});
        double total = 7.5;
        int rc = KovaSelectPlot(scopes, total, parcels);
        std::vector<std::wstring> seen(prompts().begin() + static_cast<long>(asked),
                                       prompts().end());
        EXPECT_EQ(seen, c.prompts) << c.what;
        EXPECT_NEAR(total, c.total, 1e-9) << c.what;
        EXPECT_EQ(scopes, c.scopes) << c.what;
        if (c.parcels.isEmpty()) {
            EXPECT_EQ(rc, 0) << c.what;
            EXPECT_EQ(parcels, ids({a, b, far})) << c.what;
        } else {
            EXPECT_EQ(rc, 1) << c.what;
            EXPECT_EQ(parcels, c.parcels) << c.what;
        }
        expectDrawingAsBefore(before);
    }
}

TEST_F(InteractiveSelectionTest, EnclosedMeansInsideOrOnTheEdgeWithinTheOffset) {
    AcDbObjectId scope = rect(0, 0, 100, 100);
    AcDbObjectId inside = parcel(10, 10, 20, 20), sharing = parcel(0, 0, 100, 50);
    AcDbObjectId nearOut = parcel(50, 50, 100.4, 90);  // 0.4 past the edge
    AcDbObjectId farOut = parcel(50, 10, 101, 20);     // 1 past the edge
    AcDbObjectId outside = parcel(200, 0, 300, 100);
    AcDbObjectId notParcel = rect(30, 30, 40, 40);
    AcDbObjectId arc = poly({{60, 60}, {80, 60}}, {1.0, 1.0});  // a disc of radius 10
    planned(arc);
    (void)notParcel;
    resbuf* filter = acutBuildList(RTDXF0, L"*POLYLINE", -3, 1001, dk::LIST_GHXZDK, 0);
    struct Case {
        const char* what;
        int crossing;
        double offset;
        AcDbObjectIdArray expected;
    } cases[] = {
        {"enclosed, half a unit", 0, -0.5, ids({inside, sharing, nearOut, arc})},
        {"enclosed, exact", 0, 0, ids({inside, sharing, arc})},
        {"crossing too", 1, -0.5, ids({inside, sharing, nearOut, farOut, arc})},
    };
    for (const Case& c : cases)
        EXPECT_EQ(FSSGetByEntBoundaryZoomIds(scope, filter, c.crossing, c.offset, 0), c.expected)
            << c.what;
    EXPECT_TRUE(FSSGetByEntBoundaryZoomIds(addEntity(new AcDbLine({0, 0, 0}, {1, 1, 0})), filter, 0,
                                           -0.5, 1)
                    .isEmpty());
    acutRelRb(filter);
    (void)outside;
}

TEST_F(InteractiveSelectionTest, HighlightIsAPlainLinkedCopyThatGoesWithItsLine) {
    AcDbObjectId line = scopeLine(0, 0, 100, 100);
    AcDbObjectId copy = FColorPolylineViewGL(line, 4, 0, 4.0);
    ASSERT_FALSE(copy.isNull());
    EXPECT_EQ(kova::ent::GetEntColor(copy), 4);
    double area = 0;
    kova::ent::GetArea(copy, area);
    EXPECT_DOUBLE_EQ(area, 10000);
    AcDbObjectIdArray linked;
    kova::dat::GetSoftIds(line, kColorLineLink, linked);
    EXPECT_EQ(linked, ids({copy}));
    // No scope-line record on the copy: the dialogues must not offer it.
    AcDbObjectIdArray scopes;
    answers().push(L"Y");
    KovaSelectGHFWX(scopes);
    EXPECT_EQ(scopes, ids({line}));
    EXPECT_TRUE(copy.isErased());  // the dialogue cleared the line's highlights
    AcDbObjectId again = FColorPolylineViewGL(line, 4, 0, 4.0);
    EXPECT_EQ(FUnColorPolylineViewGL(line), 1);
    EXPECT_TRUE(again.isErased());
    EXPECT_TRUE(FColorPolylineViewGL(AcDbObjectId(), 4, 0, 4.0).isNull());
}

TEST_F(InteractiveSelectionTest, PreviewHatchesTheCrossingPartsWithoutIslands) {
    AcDbObjectId boundary = rect(0, 0, 100, 100);
    AcDbObjectId inside = parcel(10, 10, 40, 40);
    AcDbObjectId crossing = parcel(50, 50, 150, 150);  // 50 x 50 inside
    AcDbObjectId island = rect(60, 60, 70, 70);
    islands(crossing, {island});
    kova::ent::ChangeColor(crossing, 3);
    const int before = entityCount();
    kova::ent::Hide(inside, 1);

    AcDbObjectIdArray hatches;
    EXPECT_EQ(FPreViewAllPlot(boundary, ids({inside, crossing}), ids({crossing}), hatches), 1);
    ASSERT_EQ(hatches.length(), 1);
    EXPECT_EQ(kova::ent::GetEntColor(hatches[0]), 3);
    // The part inside the boundary, the island a loop of its own.
    AcDbHatch* hatch = nullptr;
    ASSERT_EQ(acdbOpenObject(hatch, hatches[0], AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(hatch->numLoops(), 2);
    AcDbExtents box;
    EXPECT_EQ(hatch->getGeomExtents(box), Acad::eOk);
    hatch->close();
    EXPECT_NEAR(box.minPoint().x, X0 + 50, 1e-6);
    EXPECT_NEAR(box.maxPoint().x, X0 + 100, 1e-6);
    EXPECT_NEAR(box.minPoint().y, Y0 + 50, 1e-6);
    EXPECT_NEAR(box.maxPoint().y, Y0 + 100, 1e-6);
    EXPECT_EQ(FEntIsHide(inside), 0);
    EXPECT_EQ(entityCount(), before + 1);  // the hatch; every region erased

    AcDbObjectIdArray none;
    EXPECT_EQ(FPreViewAllPlot(boundary, {}, {}, none), 0);
    EXPECT_EQ(FPreViewAllPlot(AcDbObjectId(), ids({inside}), {}, none), 0);
    EXPECT_EQ(
        FPreViewAllPlot(addEntity(new AcDbLine({0, 0, 0}, {1, 1, 0})), ids({inside}), {}, none), 0);
    EXPECT_TRUE(none.isEmpty());
}

}  // namespace
