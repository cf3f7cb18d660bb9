#include "host/arx/dbcurve.h"

#include <cmath>

ACRX_DEFINE_MEMBERS(AcDbCurve, AcDbEntity, L"")

Acad::ErrorStatus AcDbCurve::getStartPoint(AcGePoint3d& point) const {
    double param = 0;
    Acad::ErrorStatus es = getStartParam(param);
    return es == Acad::eOk ? getPointAtParam(param, point) : es;
}

Acad::ErrorStatus AcDbCurve::getEndPoint(AcGePoint3d& point) const {
    double param = 0;
    Acad::ErrorStatus es = getEndParam(param);
    return es == Acad::eOk ? getPointAtParam(param, point) : es;
}

double acgeBulgeSegmentArea(double chord, double bulge) {
    if (bulge == 0 || chord == 0) return 0;
    double theta = 4 * std::atan(std::fabs(bulge));
    double half = std::sin(theta / 2);
    double r = chord / (2 * half);
    return r * r / 2 * (theta - std::sin(theta));
}

double acgeBulgeArcLength(double chord, double bulge) {
    if (bulge == 0) return chord;
    double theta = 4 * std::atan(std::fabs(bulge));
    return chord / (2 * std::sin(theta / 2)) * theta;
}

AcGePoint2d acgeBulgePointAt(const AcGePoint2d& p, const AcGePoint2d& q, double bulge, double t) {
    if (bulge == 0 || p == q) return {p.x + (q.x - p.x) * t, p.y + (q.y - p.y) * t};
    double theta = 4 * std::atan(bulge);
    double dx = q.x - p.x, dy = q.y - p.y;
    double chord = std::hypot(dx, dy);
    // The centre lies on the chord's left normal for a counter-clockwise minor arc.
    double h = chord / 2 / std::tan(theta / 2);
    double cx = (p.x + q.x) / 2 - dy / chord * h;
    double cy = (p.y + q.y) / 2 + dx / chord * h;
    double r = std::hypot(p.x - cx, p.y - cy);
    double a = std::atan2(p.y - cy, p.x - cx) + theta * t;
    return {cx + r * std::cos(a), cy + r * std::sin(a)};
}
