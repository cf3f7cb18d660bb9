#include "geometry/LabelPoint.h"

#include <cmath>

#include "host/arx/acutads.h"
#include "host/arx/dbents.h"
#include "host/arx/dbmtext.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbregion.h"
#include "host/kova/CFRegion.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaError.h"
#include "host/kova/KovaGeo.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

// Moves pt off the longest edge, one unit inside.
int insideCorrection(const AcGePoint3dArray& points, const AcGeDoubleArray* bulges,
                     AcGePoint3d& pt) {
    if (points.length() < 2) return 0;
    int i = 0, j = 1;
    AcGeDoubleArray none;
    if (!FGetMaxLenVert(points, bulges ? *bulges : none, i, j)) {
        i = 0;
        j = 1;
    }
    AcGePoint3d p1 = points[i], p2 = points[j];
    AcGeTol tol;
    tol.setEqualPoint(0.001);
    if (points.length() == 2 && p1.isEqualTo(p2, tol)) return 0;
    double b = bulges && i < bulges->length() ? (*bulges)[i] : 0.0;
    AcGePoint3d m;
    double angle = 0;
    if (std::fabs(b) >= 1e-6) {
        AcGePoint3d c;
        kova::geo::GetMidPt(p1, p2, c);
        kova::geo::GetMidPt(p1, p2, b, &m);
        angle = acutAngle(asDblArray(c), asDblArray(m));
    } else {
        kova::geo::GetMidPt(p1, p2, m);
        angle = acutAngle(asDblArray(p1), asDblArray(p2)) + kPi / 2;
    }
    acutPolar(asDblArray(m), angle, 1.0, asDblArray(pt));
    if (!kova::geo::IsPtInArea(pt, points, bulges ? *bulges : none)) {
        acutPolar(asDblArray(m), angle + kPi, 1.0, asDblArray(pt));
    }
    return 1;
}

// Corrects pt when it lies outside the curve's outline; nothing when there is none.
void correctIfOutside(AcDbObjectId curve, AcGePoint3d& pt) {
    AcGePoint3dArray points;
    AcGeDoubleArray bulges;
    if (!kova::ent::GetCurveParam(curve, points, bulges)) return;
    if (!kova::geo::IsPtInArea(pt, points, bulges)) insideCorrection(points, &bulges, pt);
}

// The region's centroid, placed as the region's plane gives it: the centroid is added to
// the plane's origin as it is, not turned onto the plane's axes.
bool regionCentroid(AcDbObjectId regionId, AcGePoint3d& pt) {
    AcDbRegion* region = nullptr;
    if (acdbOpenObject(region, regionId, AcDb::kForRead) != Acad::eOk) return false;
    AcGePlane plane;
    AcDb::Planarity planarity;
    AcGePoint3d origin;
    AcGeVector3d xAxis, yAxis;
    bool ok = region->getPlane(plane, planarity) == Acad::eOk;
    plane.getCoordSystem(origin, xAxis, yAxis);
    double perimeter = 0, area = 0, momInertia[2], prodInertia = 0, prinMoments[2],
           radiiGyration[2];
    AcGePoint2d centroid, extentsLow, extentsHigh;
    AcGeVector2d prinAxes[2];
    ok = ok && region->getAreaProp(origin, xAxis, yAxis, perimeter, area, centroid, momInertia,
                                   prodInertia, prinMoments, prinAxes, radiiGyration, extentsLow,
                                   extentsHigh) == Acad::eOk;
    region->close();
    if (!ok) return false;
    pt.x = origin.x + centroid.x;
    pt.y = origin.y + centroid.y;
    return true;
}

// The centroid of a polyline through a region of a copy; the copy and the region are
// erased again on every path.
int polylineCentroid(AcDbObjectId id, AcGePoint3d& pt) {
    AcDbObjectId copy = kova::ent::Copy(id);
    if (copy.isNull()) return 0;
    int result = 0;
    AcDbObjectId regionId;
    if (kova::CFRegion::PlineToRegion(copy, regionId)) {
        if (regionCentroid(regionId, pt)) {
            result = 1;
            correctIfOutside(copy, pt);
        }
        kova::ent::Erase(regionId);
    }
    kova::ent::Erase(copy);
    return result;
}

int fallback(AcDbObjectId id, AcGePoint3d& pt) {
    int result = kova::ent::GetInsidePt(id, pt);
    correctIfOutside(id, pt);
    return result;
}

int centerPoint(AcDbObjectId id, AcGePoint3d& pt) {
    if (!id.isValid() || id.isErased()) return 0;
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForRead) != Acad::eOk) return 0;
    if (ent->isKindOf(AcDbPolyline::desc()) || ent->isKindOf(AcDb2dPolyline::desc())) {
        ent->close();
        if (polylineCentroid(id, pt)) return 1;
    } else if (ent->isKindOf(AcDbRegion::desc())) {
        ent->close();
        if (regionCentroid(id, pt)) return 1;
    } else if (ent->isKindOf(AcDbCircle::desc())) {
        // The centre first, then the fallback's answer replaces it: kept so.
        pt = AcDbCircle::cast(ent)->center();
        ent->close();
    } else if (ent->isKindOf(AcDbLine::desc())) {
        ent->close();
        if (int result = kova::ent::GetMidPt(id, pt)) return result;
    } else {
        // Text, multiline text and every other class.
        ent->close();
    }
    return fallback(id, pt);
}

}  // namespace

int FGetCenterPt(AcDbObjectId id, AcGePoint3d& pt) {
    return kova::Guarded(L"FGetCenterPt", 0, [&] { return centerPoint(id, pt); });
}

int FGetInsideNearPt(AcDbObjectId id, AcGePoint3d& pt) {
    return kova::Guarded(L"FGetInsideNearPt", 0, [&] {
        AcGePoint3dArray points;
        AcGeDoubleArray bulges;
        if (!kova::ent::GetCurveParam(id, points, bulges)) return 0;
        return insideCorrection(points, &bulges, pt);
    });
}

int FGetMaxLenVert(const AcGePoint3dArray& points, const AcGeDoubleArray&, int& i, int& j) {
    if (points.length() < 2) return 0;
    double longest = 0;
    for (int k = 0; k + 1 < points.length(); ++k) {
        AcGePoint3d a = points[k], b = points[k + 1];
        a.z = 0;
        b.z = 0;
        double length = a.distanceTo(b);
        if (length > longest) {
            longest = length;
            i = k;
            j = k + 1;
        }
    }
    return 1;
}

int FGetMaxLenVert(AcDbObjectId id, int& i, int& j) {
    if (!id.isValid() || id.isErased()) return 0;
    AcGePoint3dArray points;
    AcGeDoubleArray bulges;
    if (!kova::ent::GetCurveParam(id, points, bulges)) return 0;
    return FGetMaxLenVert(points, bulges, i, j);
}
