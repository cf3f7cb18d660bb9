#include "stats/GpcAdaptor.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "host/arx/dbpl.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaStatusBar.h"
#include "stats/BoundaryClip.h"
#include "stats/StatsUtil.h"

namespace {

constexpr const wchar_t* kWait = L"请稍候...";

struct Fold {
    int status = 0;        // as Gpc_Cal's polygon form returns
    bool stopped = false;  // a step left nothing
};

// The fold of Gpc_Cal; the bar, when given, advances once per curve folded in.
Fold fold(gpc_op op, const AcDbObjectIdArray& ids, gpc_polygon* result,
          KovaCad::CStatusBarControl* bar, bool eraseInputs) {
    Fold out;
    if (ids.length() < 2) return out;
    gpc_polygon subject{0, nullptr, nullptr};
    if (GetDataFromAcdbPolyline(ids[0], &subject) != 1) {
        out.status = -1;
        return out;
    }
    for (int i = 1; i < ids.length(); ++i) {
        if (bar) bar->step();
        gpc_polygon clip{0, nullptr, nullptr};
        if (GetDataFromAcdbPolyline(ids[i], &clip) != 1) continue;
        gpc_polygon next{0, nullptr, nullptr};
        gpc_polygon_clip(op, &subject, &clip, &next);
        gpc_free_polygon(&clip);
        if (next.num_contours == 0) {
            stats::PrintFoldStopped();
            gpc_free_polygon(&next);
            out.stopped = true;
            break;
        }
        gpc_free_polygon(&subject);
        subject = next;
        if (eraseInputs) {
            kova::ent::Erase(ids[0]);
            kova::ent::Erase(ids[i]);
        }
    }
    *result = subject;
    out.status = 1;
    return out;
}

// A closed polyline of the contour's points, added to the current space; null on failure.
AcDbObjectId addContour(const gpc_vertex_list& contour) {
    AcDbEntity* pline = nullptr;
    {
        auto* made = new AcDbPolyline(static_cast<unsigned int>(contour.num_vertices));
        for (int i = 0; i < contour.num_vertices; ++i) {
            made->addVertexAt(static_cast<unsigned int>(i),
                              AcGePoint2d(contour.vertex[i].x, contour.vertex[i].y), 0.0, 0.0, 0.0);
        }
        made->setClosed(true);
        pline = made;
    }
    return kova::ent::SafeAddToDb(pline);
}

// The polyline form of the fold: Gpc_Cal's and, with a bar and the sliver filter,
// Gpc_Cal_EraseEnt's.
int foldToCurves(gpc_op op, const AcDbObjectIdArray& ids, AcDbObjectIdArray& resultIds,
                 bool withBar, bool eraseInputs) {
    gpc_polygon result{0, nullptr, nullptr};
    Fold done;
    if (withBar) {
        KovaCad::CStatusBarControl bar;
        bar.start(kWait, ids.length());
        done = fold(op, ids, &result, &bar, eraseInputs);
    } else {
        done = fold(op, ids, &result, nullptr, false);
    }
    if (done.status != 1 || done.stopped || result.num_contours == 0) {
        gpc_free_polygon(&result);
        return 0;
    }
    resultIds.removeAll();
    KovaCad::CStatusBarControl bar;
    if (withBar) bar.start(kWait, result.num_contours);
    int added = 0;
    for (int c = 0; c < result.num_contours; ++c) {
        if (withBar) bar.step();
        if (withBar && stats::ContourArea(result.contour[c]) < stats::kSliverArea) continue;
        AcDbObjectId id = addContour(result.contour[c]);
        if (id.isValid()) {
            resultIds.append(id);
            ++added;
        }
    }
    gpc_free_polygon(&result);
    return added;
}

}  // namespace

int GetDataFromAcdbPolyline(const AcDbObjectId& id, gpc_polygon* poly) {
    return stats::Guarded(L"GetDataFromAcdbPolyline", -1, [&] {
        stats::Outline outline;
        if (poly == nullptr || !stats::ReadOutline(id, outline)) return -1;
        poly->num_contours = 0;
        stats::AddOutline(outline, poly);
        return 1;
    });
}

int Gpc_Cal(gpc_op op, const AcDbObjectIdArray& ids, gpc_polygon* result) {
    if (result == nullptr) return 0;
    *result = gpc_polygon{0, nullptr, nullptr};
    return stats::Guarded(L"Gpc_Cal", 0,
                          [&] { return fold(op, ids, result, nullptr, false).status; });
}

int Gpc_Cal(gpc_op op, const AcDbObjectIdArray& ids, AcDbObjectIdArray& resultIds) {
    return stats::Guarded(L"Gpc_Cal", 0,
                          [&] { return foldToCurves(op, ids, resultIds, false, false); });
}

int Gpc_Cal_EraseEnt(gpc_op op, const AcDbObjectIdArray& ids, gpc_polygon* result,
                     int eraseInputs) {
    if (result == nullptr) return 0;
    *result = gpc_polygon{0, nullptr, nullptr};
    return stats::Guarded(L"Gpc_Cal_EraseEnt", 0, [&] {
        KovaCad::CStatusBarControl bar;
        bar.start(kWait, ids.length());
        return fold(op, ids, result, &bar, eraseInputs != 0).status;
    });
}

int Gpc_Cal_EraseEnt(gpc_op op, const AcDbObjectIdArray& ids, AcDbObjectIdArray& resultIds,
                     int eraseInputs) {
    return stats::Guarded(L"Gpc_Cal_EraseEnt", 0,
                          [&] { return foldToCurves(op, ids, resultIds, true, eraseInputs != 0); });
}

int FIsDKAndBoundaryInter(AcDbObjectId boundary, AcDbObjectId parcel) {
    return stats::Guarded(L"FIsDKAndBoundaryInter", -1, [&] {
        // The answer of intersecting the two as polylines in the drawing and comparing the
        // pieces' areas with the parcel's, without the polylines.
        std::vector<double> pieces;
        return stats::ClipOf(boundary)->classify(parcel, pieces);
    });
}

namespace ClipperLib {

int FGetPathFromPolyline(AcDbObjectId curve, Path& out) {
    return stats::Guarded(L"FGetPathFromPolyline", 0, [&] {
        AcGePoint3dArray points;
        if (!kova::ent::FIsValidId(curve) || !kova::ent::GetCurveParam(curve, &points, nullptr)) {
            return 0;
        }
        constexpr double kLimit = 9.0e18;  // inside the 64-bit range
        for (const AcGePoint3d& p : points) {
            if (!(std::fabs(p.x) < kLimit && std::fabs(p.y) < kLimit)) return 0;
        }
        for (const AcGePoint3d& p : points) {
            // Truncated toward zero, as a plain conversion to an integer does.
            out.push_back(IntPoint(static_cast<cInt>(p.x), static_cast<cInt>(p.y)));
        }
        return static_cast<int>(out.size());
    });
}

int FGetPathFromPolyline(const AcDbObjectIdArray& curves, Paths& out) {
    return stats::Guarded(L"FGetPathFromPolyline", 0, [&] {
        for (AcDbObjectId curve : curves) {
            Path path;
            if (FGetPathFromPolyline(curve, path) > 0) out.push_back(std::move(path));
        }
        return static_cast<int>(out.size());
    });
}

}  // namespace ClipperLib
