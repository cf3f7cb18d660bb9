// Made through the library, as a planning program would draw it.
#include "bench/StatsDrawing.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "host/arx/dbpl.h"
#include "host/db/CommandLine.h"
#include "host/dxf/Dxf.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/XdataBlocks.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "stats/BoundaryClip.h"

namespace bench {

namespace {

constexpr double X0 = 500000.0, Y0 = 3500000.0;
constexpr double kPitch = 55.0;  // parcels of about 50 m with 5 m between them

AcDbPolyline* newPolyline(const std::vector<AcGePoint2d>& points,
                          const std::vector<double>& bulges) {
    auto* pline = new AcDbPolyline(static_cast<unsigned int>(points.size()));
    for (std::size_t i = 0; i < points.size(); ++i) {
        pline->addVertexAt(static_cast<unsigned int>(i), points[i],
                           i < bulges.size() ? bulges[i] : 0.0);
    }
    pline->setClosed(true);
    return pline;
}

AcDbObjectId add(AcDbPolyline* pline) {
    AcDbEntity* entity = pline;
    return kova::ent::SafeAddToDb(entity);
}

AcDbObjectId addPolyline(const std::vector<AcGePoint2d>& points,
                         const std::vector<double>& bulges) {
    return add(newPolyline(points, bulges));
}

struct LandClass {
    const wchar_t* code;
    const wchar_t* name;
    double floorAreaRatio;  // 0: no buildings
    bool residential;
};

// Classes of the shipped 2011 table, in the shares of a district plan.
constexpr LandClass kRealisticClasses[] = {
    {L"R2", L"二类居住用地", 2.5, true},   {L"R21", L"住宅用地", 2.2, true},
    {L"R22", L"服务设施用地", 1.2, false}, {L"A33", L"中小学用地", 0.8, false},
    {L"B1", L"商业用地", 3.0, false},      {L"B11", L"零售商业用地", 2.0, false},
    {L"A1", L"行政办公用地", 1.5, false},  {L"M1", L"一类工业用地", 1.2, false},
    {L"G1", L"公园绿地", 0, false},        {L"S1", L"城市道路用地", 0, false},
    {L"U12", L"供电用地", 0.5, false},     {L"E1", L"水域", 0, false}};

const wchar_t* const kOwners[] = {L"市土地储备中心", L"城投置业有限公司",
                                  L"区教育局",       L"区园林绿化管理处",
                                  L"供电公司",       L"华润置地（城南）有限公司"};
const wchar_t* const kRemarks[] = {L"规划保留", L"规划新建，需与周边道路同步实施",
                                   L"现状改造，保留原有建筑风貌",
                                   L"近期实施，地块内含配套社区用房"};
const wchar_t* const kOpenings[] = {L"东", L"南", L"东、南", L"西、北"};

std::wstring fixed(double value, int decimals) {
    wchar_t text[64];
    std::swprintf(text, 64, L"%.*f", decimals, value);
    return text;
}

// A generation-3 control-plan record: the head, then key and value pairs in the order of
// the shipped attribute file, and the fields planners add after it.
void giveRecord(AcDbPolyline* pline, const LandClass& c, const std::wstring& number,
                std::mt19937& random) {
    std::uniform_real_distribution<double> unit(0, 1);
    double area = 0;
    pline->getArea(area);
    double ratio = c.floorAreaRatio * (0.8 + 0.4 * unit(random));
    long households = c.residential ? std::lround(area * ratio / 100) : 0;
    std::vector<std::pair<const wchar_t*, std::wstring>> fields = {
        {dk::FS_DKBH, number},
        {dk::FS_DKXZ, c.code},
        {dk::FS_XZMC, c.name},
        {dk::FD_YDMJ, fixed(area, 2)},
        {dk::FD_RJL, fixed(ratio, 1)},
        {dk::FD_JZMD, fixed(ratio > 0 ? 20 + 20 * unit(random) : 0, 0)},
        {dk::FD_LDL, fixed(ratio > 0 ? 30 + 10 * unit(random) : 80, 0)},
        {dk::FD_JZXG, fixed(ratio > 0 ? 24 + 76 * unit(random) : 0, 0)},
        {dk::FD_JZMJ, fixed(area * ratio, 2)},
        {dk::FD_DXJZMJ, fixed(area * ratio * 0.2, 2)},
        {dk::FN_JDCW, std::to_wstring(std::lround(area * ratio / 100))},
        {dk::FN_FJDCW, std::to_wstring(std::lround(area * ratio / 50))},
        {dk::FN_ZHS, std::to_wstring(households)},
        {dk::FN_ZRKS, std::to_wstring(std::lround(households * 3.2))},
        {dk::FS_RKMD, c.residential ? L"中高密度" : L""},
        {dk::FS_DLKKFX, kOpenings[random() % 4]},
        {dk::FS_PTSS, c.residential ? L"社区服务中心、幼儿园、公共厕所" : L""},
        {dk::FS_JRXZ, c.residential ? L"B11" : L""},
        {dk::FS_HHBL, c.residential ? L"R2:B11=9:1" : L""},
        {dk::FS_BZ, kRemarks[random() % 4]},
        {dk::FS_CQ, kOwners[random() % 6]},
        {dk::FS_KGTH, L"KG-2023-07"},
        {dk::FS_XMMC, L"城南片区控制性详细规划（修编）"},
        {dk::FS_GHSJ, L"2023年6月"},
        {dk::FS_DKZT, L"已批复"}};
    db::ValueList values;
    values.reserve(4 + 2 * fields.size());
    values.push_back(db::Value::string(1001, dk::FAPP_GHDK));
    values.push_back(db::Value::string(1000, dk::TYPE_KGDK));
    values.push_back(db::Value::string(1002, L"{"));
    for (auto& [key, value] : fields) {
        values.push_back(db::Value::string(1000, key));
        values.push_back(db::Value::string(1000, std::move(value)));
    }
    values.push_back(db::Value::string(1002, L"}"));
    pline->restoreXdataValues(std::move(values));
    dxf::compactXdata(*pline);
}

}  // namespace

Shape defaultShape() {
    const char* chosen = std::getenv("KPLAN_BENCH_DRAWING");
    return chosen && std::strcmp(chosen, "plain") == 0 ? Shape::Plain : Shape::Realistic;
}

const char* shapeName(Shape shape) {
    return shape == Shape::Plain ? "plain" : "realistic";
}

// count parcels on a square grid of cells, and an irregular boundary of 80 corners.
StatsDrawing makeStatsDrawing(int count, bool withIndicators, Shape shape) {
    bool realistic = shape == Shape::Realistic;
    StatsDrawing d;
    d.document = acDocManager->appendDocument();
    AcDbDatabase* database = d.document->database();
    if (realistic) {
        kova::xdata::registerApp(database, dk::FAPP_GHDK);
        kova::xdata::registerApp(database, dk::FAPP_GHFWX);
    }
    std::mt19937 random(static_cast<unsigned>(count));
    std::uniform_real_distribution<double> unit(0, 1);
    int side = static_cast<int>(std::ceil(std::sqrt(count)));
    double extent = side * kPitch;
    const wchar_t* classes[] = {L"R21", L"R22", L"A1", L"B1", L"G1", L"M1", L"S1", L"E1", L"H9"};
    d.parcels.setPhysicalLength(count + count / 40 + 1);
    for (int n = 0; n < count; ++n) {
        double cx = X0 + (n % side + 0.5) * kPitch, cy = Y0 + (n / side + 0.5) * kPitch;
        if (realistic) {  // off the metre grid: every coordinate has 17 significant digits
            cx += unit(random);
            cy += unit(random);
        }
        std::vector<AcGePoint2d> points;
        std::vector<double> bulges;
        switch (n % 3) {
            case 0:  // a quadrilateral
                points = {{cx - 25 + 3 * unit(random), cy - 25 + 3 * unit(random)},
                          {cx + 25 - 3 * unit(random), cy - 25 + 3 * unit(random)},
                          {cx + 25 - 3 * unit(random), cy + 25 - 3 * unit(random)},
                          {cx - 25 + 3 * unit(random), cy + 25 - 3 * unit(random)}};
                break;
            case 1:  // a 12-gon
                for (int i = 0; i < 12; ++i) {
                    double a = 2 * std::numbers::pi * i / 12, r = 25 * (0.85 + 0.15 * unit(random));
                    points.push_back({cx + r * std::cos(a), cy + r * std::sin(a)});
                }
                break;
            default:  // a block with a rounded side and a slightly curved one
                points = {
                    {cx - 25, cy - 20}, {cx + 25, cy - 20}, {cx + 25, cy + 20}, {cx - 25, cy + 20}};
                bulges = {0, 0.3 * unit(random), 0, -0.05 * unit(random)};
        }
        if (!realistic) {
            AcDbObjectId id = addPolyline(points, bulges);
            ARX_DATA::CFGisXData::SetTo(id, dk::FAPP_GHDK, L"", dk::TYPE_KGDK);
            ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKXZ, classes[n % 9], dk::FAPP_GHDK);
            if (withIndicators) {
                std::wstring number = L"P-" + std::to_wstring(n + 1);
                ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKBH, number.c_str(), dk::FAPP_GHDK);
                ARX_DATA::CFGisXData::SetTo(id, dk::FD_RJL, L"1.8", dk::FAPP_GHDK);
                ARX_DATA::CFGisXData::SetTo(id, dk::FD_LDL, L"35", dk::FAPP_GHDK);
                ARX_DATA::CFGisXData::SetTo(id, dk::FN_ZRKS, n % 9 < 2 ? L"180" : L"0",
                                            dk::FAPP_GHDK);
                ARX_DATA::CFGisXData::SetTo(id, dk::FS_BZ, L"规划保留", dk::FAPP_GHDK);
            }
            d.parcels.append(id);
            continue;
        }
        std::wstring number =
            L"CN-" + std::to_wstring(n / 400 + 1) + L"-" + std::to_wstring(n % 400 + 1);
        AcDbPolyline* pline = newPolyline(points, bulges);
        giveRecord(pline, kRealisticClasses[n % std::size(kRealisticClasses)], number, random);
        AcDbObjectId parcel = add(pline);
        d.parcels.append(parcel);
        if (n % 40 == 17) {  // a pocket park inside the parcel, turned a little
            double a = unit(random), c = 6 * std::cos(a), s = 6 * std::sin(a);
            AcDbPolyline* island = newPolyline({{cx - c + s, cy - s - c},
                                                {cx + c + s, cy + s - c},
                                                {cx + c - s, cy + s + c},
                                                {cx - c - s, cy - s + c}},
                                               {});
            giveRecord(island, kRealisticClasses[8], number + L"-1", random);
            AcDbObjectId inner = add(island);
            d.parcels.append(inner);
            AcDbObjectIdArray islands;
            islands.append(inner);
            CDKBJXDInfo(parcel).SetIsland(islands);
            AcDbEntity* outer = nullptr;
            if (acdbOpenAcDbEntity(outer, parcel, AcDb::kForWrite) == Acad::eOk) {
                dxf::compactXdata(*outer);
                outer->close();
            }
        }
    }
    // A saw of 39 teeth from just left of the grid, rising in 78 long edges and closed by
    // two corners outside the grid; the teeth's length is chosen so that the boundary cuts
    // the wanted share of the parcels.
    std::vector<double> jitter;
    for (int i = 0; i < 160; ++i)
        jitter.push_back(unit(random));
    auto fan = [&](double reach) {
        std::vector<AcGePoint2d> saw;
        double left = X0 + 0.01 * extent;
        for (int k = 0; k < 78; ++k) {
            double y = Y0 + (k + 0.5 + 0.4 * (jitter[2 * k] - 0.5)) / 78 * extent;
            double x = k % 2 ? left + reach * extent * (0.85 + 0.15 * jitter[2 * k + 1]) : left;
            saw.push_back({x, y});
        }
        saw.push_back({X0 - 0.02 * extent, saw.back().y});
        saw.push_back({X0 - 0.02 * extent, saw.front().y});
        return addPolyline(saw, {});
    };
    // The share of parcels cut, and of those clipped at all, over every step-th parcel.
    int all = d.parcels.length();
    auto shares = [&](AcDbObjectId boundary, int step, double& clipped, double& whole) {
        stats::BoundaryClip clip(boundary);
        std::vector<double> pieces;
        int crossing = 0, seen = 0;
        for (int n = 0; n < all; n += step, ++seen)
            crossing += clip.classify(d.parcels[n], pieces) == 1;
        clipped = static_cast<double>(clip.clips()) / seen;
        whole = static_cast<double>(clip.fullClips()) / seen;
        return static_cast<double>(crossing) / seen;
    };
    // The plain drawing tunes on every parcel, as it always did; the realistic one on a
    // sample of about 50,000, which keeps a million parcels quick to make.
    int sample = realistic ? (std::max)(1, all / 50000) : 1;
    double wanted = realistic ? 0.1 : 0.2;
    double lo = 0.02, hi = 0.98, clipped = 0, whole = 0;
    for (int round = 0; round < 8; ++round) {
        double mid = (lo + hi) / 2;
        AcDbObjectId trial = fan(mid);
        (shares(trial, sample, clipped, whole) < wanted ? lo : hi) = mid;
        kova::ent::Erase(trial);
    }
    d.boundary = fan((lo + hi) / 2);
    if (realistic) {
        ARX_DATA::CFGisXData::SetTo(d.boundary, dk::FAPP_GHFWX, L"", L"规划范围线");
        ARX_DATA::CFGisXData::SetTo(d.boundary, dk::FS_XMMC, L"城南片区控制性详细规划（修编）",
                                    dk::FAPP_GHFWX);
        ARX_DATA::CFGisXData::SetTo(d.boundary, dk::FS_PZWH, L"市政复〔2023〕45号", dk::FAPP_GHFWX);
    } else if (withIndicators) {
        ARX_DATA::CFGisXData::SetTo(d.boundary, dk::FAPP_GHFWX, L"", L"规划范围线");
    }
    d.crossingShare = shares(d.boundary, sample, d.clipShare, d.wholeClipShare);
    db::commandLine().clearTranscript();
    return d;
}

StatsDrawing& sharedStatsDrawing(int count) {
    static std::map<int, StatsDrawing> made;
    auto it = made.find(count);
    if (it == made.end()) it = made.emplace(count, makeStatsDrawing(count, false)).first;
    acDocManager->setCurDocument(it->second.document);
    return it->second;
}

}  // namespace bench
