#pragma once
// Parcels, islands and boundaries for the statistics tests, drawn where real plans lie
// (projected coordinates near x 500 km, y 3,500 km), and the project switches that steer
// the area rules.
#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/arx/acedads.h"
#include "host/arx/dbpl.h"
#include "host/db/Progress.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaDB.h"
#include "host/kova/KovaEnt.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "stats/GpcAdaptor.h"
#include "tests/support/KplanTest.h"

using Fields = std::initializer_list<std::pair<const wchar_t*, const wchar_t*>>;

// Where the tests draw.
inline constexpr double X0 = 500000.0;
inline constexpr double Y0 = 3500000.0;

// What the host's progress bar was asked to show.
class ProgressLog : public db::ProgressSink {
  public:
    void start(std::wstring_view message, long total) override {
        events.push_back(L"start " + std::wstring(message) + L" " + std::to_wstring(total));
    }
    void step(long position) override { events.push_back(L"step " + std::to_wstring(position)); }
    void end() override { events.push_back(L"end"); }
    std::vector<std::wstring> events;
};

class StatsTest : public KplanTest {
  protected:
    void TearDown() override {
        db::setProgressSink(nullptr);
        KplanTest::TearDown();
    }

    // How a parcel lies against a boundary, worked out the long way: the two intersected as
    // polylines in the drawing, the pieces measured and erased, their sum compared with
    // the parcel's own area (-1 apart, 0 inside, 1 crossing).
    static int overlapByPolylines(AcDbObjectId boundary, AcDbObjectId parcel) {
        if (!kova::ent::GetCurveParam(parcel, nullptr, nullptr)) return -1;
        AcDbObjectIdArray pair, pieces;
        pair.append(boundary);
        pair.append(parcel);
        if (Gpc_Cal(GPC_INT, pair, pieces) == 0 || pieces.isEmpty()) return -1;
        std::vector<double> areas;
        for (AcDbObjectId piece : pieces) {
            double area = 0;
            kova::ent::GetArea(piece, area);
            areas.push_back(area);
        }
        kova::ent::Erase(pieces);
        std::sort(areas.begin(), areas.end());
        double sum = 0, own = 0;
        for (double a : areas)
            sum += a;
        kova::ent::GetArea(parcel, own);
        return sum > 1e-5 && std::fabs(sum - own) > 5.0 ? 1 : 0;
    }

    // A rectangle relative to (X0, Y0).
    AcDbObjectId rect(double x0, double y0, double x1, double y1) {
        return addRectangle(X0 + x0, Y0 + y0, X0 + x1, Y0 + y1);
    }
    // A closed polyline of points relative to (X0, Y0), with bulges per vertex.
    AcDbObjectId poly(const std::vector<AcGePoint2d>& points,
                      const std::vector<double>& bulges = {}) {
        auto* pline = new AcDbPolyline();
        for (std::size_t i = 0; i < points.size(); ++i) {
            pline->addVertexAt(static_cast<unsigned int>(i),
                               AcGePoint2d(X0 + points[i].x, Y0 + points[i].y),
                               i < bulges.size() ? bulges[i] : 0.0);
        }
        pline->setClosed(true);
        return addEntity(pline);
    }

    // Makes the curve a planned parcel of the current generation with the fields.
    static void planned(AcDbObjectId id, Fields fields = {}) {
        ASSERT_EQ(ARX_DATA::CFGisXData::SetTo(id, dk::FAPP_GHDK, L"", dk::TYPE_KGDK), 1);
        for (const auto& [key, value] : fields)
            ASSERT_EQ(ARX_DATA::CFGisXData::SetTo(id, key, value, dk::FAPP_GHDK), 1);
    }
    // A current-status parcel: the marker item, then the fields.
    static void current(AcDbObjectId id, Fields fields = {}) {
        ASSERT_EQ(ARX_DATA::CFSimpleXData::SetTo(id, dk::FAPP_XZDK, dk::MARK_XZDK), 1);
        for (const auto& [key, value] : fields)
            ASSERT_EQ(ARX_DATA::CFGisXData::SetTo(id, key, value), 1);
    }
    // A second-generation parcel: a GIS record under "地块属性" keyed by the old labels.
    static void secondGeneration(AcDbObjectId id, Fields fields) {
        ASSERT_EQ(ARX_DATA::CFGisXData::SetTo(id, dk::APP_DKSX, L"", L"二代地块"), 1);
        for (const auto& [key, value] : fields)
            ASSERT_EQ(ARX_DATA::CFGisXData::SetTo(id, key, value, dk::APP_DKSX), 1);
    }
    static void islands(AcDbObjectId parcel, std::initializer_list<AcDbObjectId> inner) {
        AcDbObjectIdArray ids;
        for (AcDbObjectId id : inner)
            ids.append(id);
        ASSERT_EQ(CDKBJXDInfo(parcel).SetIsland(ids), 1);
    }

    // The project switches: computed areas, and clipping at the boundary (both default yes).
    void calculatedAreas(bool yes) {
        ASSERT_EQ(KovaDB::qmGetCustomDatabase().SetOtherCustomParam(dk::PARAM_CALC_AREA,
                                                                    yes ? L"Y" : L"N"),
                  1);
    }
    void clipAtBoundary(bool yes) {
        ASSERT_EQ(KovaDB::qmGetCustomDatabase().SetOtherCustomParam(dk::PARAM_CUT_BOUNDARY,
                                                                    yes ? L"Y" : L"N"),
                  1);
    }

    static AcDbObjectIdArray ids(std::initializer_list<AcDbObjectId> list) {
        AcDbObjectIdArray out;
        for (AcDbObjectId id : list)
            out.append(id);
        return out;
    }

    // The live entities of the drawing.
    static int entityCount() {
        ads_name ss = {0, 0};
        if (acedSSGet(L"X", nullptr, nullptr, nullptr, ss) != RTNORM) return 0;
        Adesk::Int32 n = 0;
        acedSSLength(ss, &n);
        acedSSFree(ss);
        return static_cast<int>(n);
    }
    static void erase(AcDbObjectId id) { ASSERT_EQ(kova::ent::Erase(id), 1); }
    static double areaOf(AcDbObjectId id) {
        double a = 0;
        kova::ent::GetArea(id, a);
        return a;
    }

    std::shared_ptr<ProgressLog> recordProgress() {
        auto log = std::make_shared<ProgressLog>();
        db::setProgressSink(log);
        return log;
    }
    // How often the fold's stop message was printed.
    int stopMessages() const {
        const std::wstring needle = L"计算中止：因为计算结果中已经没有可用的边界了!";
        int n = 0;
        for (std::size_t at = transcript().find(needle); at != std::wstring::npos;
             at = transcript().find(needle, at + 1))
            ++n;
        return n;
    }
};
