#include "draw/HatchToLine.h"

#include <cmath>
#include <memory>
#include <vector>

#include "host/arx/acutads.h"
#include "host/arx/dbelipse.h"
#include "host/arx/dbhatch.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbspline.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaError.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2 * kPi;

struct Vertex {
    AcGePoint2d point;
    double bulge = 0;
};

// The bulge of the arc through start, middle and end: the inscribed angle at the middle
// is pi minus half the arc's included angle; the turn from start to end gives the sign.
double bulgeThrough(const AcGePoint2d& s, const AcGePoint2d& m, const AcGePoint2d& e) {
    AcGeVector2d a = s - m, b = e - m;
    double cross = (m.x - s.x) * (e.y - m.y) - (m.y - s.y) * (e.x - m.x);
    double atMiddle = std::atan2(std::fabs(a.x * b.y - a.y * b.x), a.dotProduct(b));
    double included = kTwoPi - 2 * atMiddle;
    return (cross > 0 ? 1 : -1) * std::tan(included / 4);
}

// A clockwise edge keeps its angles mirrored, as the file stores them.
double sweepOf(const AcDbHatchEdge& e) {
    double sweep = e.endAngle - e.startAngle;
    if (sweep <= 0) sweep += kTwoPi;
    return (std::min)(sweep, kTwoPi);
}

AcGePoint2d onArc(const AcDbHatchEdge& e, double angle) {
    double a = e.counterClockwise ? angle : -angle;
    return {e.center.x + e.radius * std::cos(a), e.center.y + e.radius * std::sin(a)};
}

void appendArc(const AcDbHatchEdge& e, std::vector<Vertex>& run) {
    double sweep = sweepOf(e);
    if (sweep >= kTwoPi - 1e-9) {
        // A whole circle: two half circles.
        double sign = e.counterClockwise ? 1 : -1;
        run.push_back({onArc(e, e.startAngle), sign});
        run.push_back({onArc(e, e.startAngle + kPi), sign});
        return;
    }
    AcGePoint2d s = onArc(e, e.startAngle), m = onArc(e, e.startAngle + sweep / 2),
                t = onArc(e, e.startAngle + sweep);
    run.push_back({s, bulgeThrough(s, m, t)});
}

// Where an elliptic-arc edge begins, in the direction it runs.
AcGePoint2d ellipseStart(const AcDbHatchEdge& e) {
    double t = e.counterClockwise ? e.startAngle : -e.startAngle;
    AcGeVector2d minor(-e.majorAxis.y * e.minorRatio, e.majorAxis.x * e.minorRatio);
    return e.center + e.majorAxis * std::cos(t) + minor * std::sin(t);
}

AcDbEntity* polylineOf(const std::vector<Vertex>& vertices, bool closed, double elevation) {
    auto* pline = new AcDbPolyline(static_cast<unsigned int>(vertices.size()));
    for (std::size_t i = 0; i < vertices.size(); ++i)
        pline->addVertexAt(static_cast<unsigned int>(i), vertices[i].point, vertices[i].bulge);
    pline->setClosed(closed);
    pline->setElevation(elevation);
    return pline;
}

AcDbEntity* ellipseOf(const AcDbHatchEdge& e, double elevation) {
    double start = e.counterClockwise ? e.startAngle : -(e.startAngle + sweepOf(e));
    double end = start + sweepOf(e);
    auto* ellipse =
        new AcDbEllipse(AcGePoint3d(e.center.x, e.center.y, elevation), AcGeVector3d(0, 0, 1),
                        AcGeVector3d(e.majorAxis.x, e.majorAxis.y, 0), e.minorRatio);
    ellipse->setStartParam(start);
    ellipse->setEndParam(end);
    return ellipse;
}

AcDbSpline* splineOf(const AcDbHatchEdge& e, double elevation) {
    AcGePoint3dArray points;
    if (!e.fitPoints.empty()) {
        for (const AcGePoint2d& p : e.fitPoints)
            points.append(AcGePoint3d(p.x, p.y, elevation));
        AcGeVector3d start, end;
        if (e.hasTangents) {
            start = AcGeVector3d(e.startTangent.x, e.startTangent.y, 0);
            end = AcGeVector3d(e.endTangent.x, e.endTangent.y, 0);
        }
        return new AcDbSpline(points, start, end, e.degree + 1);
    }
    AcGeDoubleArray knots, weights;
    for (const AcGePoint2d& p : e.controlPoints)
        points.append(AcGePoint3d(p.x, p.y, elevation));
    for (double k : e.knots)
        knots.append(k);
    if (e.rational) {
        for (double w : e.weights)
            weights.append(w);
    }
    return new AcDbSpline(e.degree, e.rational, false, e.periodic, points, knots, weights);
}

// Collects the loop's curves, not yet in the drawing; false when one cannot be made.
bool curvesOf(const AcDbHatch::Loop& loop, double elevation,
              std::vector<std::unique_ptr<AcDbEntity>>& out) {
    if (loop.isPolyline()) {
        std::vector<Vertex> vertices;
        for (std::size_t i = 0; i < loop.vertices.size(); ++i)
            vertices.push_back({loop.vertices[i], i < loop.bulges.size() ? loop.bulges[i] : 0});
        out.emplace_back(polylineOf(vertices, loop.closed, elevation));
        return true;
    }
    std::vector<Vertex> run;
    bool onlyRuns = true;
    auto flush = [&](const AcGePoint2d& end) {
        if (run.empty()) return;
        run.push_back({end, 0});
        out.emplace_back(polylineOf(run, false, elevation));
        run.clear();
    };
    for (const AcDbHatchEdge& e : loop.edges) {
        switch (e.type) {
            case AcDbHatch::kLine:
                run.push_back({e.start, 0});
                continue;
            case AcDbHatch::kCirArc:
                appendArc(e, run);
                continue;
            case AcDbHatch::kEllArc:
                onlyRuns = false;
                flush(ellipseStart(e));
                out.emplace_back(ellipseOf(e, elevation));
                continue;
            case AcDbHatch::kSpline: {
                onlyRuns = false;
                if (!e.controlPoints.empty())
                    flush(e.controlPoints.front());
                else if (!e.fitPoints.empty())
                    flush(e.fitPoints.front());
                std::unique_ptr<AcDbSpline> spline(splineOf(e, elevation));
                if (spline->numControlPoints() == 0) {
                    acutPrintf(L"\nFailed to create a spline.");
                    return false;
                }
                out.emplace_back(std::move(spline));
                continue;
            }
            default:
                return false;
        }
    }
    if (onlyRuns) {
        if (!run.empty()) out.emplace_back(polylineOf(run, true, elevation));
        return true;
    }
    if (!run.empty()) {
        // The run after the last other edge ends where the loop began.
        const AcDbHatchEdge& first = loop.edges.front();
        AcGePoint2d end = first.type == AcDbHatch::kLine     ? first.start
                          : first.type == AcDbHatch::kEllArc ? ellipseStart(first)
                          : !first.controlPoints.empty()     ? first.controlPoints.front()
                                                             : first.fitPoints.front();
        flush(end);
    }
    return true;
}

}  // namespace

int KovaHatchToLine(AcDbObjectId hatchId, AcDbObjectIdArray& curves) {
    curves.setLogicalLength(0);
    return kova::Guarded(L"qmplot::KovaHatchToLine", 0, [&] {
        std::vector<std::unique_ptr<AcDbEntity>> made;
        {
            AcDbHatch* hatch = nullptr;
            if (hatchId.isNull() || acdbOpenObject(hatch, hatchId, AcDb::kForRead) != Acad::eOk)
                return 0;
            bool ok = true;
            for (int i = 0; i < hatch->numLoops() && ok; ++i)
                ok = curvesOf(*hatch->loopAt(i), hatch->elevation(), made);
            hatch->close();
            if (!ok) return 0;
        }
        AcDbDatabase* database = hatchId.database();
        for (std::unique_ptr<AcDbEntity>& curve : made) {
            AcDbObjectId id = kova::ent::AddToDb(curve.get(), database);
            if (id.isNull()) {
                kova::ent::Erase(curves);
                curves.setLogicalLength(0);
                return 0;
            }
            curve.release();
            kova::ent::HandOverTo(hatchId, id);
            curves.append(id);
        }
        return 1;
    });
}
