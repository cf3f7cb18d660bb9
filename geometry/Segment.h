#pragma once
// The pieces of a curve outline for the curve utilities: straight or circular segments
// in plan, their carriers (the whole line or circle), distances and intersections.
#include <vector>

#include "host/arx/gepnt3d.h"
#include "kplan/Export.h"

namespace geometry {

// A segment from a to b, straight for bulge 0, else the arc of that bulge (the tangent
// of a quarter of its included angle, positive counter-clockwise).
struct KPLAN_API Segment {
    AcGePoint2d a, b;
    double bulge = 0;

    bool isArc() const { return bulge != 0 && !(a == b); }
    double length() const;
    // Arcs only: the centre, the radius, the angle of a from the centre and the signed
    // included angle.
    AcGePoint2d center() const;
    double radius() const;
    double startAngle() const;
    double sweep() const;
    // The point at fraction t of the way (0 at a, 1 at b), along the arc for an arc.
    AcGePoint2d pointAt(double t) const;
    // Where p (on the carrier) lies along the segment: the fraction of the way, < 0
    // before a and > 1 beyond b. On an arc's circle the part outside the arc is split in
    // its middle: the half after b counts as beyond b, the half before a as before a.
    double fractionOf(const AcGePoint2d& p) const;
    // The distance from p to the segment.
    double distanceTo(const AcGePoint2d& p) const;
};

// The outline of a curve as segments: vertex i to vertex i + 1 with bulge i, the closing
// segment included when closed.
KPLAN_API std::vector<Segment> segmentsOf(const AcGePoint3dArray& points,
                                          const AcGeDoubleArray& bulges, bool closed);

// Where the carriers of two segments meet (the lines, or the circles of arcs): none, one
// or two points; none for parallel lines and for concentric circles.
KPLAN_API std::vector<AcGePoint2d> carrierIntersections(const Segment& s, const Segment& t);

// Where two segments meet, each within tol of both; for overlapping collinear or
// co-circular segments, the ends of the overlap.
KPLAN_API std::vector<AcGePoint2d> intersections(const Segment& s, const Segment& t, double tol);

}  // namespace geometry
