#include "host/kova/KovaSimulate.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kova::ent {

namespace {

// No chord strays further than this from its arc (drawing units), however flat the arc:
// a turn's share of chords alone would leave long chords on arcs of large radius.
constexpr double kMaxSagitta = 5e-5;
constexpr int kMaxChords = 100000;

// Appends the inner points of the arc from p to q with the bulge (neither end).
void appendArc(const AcGePoint3d& p, const AcGePoint3d& q, double bulge, int segmentsPerCircle,
               AcGePoint3dArray& out) {
    double dx = q.x - p.x, dy = q.y - p.y;
    double chord = std::hypot(dx, dy);
    if (!(chord > 0)) return;
    double angle = 4 * std::atan(bulge);  // signed: positive runs counter-clockwise
    double turns = std::fabs(angle) / (2 * std::numbers::pi);
    double byTurn = std::ceil(turns * segmentsPerCircle - 1e-9);
    double radius = chord * (1 + bulge * bulge) / (4 * std::fabs(bulge));
    double bySagitta = 1;
    if (radius > kMaxSagitta) {
        bySagitta = std::ceil(std::fabs(angle) / (2 * std::acos(1 - kMaxSagitta / radius)) - 1e-9);
    }
    int count = static_cast<int>(std::clamp(std::max(byTurn, bySagitta), 1.0, double(kMaxChords)));
    if (count == 1) return;
    // The centre lies off the chord's midpoint along its left normal.
    double offset = chord * (1 - bulge * bulge) / (4 * bulge);
    double cx = (p.x + q.x) / 2 - dy / chord * offset;
    double cy = (p.y + q.y) / 2 + dx / chord * offset;
    // Each point the one before turned by one step about the centre: the drift stays
    // within a micrometre even over the longest arc.
    double vx = p.x - cx, vy = p.y - cy;
    double c = std::cos(angle / count), s = std::sin(angle / count);
    for (int k = 1; k < count; ++k) {
        double x = vx * c - vy * s;
        vy = vx * s + vy * c;
        vx = x;
        out.append({cx + vx, cy + vy, p.z});
    }
}

}  // namespace

int SimulateCurve(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges,
                  int segmentsPerCircle, AcGePoint3dArray& out) {
    out.removeAll();
    int n = points.length();
    if (n == 0 || segmentsPerCircle <= 0) return 0;
    for (int i = 0; i < n; ++i) {
        out.append(points[i]);
        double bulge = i < bulges.length() ? bulges[i] : 0.0;
        if (bulge != 0 && n > 1)
            appendArc(points[i], points[(i + 1) % n], bulge, segmentsPerCircle, out);
    }
    return 1;
}

}  // namespace kova::ent
