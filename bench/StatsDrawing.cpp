// Made through the library, as a planning program would draw it.
#include "bench/StatsDrawing.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "host/arx/dbpl.h"
#include "host/db/CommandLine.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaEnt.h"
#include "record/DKKeys.h"
#include "stats/BoundaryClip.h"

namespace bench {

namespace {

constexpr double X0 = 500000.0, Y0 = 3500000.0;
constexpr double kPitch = 55.0;  // parcels of about 50 m with 5 m between them

AcDbObjectId addPolyline(const std::vector<AcGePoint2d>& points,
                         const std::vector<double>& bulges) {
    auto* pline = new AcDbPolyline(static_cast<unsigned int>(points.size()));
    for (std::size_t i = 0; i < points.size(); ++i) {
        pline->addVertexAt(static_cast<unsigned int>(i), points[i],
                           i < bulges.size() ? bulges[i] : 0.0);
    }
    pline->setClosed(true);
    AcDbEntity* entity = pline;
    return kova::ent::SafeAddToDb(entity);
}

}  // namespace

// count parcels on a square grid of cells, and an irregular boundary of 80 corners.
StatsDrawing makeStatsDrawing(int count, bool withIndicators) {
    StatsDrawing d;
    d.document = acDocManager->appendDocument();
    std::mt19937 random(static_cast<unsigned>(count));
    std::uniform_real_distribution<double> unit(0, 1);
    int side = static_cast<int>(std::ceil(std::sqrt(count)));
    double extent = side * kPitch;
    const wchar_t* classes[] = {L"R21", L"R22", L"A1", L"B1", L"G1", L"M1", L"S1", L"E1", L"H9"};
    for (int n = 0; n < count; ++n) {
        double cx = X0 + (n % side + 0.5) * kPitch, cy = Y0 + (n / side + 0.5) * kPitch;
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
        AcDbObjectId id = addPolyline(points, bulges);
        ARX_DATA::CFGisXData::SetTo(id, dk::FAPP_GHDK, L"", dk::TYPE_KGDK);
        ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKXZ, classes[n % 9], dk::FAPP_GHDK);
        if (withIndicators) {
            std::wstring number = L"P-" + std::to_wstring(n + 1);
            ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKBH, number.c_str(), dk::FAPP_GHDK);
            ARX_DATA::CFGisXData::SetTo(id, dk::FD_RJL, L"1.8", dk::FAPP_GHDK);
            ARX_DATA::CFGisXData::SetTo(id, dk::FD_LDL, L"35", dk::FAPP_GHDK);
            ARX_DATA::CFGisXData::SetTo(id, dk::FN_ZRKS, n % 9 < 2 ? L"180" : L"0", dk::FAPP_GHDK);
            ARX_DATA::CFGisXData::SetTo(id, dk::FS_BZ, L"规划保留", dk::FAPP_GHDK);
        }
        d.parcels.append(id);
    }
    // A saw of 39 teeth from just left of the grid, rising in 78 long edges and closed by
    // two corners outside the grid; the teeth's length is chosen so that the boundary cuts
    // about a fifth of the parcels.
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
    auto shares = [&](AcDbObjectId boundary, int step, double& clipped, double& whole) {
        stats::BoundaryClip clip(boundary);
        std::vector<double> pieces;
        int crossing = 0, seen = 0;
        for (int n = 0; n < count; n += step, ++seen)
            crossing += clip.classify(d.parcels[n], pieces) == 1;
        clipped = static_cast<double>(clip.clips()) / seen;
        whole = static_cast<double>(clip.fullClips()) / seen;
        return static_cast<double>(crossing) / seen;
    };
    double lo = 0.02, hi = 0.98, clipped = 0, whole = 0;
    for (int round = 0; round < 8; ++round) {
        double mid = (lo + hi) / 2;
        AcDbObjectId trial = fan(mid);
        (shares(trial, 1, clipped, whole) < 0.2 ? lo : hi) = mid;
        kova::ent::Erase(trial);
    }
    d.boundary = fan((lo + hi) / 2);
    if (withIndicators) ARX_DATA::CFGisXData::SetTo(d.boundary, dk::FAPP_GHFWX, L"", L"规划范围线");
    d.crossingShare = shares(d.boundary, 1, d.clipShare, d.wholeClipShare);
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
