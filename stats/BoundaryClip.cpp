#include "stats/BoundaryClip.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <numbers>
#include <numeric>
#include <thread>

#include "host/arx/acutads.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaGeo.h"
#include "host/kova/KovaSimulate.h"
#include "record/ObjectIdHash.h"
#include "stats/GpcAdaptor.h"

namespace stats {

namespace {

constexpr const wchar_t* kFoldStopped = L"\n计算中止：因为计算结果中已经没有可用的边界了!";

// Twice the signed area, relative to the first vertex so that projected coordinates keep
// their precision.
double twiceSignedArea(const std::vector<gpc_vertex>& v) {
    double twice = 0;
    const gpc_vertex& o = v[0];
    for (std::size_t i = 0; i < v.size(); ++i) {
        const gpc_vertex& a = v[i];
        const gpc_vertex& b = v[(i + 1) % v.size()];
        twice += (a.x - o.x) * (b.y - o.y) - (b.x - o.x) * (a.y - o.y);
    }
    return twice;
}

double cross(const gpc_vertex& o, const gpc_vertex& a, const gpc_vertex& b) {
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

int sign(double v) {
    return (v > 0) - (v < 0);
}

// Whether segments pq and rs share a point (touching counts).
bool segmentsMeet(const gpc_vertex& p, const gpc_vertex& q, const gpc_vertex& r,
                  const gpc_vertex& s) {
    int d1 = sign(cross(p, q, r)), d2 = sign(cross(p, q, s));
    int d3 = sign(cross(r, s, p)), d4 = sign(cross(r, s, q));
    if (d1 != d2 && d3 != d4 && d1 * d2 <= 0 && d3 * d4 <= 0) return true;
    auto within = [](const gpc_vertex& a, const gpc_vertex& b, const gpc_vertex& c) {
        return std::min(a.x, b.x) <= c.x && c.x <= std::max(a.x, b.x) &&
               std::min(a.y, b.y) <= c.y && c.y <= std::max(a.y, b.y);
    };
    return (d1 == 0 && within(p, q, r)) || (d2 == 0 && within(p, q, s)) ||
           (d3 == 0 && within(r, s, p)) || (d4 == 0 && within(r, s, q));
}

// Whether chords i and j of the closed chain are clear of each other: apart when they are
// not neighbours, not folding back over each other when they are.
bool chordsClear(const std::vector<gpc_vertex>& v, std::size_t i, std::size_t j) {
    const std::size_t n = v.size();
    const gpc_vertex& p = v[i];
    const gpc_vertex& q = v[(i + 1) % n];
    const gpc_vertex& r = v[j];
    const gpc_vertex& u = v[(j + 1) % n];
    if (std::max(r.x, u.x) < std::min(p.x, q.x) || std::min(r.x, u.x) > std::max(p.x, q.x) ||
        std::max(r.y, u.y) < std::min(p.y, q.y) || std::min(r.y, u.y) > std::max(p.y, q.y)) {
        return true;
    }
    if ((i + 1) % n == j || (j + 1) % n == i) {
        const gpc_vertex& shared = (i + 1) % n == j ? q : p;
        const gpc_vertex& a = (i + 1) % n == j ? p : q;
        const gpc_vertex& b = (i + 1) % n == j ? u : r;
        return !(cross(shared, a, b) == 0 &&
                 (a.x - shared.x) * (b.x - shared.x) + (a.y - shared.y) * (b.y - shared.y) > 0);
    }
    return !segmentsMeet(p, q, r, u);
}

// Whether the closed chain has no crossing, touching, repeated vertex or spike: only then
// is its even-odd area, which the clipper measures, the area of its vertex formula.
// Conservative: doubt answers false.
bool isSimple(const std::vector<gpc_vertex>& v) {
    const std::size_t n = v.size();
    if (n < 3) return false;
    struct Span {
        double lo, hi;
        std::size_t i;
    };
    std::vector<Span> spans(n);
    for (std::size_t i = 0; i < n; ++i) {
        const gpc_vertex& a = v[i];
        const gpc_vertex& b = v[(i + 1) % n];
        if (a.x == b.x && a.y == b.y) return false;
        spans[i] = {std::min(a.x, b.x), std::max(a.x, b.x), i};
    }
    // Edges sorted by their left end; only edges whose x ranges overlap are compared.
    std::sort(spans.begin(), spans.end(), [](const Span& a, const Span& b) { return a.lo < b.lo; });
    for (std::size_t s = 0; s < n; ++s) {
        for (std::size_t t = s + 1; t < n && spans[t].lo <= spans[s].hi; ++t) {
            if (!chordsClear(v, spans[s].i, spans[t].i)) return false;
        }
    }
    return true;
}

// The same for a chain made of the outline's segments, each a straight edge or the chords
// of one arc (which never meet each other): only chords of different segments whose
// extents overlap are compared. starts[k] is where segment k's chords begin.
bool isSimple(const std::vector<gpc_vertex>& v, const std::vector<std::size_t>& starts) {
    const std::size_t n = v.size(), m = starts.size();
    if (n < 3) return false;
    for (std::size_t i = 0; i < n; ++i) {
        const gpc_vertex& a = v[i];
        const gpc_vertex& b = v[(i + 1) % n];
        if (a.x == b.x && a.y == b.y) return false;
    }
    struct Box {
        double x0, y0, x1, y1;
    };
    std::vector<Box> boxes(m);
    auto end = [&](std::size_t k) { return k + 1 < m ? starts[k + 1] : n; };
    for (std::size_t k = 0; k < m; ++k) {
        Box box{HUGE_VAL, HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
        for (std::size_t e = starts[k]; e <= end(k); ++e) {
            const gpc_vertex& p = v[e % n];
            box = {std::min(box.x0, p.x), std::min(box.y0, p.y), std::max(box.x1, p.x),
                   std::max(box.y1, p.y)};
        }
        boxes[k] = box;
    }
    for (std::size_t k = 0; k < m; ++k) {
        for (std::size_t l = k + 1; l < m; ++l) {
            if (boxes[k].x1 < boxes[l].x0 || boxes[l].x1 < boxes[k].x0 ||
                boxes[k].y1 < boxes[l].y0 || boxes[l].y1 < boxes[k].y0) {
                continue;
            }
            // The longer chain's chords near the other segment, each against the shorter.
            std::size_t outer = end(k) - starts[k] >= end(l) - starts[l] ? k : l;
            std::size_t inner = outer == k ? l : k;
            const Box& b = boxes[inner];
            for (std::size_t i = starts[outer]; i < end(outer); ++i) {
                const gpc_vertex& p = v[i];
                const gpc_vertex& q = v[(i + 1) % n];
                if (std::max(p.x, q.x) < b.x0 || std::min(p.x, q.x) > b.x1 ||
                    std::max(p.y, q.y) < b.y0 || std::min(p.y, q.y) > b.y1) {
                    continue;
                }
                for (std::size_t j = starts[inner]; j < end(inner); ++j) {
                    if (!chordsClear(v, i, j)) return false;
                }
            }
        }
    }
    return true;
}

// A convex region holding one segment of an outline and every chord of it: the segment
// itself for a straight one; for an arc, the triangle of its chord and its end tangents
// (or, near half a turn, where those tangents part, the rectangle between its chord and
// the tangent at its apex). False for arcs over half a turn and empty segments.
struct Hull {
    gpc_vertex points[4];
    int count = 0;
};

bool hullOf(const AcGePoint3d& p, const AcGePoint3d& q, double bulge, Hull& hull) {
    double dx = q.x - p.x, dy = q.y - p.y;
    if (dx == 0 && dy == 0) return false;
    hull.points[0] = {p.x, p.y};
    hull.points[1] = {q.x, q.y};
    hull.count = 2;
    if (bulge == 0) return true;
    double b = std::fabs(bulge);
    if (b > 1) return false;
    if (b <= 0.7) {
        // The end tangents meet off the chord's midpoint by c/2 tan(θ/2), θ/4 = atan(b).
        double k = bulge / (1 - bulge * bulge);
        hull.points[2] = {(p.x + q.x) / 2 + dy * k, (p.y + q.y) / 2 - dx * k};
        hull.count = 3;
        return true;
    }
    double ox = dy * bulge / 2, oy = -dx * bulge / 2;
    hull.points[2] = {q.x + ox, q.y + oy};
    hull.points[3] = {p.x + ox, p.y + oy};
    hull.count = 4;
    return true;
}

// Whether some axis keeps the two hulls at least tolerance apart.
bool hullsApart(const Hull& a, const Hull& b, double tolerance) {
    auto apartAlong = [&](double ax, double ay) {
        double length = std::sqrt(ax * ax + ay * ay);
        if (!(length > 0)) return false;
        ax /= length;
        ay /= length;
        double a0 = HUGE_VAL, a1 = -HUGE_VAL, b0 = HUGE_VAL, b1 = -HUGE_VAL;
        for (int i = 0; i < a.count; ++i) {
            double t = a.points[i].x * ax + a.points[i].y * ay;
            a0 = std::min(a0, t);
            a1 = std::max(a1, t);
        }
        for (int i = 0; i < b.count; ++i) {
            double t = b.points[i].x * ax + b.points[i].y * ay;
            b0 = std::min(b0, t);
            b1 = std::max(b1, t);
        }
        return a1 + tolerance < b0 || b1 + tolerance < a0;
    };
    for (const Hull* h : {&a, &b}) {
        for (int i = 0; i < h->count; ++i) {
            const gpc_vertex& p = h->points[i];
            const gpc_vertex& q = h->points[(i + 1) % h->count];
            if (apartAlong(q.y - p.y, p.x - q.x)) return true;
            if (h->count == 2 && apartAlong(q.x - p.x, q.y - p.y)) return true;
        }
    }
    return false;
}

// Whether a line through v has every other point of a on one side and every other point
// of b strictly on the other, so that two hulls meeting at v meet nowhere else.
bool conesApart(const Hull& a, const Hull& b, const gpc_vertex& v) {
    struct Directions {
        gpc_vertex d[4];
        int count = 0;
    };
    auto others = [&](const Hull& h) {
        Directions out;
        for (int i = 0; i < h.count; ++i) {
            if (h.points[i].x != v.x || h.points[i].y != v.y)
                out.d[out.count++] = {h.points[i].x - v.x, h.points[i].y - v.y};
        }
        return out;
    };
    const Directions da = others(a), db = others(b);
    // The sine of the angle from d to w.
    auto side = [](const gpc_vertex& d, const gpc_vertex& w) {
        return (d.x * w.y - d.y * w.x) /
               std::sqrt((d.x * d.x + d.y * d.y) * (w.x * w.x + w.y * w.y));
    };
    // The line along d, d one of the touching set's own directions: that set on one side
    // (d itself on the line), the other strictly on the other side.
    constexpr double kEps = 1e-9;
    auto separates = [&](const gpc_vertex& d, const Directions& touching,
                         const Directions& strict) {
        bool tLeft = true, tRight = true, sLeft = true, sRight = true;
        for (int i = 0; i < touching.count; ++i) {
            double t = side(d, touching.d[i]);
            tLeft = tLeft && t >= -kEps;
            tRight = tRight && t <= kEps;
        }
        for (int i = 0; i < strict.count; ++i) {
            double t = side(d, strict.d[i]);
            sLeft = sLeft && t > kEps;
            sRight = sRight && t < -kEps;
        }
        return (tLeft && sRight) || (tRight && sLeft);
    };
    for (int i = 0; i < da.count; ++i) {
        if (separates(da.d[i], da, db)) return true;
    }
    for (int i = 0; i < db.count; ++i) {
        if (separates(db.d[i], db, da)) return true;
    }
    return false;
}

// Without approximating: whether every chord outline the curve can have is free of
// crossings and touchings, and the most area its chords can lose to its arcs. Doubt
// answers false (and the approximated outline is looked at instead).
bool outlineClearlySimple(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges,
                          double& loss) {
    const int m = points.length();
    if (m < 3 || m > 64) return false;
    std::vector<Hull> hulls(static_cast<std::size_t>(m));
    loss = 0;
    double size = 0;
    for (int i = 0; i < m; ++i) {
        const AcGePoint3d& p = points[i];
        const AcGePoint3d& q = points[(i + 1) % m];
        double b = i < bulges.length() ? bulges[i] : 0.0;
        if (!hullOf(p, q, b, hulls[static_cast<std::size_t>(i)])) return false;
        size = std::max({size, std::fabs(q.x - points[0].x), std::fabs(q.y - points[0].y)});
        if (b != 0) {
            // An arc in n chords loses r²/2 (θ - n sin(θ/n)); n is at least a turn's share.
            double chord = std::hypot(q.x - p.x, q.y - p.y);
            double r = chord * (1 + b * b) / (4 * std::fabs(b));
            double theta = 4 * std::atan(std::fabs(b));
            double n =
                std::max(1.0, std::ceil(theta / (2 * std::numbers::pi) * kSimulateSegments - 1e-9));
            loss += r * r / 2 * (theta - n * std::sin(theta / n)) + 1e-9 * r * r;
        }
    }
    const double tolerance = 1e-6 * std::max(1.0, size);
    for (int i = 0; i < m; ++i) {
        for (int j = i + 1; j < m; ++j) {
            const Hull& a = hulls[static_cast<std::size_t>(i)];
            const Hull& b = hulls[static_cast<std::size_t>(j)];
            if (j == i + 1) {
                if (!conesApart(a, b, a.points[1])) return false;
            } else if (i == 0 && j == m - 1) {
                if (!conesApart(b, a, a.points[0])) return false;
            } else if (!hullsApart(a, b, tolerance)) {
                return false;
            }
        }
    }
    return true;
}

// Extents that hold the outline with its arcs (and so every chord of them): an arc of at
// most half a turn lies between its chord and the tangent at its apex, a longer one within
// its circle's square.
void curveExtents(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges, double& x0,
                  double& y0, double& x1, double& y1) {
    auto add = [&](double x, double y) {
        x0 = std::min(x0, x);
        y0 = std::min(y0, y);
        x1 = std::max(x1, x);
        y1 = std::max(y1, y);
    };
    const int n = points.length();
    for (int i = 0; i < n; ++i) {
        const AcGePoint3d& p = points[i];
        const AcGePoint3d& q = points[(i + 1) % n];
        add(p.x, p.y);
        double b = i < bulges.length() ? bulges[i] : 0.0;
        double dx = q.x - p.x, dy = q.y - p.y;
        double chord = std::hypot(dx, dy);
        if (b == 0 || !(chord > 0)) continue;
        if (std::fabs(b) <= 1) {
            // The apex lies off the chord by the sagitta, to the right for a positive bulge.
            double ox = dy * b / 2, oy = -dx * b / 2;
            add(p.x + ox, p.y + oy);
            add(q.x + ox, q.y + oy);
        } else {
            double offset = chord * (1 - b * b) / (4 * b);
            double cx = (p.x + q.x) / 2 - dy / chord * offset;
            double cy = (p.y + q.y) / 2 + dx / chord * offset;
            double r = chord * (1 + b * b) / (4 * std::fabs(b));
            add(cx - r, cy - r);
            add(cx + r, cy + r);
        }
    }
}

// Whether the segment from (ax, ay) to (bx, by) meets the box: the two overlap along both
// axes and the box has corners on both sides of (or on) the segment's line.
bool segmentMeetsBox(double ax, double ay, double bx, double by, double x0, double y0, double x1,
                     double y1) {
    if (std::max(ax, bx) < x0 || std::min(ax, bx) > x1 || std::max(ay, by) < y0 ||
        std::min(ay, by) > y1) {
        return false;
    }
    double dx = bx - ax, dy = by - ay;
    auto side = [&](double x, double y) { return dx * (y - ay) - dy * (x - ax); };
    double s0 = side(x0, y0), s1 = side(x1, y0), s2 = side(x1, y1), s3 = side(x0, y1);
    return !((s0 > 0 && s1 > 0 && s2 > 0 && s3 > 0) || (s0 < 0 && s1 < 0 && s2 < 0 && s3 < 0));
}

// The grid gpc_polygon_clip rounds to: a local origin at the floor of the lower-left
// corner of both polygons and the finest scale that keeps them in Clipper's fast range.
// It must round exactly as the clipper interface does; the tests compare both.
constexpr double kMaxScale = 1e6;
constexpr double kFastRange = 0x3FFFFFFF * 0.9;

ClipperLib::cInt onGrid(double v, double origin, double scale) {
    return static_cast<ClipperLib::cInt>(std::llround((v - origin) * scale));
}

ClipperLib::Path toGrid(const std::vector<gpc_vertex>& points, double ox, double oy, double scale) {
    ClipperLib::Path path;
    path.reserve(points.size());
    for (const gpc_vertex& v : points)
        path.push_back({onGrid(v.x, ox, scale), onGrid(v.y, oy, scale)});
    return path;
}

// Exactly: whether a, b and c lie on one line (or two of them coincide), which is when
// Clipper merges the edges at b.
__extension__ using Wide = __int128;  // products of grid differences need 64 bits and more

bool collinear(const ClipperLib::IntPoint& a, const ClipperLib::IntPoint& b,
               const ClipperLib::IntPoint& c) {
    Wide cross =
        static_cast<Wide>(b.X - a.X) * (c.Y - b.Y) - static_cast<Wide>(b.Y - a.Y) * (c.X - b.X);
    return cross == 0;
}

// How the edge from p to q crosses the ray from (cx, cy) towards -x, where a turning angle
// passes a half turn: +1 downwards (counter-clockwise), -1 upwards, 0 not at all. No grid
// point lies on the ray, which runs a quarter cell off the grid.
int wraps(const ClipperLib::IntPoint& p, const ClipperLib::IntPoint& q, double cx, double cy) {
    double py = static_cast<double>(p.Y), qy = static_cast<double>(q.Y);
    if ((py > cy) == (qy > cy)) return 0;
    double px = static_cast<double>(p.X), qx = static_cast<double>(q.X);
    double x = px + (cy - py) * (qx - px) / (qy - py);
    if (x >= cx) return 0;
    return qy < cy ? 1 : -1;
}

}  // namespace

bool ReadOutline(AcDbObjectId id, Outline& outline) {
    AcGePoint3dArray points;
    AcGeDoubleArray bulges;
    if (!kova::ent::GetCurveParam(id, points, bulges)) return false;
    MakeOutline(points, bulges, outline);
    return true;
}

void MakeOutline(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges, Outline& outline) {
    AcGePoint3dArray chords;
    MakeOutline(points, bulges, outline, chords);
}

void MakeOutline(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges, Outline& outline,
                 AcGePoint3dArray& chords) {
    const AcGePoint3dArray& use =
        kova::ent::SimulateCurve(points, bulges, kSimulateSegments, chords) ? chords : points;
    outline.points.clear();
    outline.points.reserve(static_cast<std::size_t>(use.length()));
    outline.minX = outline.minY = HUGE_VAL;
    outline.maxX = outline.maxY = -HUGE_VAL;
    for (const AcGePoint3d& p : use) {
        outline.points.push_back({p.x, p.y});
        outline.minX = std::min(outline.minX, p.x);
        outline.minY = std::min(outline.minY, p.y);
        outline.maxX = std::max(outline.maxX, p.x);
        outline.maxY = std::max(outline.maxY, p.y);
    }
}

void AddOutline(const Outline& outline, gpc_polygon* polygon) {
    gpc_vertex_list list{static_cast<int>(outline.points.size()),
                         const_cast<gpc_vertex*>(outline.points.data())};
    gpc_add_contour(polygon, &list, 0);
}

double ContourArea(const gpc_vertex_list& contour) {
    AcGePoint3dArray points(contour.num_vertices);
    for (int i = 0; i < contour.num_vertices; ++i)
        points.append({contour.vertex[i].x, contour.vertex[i].y, 0.0});
    return kova::geo::GetPolyArea(points, AcGeDoubleArray());
}

void PrintFoldStopped() {
    acutPrintf(kFoldStopped);
}

BoundaryClip::BoundaryClip(AcDbObjectId boundary) {
    readable_ = ReadOutline(boundary, boundary_);
    if (!readable_) return;
    AddOutline(boundary_, &polygon_);
    buildIndex();
}

BoundaryClip::~BoundaryClip() {
    gpc_free_polygon(&polygon_);
}

void BoundaryClip::buildIndex() {
    const std::vector<gpc_vertex>& v = boundary_.points;
    const std::size_t n = v.size();
    if (n < 3) return;  // the clipper ignores such a contour; every curve is clipped
    edges_.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        const gpc_vertex& a = v[i];
        const gpc_vertex& b = v[(i + 1) % n];
        edges_.push_back(
            {a, b, std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)});
    }
    double w = boundary_.maxX - boundary_.minX, h = boundary_.maxY - boundary_.minY;
    // Beyond the clipper's rounding of both outlines, so that a curve this far from every
    // edge can neither touch nor cross the boundary after rounding.
    margin_ = 1e-3 + 1e-8 * std::max(w, h);
    int side = std::clamp(static_cast<int>(std::sqrt(static_cast<double>(n)) * 2), 1, 256);
    nx_ = ny_ = side;
    cellW_ = std::max(w / nx_, 1e-9);
    cellH_ = std::max(h / ny_, 1e-9);
    cells_.assign(static_cast<std::size_t>(nx_ * ny_), {});
    bands_.assign(static_cast<std::size_t>(ny_), {});
    auto column = [&](double x) {
        return std::clamp(static_cast<int>((x - boundary_.minX) / cellW_), 0, nx_ - 1);
    };
    auto row = [&](double y) {
        return std::clamp(static_cast<int>((y - boundary_.minY) / cellH_), 0, ny_ - 1);
    };
    for (std::size_t e = 0; e < edges_.size(); ++e) {
        const Edge& edge = edges_[e];
        int r0 = row(edge.minY), r1 = row(edge.maxY);
        for (int r = r0; r <= r1; ++r) {
            bands_[static_cast<std::size_t>(r)].push_back(static_cast<int>(e));
            for (int c = column(edge.minX); c <= column(edge.maxX); ++c) {
                // The cell a little larger, so that rounding cannot leave out an edge.
                double x0 = boundary_.minX + c * cellW_ - margin_,
                       y0 = boundary_.minY + r * cellH_ - margin_;
                double x1 = x0 + cellW_ + 2 * margin_, y1 = y0 + cellH_ + 2 * margin_;
                if (c == 0) x0 = -HUGE_VAL;
                if (r == 0) y0 = -HUGE_VAL;
                if (c == nx_ - 1) x1 = HUGE_VAL;
                if (r == ny_ - 1) y1 = HUGE_VAL;
                if (segmentMeetsBox(edge.a.x, edge.a.y, edge.b.x, edge.b.y, x0, y0, x1, y1))
                    cells_[static_cast<std::size_t>(r * nx_ + c)].push_back(static_cast<int>(e));
            }
        }
    }
}

bool BoundaryClip::edgeNear(double minX, double minY, double maxX, double maxY) const {
    int c0 = std::clamp(static_cast<int>((minX - boundary_.minX) / cellW_), 0, nx_ - 1);
    int c1 = std::clamp(static_cast<int>((maxX - boundary_.minX) / cellW_), 0, nx_ - 1);
    int r0 = std::clamp(static_cast<int>((minY - boundary_.minY) / cellH_), 0, ny_ - 1);
    int r1 = std::clamp(static_cast<int>((maxY - boundary_.minY) / cellH_), 0, ny_ - 1);
    for (int r = r0; r <= r1; ++r) {
        for (int c = c0; c <= c1; ++c) {
            for (int e : cells_[static_cast<std::size_t>(r * nx_ + c)]) {
                const Edge& edge = edges_[static_cast<std::size_t>(e)];
                if (segmentMeetsBox(edge.a.x, edge.a.y, edge.b.x, edge.b.y, minX, minY, maxX, maxY))
                    return true;
            }
        }
    }
    return false;
}

bool BoundaryClip::inside(const gpc_vertex& point) const {
    if (point.y < boundary_.minY || point.y > boundary_.maxY) return false;
    int r = std::clamp(static_cast<int>((point.y - boundary_.minY) / cellH_), 0, ny_ - 1);
    bool in = false;
    for (int e : bands_[static_cast<std::size_t>(r)]) {
        const Edge& edge = edges_[static_cast<std::size_t>(e)];
        const gpc_vertex& a = edge.a;
        const gpc_vertex& b = edge.b;
        if ((a.y > point.y) != (b.y > point.y)) {
            double x = a.x + (point.y - a.y) / (b.y - a.y) * (b.x - a.x);
            if (x > point.x) in = !in;
        }
    }
    return in;
}

int BoundaryClip::classify(AcDbObjectId curve, std::vector<double>& pieces) {
    if (!keepAnswers_ || !readable_) return classifyNow(curve, pieces);
    auto kept = answers_.find(curve);
    if (kept != answers_.end()) {
        pieces = kept->second.pieces;
        // A curve that was read and lies outside told the user so each time.
        if (kept->second.overlap == -1) PrintFoldStopped();
        return kept->second.overlap;
    }
    int overlap = classifyNow(curve, pieces);
    // An unreadable curve is not kept: reading it again costs little and says the same.
    if (lastRead_) answers_.emplace(curve, Answer{overlap, pieces, true});
    return overlap;
}

int BoundaryClip::classifyNow(AcDbObjectId curve, std::vector<double>& pieces) {
    pieces.clear();
    lastRead_ = false;
    if (!readable_) return -1;
    Workspace& ws = main_;
    if (!kova::ent::GetCurveParam(curve, ws.raw, ws.bulges)) return -1;
    lastRead_ = true;
    bool clearOfEdges = false;
    int overlap = place(ws, clearOfEdges);
    if (overlap == kClip) {
        double ownArea = 0;
        if (!clearOfEdges) kova::ent::GetArea(curve, ownArea);
        overlap = finish(ws, clearOfEdges, ownArea, pieces);
        if (overlap == kNeedArea) {
            kova::ent::GetArea(curve, ownArea);
            overlap = clip(ws, ownArea, pieces);
        }
    }
    if (overlap == -1) PrintFoldStopped();
    return overlap;
}

int BoundaryClip::place(Workspace& ws, bool& clearOfEdges) const {
    clearOfEdges = false;
    if (edges_.empty() || ws.raw.length() == 0) return kClip;
    // Extents of the curve with its arcs, which hold every chord of them: a curve that no
    // edge of the boundary comes near needs no approximating to be placed.
    double x0 = HUGE_VAL, y0 = HUGE_VAL, x1 = -HUGE_VAL, y1 = -HUGE_VAL;
    curveExtents(ws.raw, ws.bulges, x0, y0, x1, y1);
    double m = margin_ + 1e-8 * std::max(x1 - x0, y1 - y0);
    x0 -= m;
    y0 -= m;
    x1 += m;
    y1 += m;
    bool apart =
        x1 < boundary_.minX || x0 > boundary_.maxX || y1 < boundary_.minY || y0 > boundary_.maxY;
    if (!apart && edgeNear(x0, y0, x1, y1)) return kClip;
    // Wholly on one side of the boundary.
    if (apart || !inside({ws.raw[0].x, ws.raw[0].y})) return -1;
    double loss = 0;
    if (outlineClearlySimple(ws.raw, ws.bulges, loss)) {
        // Its chords keep within loss of the curve's own area, the clip's within rounding
        // of theirs.
        double own = kova::geo::GetPolyArea(ws.raw, ws.bulges);
        if (own - loss > 1.0 && loss < kSameAreaTolerance - 0.5) return 0;
    }
    clearOfEdges = true;
    return kClip;
}

int BoundaryClip::finish(Workspace& ws, bool clearOfEdges, double ownArea,
                         std::vector<double>& pieces) const {
    MakeOutline(ws.raw, ws.bulges, ws.outline, ws.chords);
    if (!clearOfEdges) return clip(ws, ownArea, pieces);
    if (simpleOutline(ws)) {
        // The curve's own area from the outline already read, as the host computes it for
        // a polyline (and to within rounding for a circle): the margins below leave room
        // for that.
        double own = kova::geo::GetPolyArea(ws.raw, ws.bulges);
        double area = std::fabs(twiceSignedArea(ws.outline.points)) / 2;
        if (area > 1.0 && std::fabs(area - own) < kSameAreaTolerance - 0.5) return 0;
    }
    return kNeedArea;
}

void BoundaryClip::classifyMany(const AcDbObjectIdArray& curves, std::vector<Answer>& answers) {
    const std::size_t n = static_cast<std::size_t>(curves.length());
    answers.assign(n, Answer());
    struct Job {
        std::size_t index;
        AcGePoint3dArray raw;
        AcGeDoubleArray bulges;
        bool clearOfEdges;
        double ownArea;
        int overlap = kClip;
    };
    // Reading the drawing stays on this thread, as the host wants it; the clipping starts
    // on the other cores as soon as the first curves are read. The jobs never move: room
    // for all is made first, and a job is published once it is whole.
    std::vector<Job> jobs;
    jobs.reserve(n);
    Job* const base = jobs.data();
    std::atomic<std::size_t> published{0}, next{0};
    std::atomic<bool> reading{true};
    std::mutex mutex;
    std::condition_variable ready;
    // Each job is worked as classify works it, in a workspace of the thread's own.
    auto run = [&](Workspace& ws, Job& job) {
        ws.raw = job.raw;
        ws.bulges = job.bulges;
        try {
            job.overlap = finish(ws, job.clearOfEdges, job.ownArea, answers[job.index].pieces);
        } catch (...) {
            job.overlap = kClip;  // worked again below, on this thread
        }
    };
    auto work = [&](Workspace& ws) {
        for (;;) {
            std::size_t k = next.load();
            if (k < published.load(std::memory_order_acquire)) {
                if (next.compare_exchange_weak(k, k + 1)) run(ws, base[k]);
                continue;
            }
            if (!reading.load(std::memory_order_acquire)) {
                if (next.load() >= published.load(std::memory_order_acquire)) return;
                continue;
            }
            std::unique_lock<std::mutex> lock(mutex);
            ready.wait(lock, [&] {
                return next.load() < published.load(std::memory_order_acquire) ||
                       !reading.load(std::memory_order_acquire);
            });
        }
    };
    // Asking the system costs a file read each time.
    static const unsigned cores =
        std::min<unsigned>(std::max(1u, std::thread::hardware_concurrency()), 8);
    // A thread is worth starting for some hundreds of curves.
    unsigned threads = static_cast<unsigned>(std::min<std::size_t>(cores, n / 256 + 1));
    std::vector<Workspace> spaces(threads > 1 ? threads - 1 : 0);
    struct Crew {
        std::vector<std::thread> threads;
        std::atomic<bool>& reading;
        std::mutex& mutex;
        std::condition_variable& ready;
        void stopReading() {
            {
                std::lock_guard<std::mutex> lock(mutex);
                reading.store(false, std::memory_order_release);
            }
            ready.notify_all();
        }
        // Whatever happens on this thread, the others are joined before the jobs go.
        ~Crew() {
            stopReading();
            for (std::thread& t : threads)
                if (t.joinable()) t.join();
        }
    } crew{{}, reading, mutex, ready};
    for (Workspace& ws : spaces)
        crew.threads.emplace_back(work, std::ref(ws));
    for (std::size_t i = 0; i < n; ++i) {
        AcDbObjectId curve = curves[static_cast<int>(i)];
        Answer& answer = answers[i];
        if (keepAnswers_) {
            auto kept = answers_.find(curve);
            if (kept != answers_.end()) {
                answer = kept->second;
                continue;
            }
        }
        if (!readable_ || !kova::ent::GetCurveParam(curve, main_.raw, main_.bulges)) continue;
        answer.read = true;
        bool clearOfEdges = false;
        answer.overlap = place(main_, clearOfEdges);
        if (answer.overlap != kClip) continue;
        double ownArea = 0;
        if (!clearOfEdges) kova::ent::GetArea(curve, ownArea);
        jobs.push_back({i, main_.raw, main_.bulges, clearOfEdges, ownArea});
        {
            std::lock_guard<std::mutex> lock(mutex);
            published.store(jobs.size(), std::memory_order_release);
        }
        ready.notify_one();
    }
    crew.stopReading();
    work(main_);
    for (std::thread& t : crew.threads)
        t.join();
    for (const Workspace& ws : spaces) {
        clips_ += ws.clips;
        fullClips_ += ws.fullClips;
    }
    for (Job& job : jobs) {
        Answer& answer = answers[job.index];
        if (job.overlap == kClip || job.overlap == kNeedArea) {
            // Finished here as classify would: the curve's own area read when it is needed.
            main_.raw = job.raw;
            main_.bulges = job.bulges;
            job.overlap = finish(main_, job.clearOfEdges, job.ownArea, answer.pieces);
            if (job.overlap == kNeedArea) {
                kova::ent::GetArea(curves[static_cast<int>(job.index)], job.ownArea);
                job.overlap = clip(main_, job.ownArea, answer.pieces);
            }
        }
        answer.overlap = job.overlap;
    }
    if (keepAnswers_) {
        for (std::size_t i = 0; i < n; ++i) {
            if (answers[i].read) answers_.emplace(curves[static_cast<int>(i)], answers[i]);
        }
    }
}

bool BoundaryClip::simpleOutline(Workspace& ws) const {
    // Where each vertex of the curve sits among the chords (an arc's chords follow it).
    const std::vector<gpc_vertex>& v = ws.outline.points;
    ws.starts.clear();
    std::size_t at = 0;
    for (const AcGePoint3d& p : ws.raw) {
        while (at < v.size() && !(v[at].x == p.x && v[at].y == p.y))
            ++at;
        if (at == v.size()) return isSimple(v);
        ws.starts.push_back(at++);
    }
    return isSimple(v, ws.starts);
}

int BoundaryClip::clip(Workspace& ws, double ownArea, std::vector<double>& pieces) const {
    ++ws.clips;
    std::optional<std::vector<double>> nearPieces = intersectNear(ws, ws.outline);
    if (nearPieces) {
        pieces = std::move(*nearPieces);
    } else {
        ++ws.fullClips;
        pieces = intersect(ws.outline);
    }
    if (pieces.empty()) return -1;
    // Smallest first: a sum that does not depend on the order the clipper hands the pieces
    // out in, which differs between the whole boundary and its near edges.
    std::sort(pieces.begin(), pieces.end());
    double sum = std::accumulate(pieces.begin(), pieces.end(), 0.0);
    if (sum > kAreaEpsilon && std::fabs(sum - ownArea) > kSameAreaTolerance) return 1;
    pieces.clear();
    return 0;
}

std::vector<double> BoundaryClip::intersect(const Outline& outline) const {
    gpc_polygon other{0, nullptr, nullptr};
    AddOutline(outline, &other);
    gpc_polygon result{0, nullptr, nullptr};
    // The clipper only reads its subject, here shared by every thread.
    gpc_polygon_clip(GPC_INT, const_cast<gpc_polygon*>(&polygon_), &other, &result);
    gpc_free_polygon(&other);
    std::vector<double> areas;
    for (int c = 0; c < result.num_contours; ++c)
        areas.push_back(ContourArea(result.contour[c]));
    gpc_free_polygon(&result);
    return areas;
}

// Inside the box around the curve the cut-down boundary has exactly the boundary's edges,
// vertex for vertex on the same grid; each run of edges away from the box is replaced by
// a detour that stays outside the box and winds round it as the run did. Clipper then
// meets the same edges wherever the curve is and builds the same contours, while the
// scan no longer carries every long edge of the boundary.
std::optional<std::vector<double>> BoundaryClip::intersectNear(Workspace& ws,
                                                               const Outline& outline) const {
    using ClipperLib::cInt;
    using ClipperLib::IntPoint;
    using ClipperLib::Path;
    const std::size_t n = boundary_.points.size();
    if (n < 3 || outline.points.size() < 3) return std::nullopt;

    Frame f;
    double minX = std::min(boundary_.minX, outline.minX),
           minY = std::min(boundary_.minY, outline.minY);
    double maxX = std::max(boundary_.maxX, outline.maxX),
           maxY = std::max(boundary_.maxY, outline.maxY);
    f.ox = std::floor(minX);
    f.oy = std::floor(minY);
    f.scale = std::min(kMaxScale, kFastRange / std::max({maxX - f.ox, maxY - f.oy, 1.0}));
    if (!(f == ws.frame) || ws.ring.empty()) {
        ws.frame = f;
        ws.ring = toGrid(boundary_.points, f.ox, f.oy, f.scale);
    }
    const Path& b = ws.ring;
    Path curve = toGrid(outline.points, f.ox, f.oy, f.scale);

    // The box: the curve's extents on the grid and a few cells more.
    constexpr cInt kPad = 4;
    cInt kx0 = curve[0].X, ky0 = curve[0].Y, kx1 = kx0, ky1 = ky0;
    for (const IntPoint& p : curve) {
        kx0 = std::min(kx0, p.X);
        ky0 = std::min(ky0, p.Y);
        kx1 = std::max(kx1, p.X);
        ky1 = std::max(ky1, p.Y);
    }
    kx0 -= kPad;
    ky0 -= kPad;
    kx1 += kPad;
    ky1 += kPad;
    double cx = (static_cast<double>(kx0) + static_cast<double>(kx1)) / 2 + 0.25;
    double cy = (static_cast<double>(ky0) + static_cast<double>(ky1)) / 2 + 0.25;
    double half = std::hypot(static_cast<double>(kx1 - kx0), static_cast<double>(ky1 - ky0)) / 2;
    double radius = half * 1.2 + 16;
    // Detours stay inside Clipper's fast range, or the whole boundary is clipped.
    constexpr double kRange = static_cast<double>(ClipperLib::loRange);
    if (cx - 2 * radius < -kRange || cy - 2 * radius < -kRange || cx + 2 * radius > kRange ||
        cy + 2 * radius > kRange) {
        return std::nullopt;
    }

    // Edges reaching the box are kept, and so is every edge Clipper would merge with one.
    auto at = [&](std::size_t i) -> const IntPoint& { return b[i % n]; };
    std::vector<char> kept(n, 0);
    std::size_t keptCount = 0;
    for (std::size_t j = 0; j < n; ++j) {
        const IntPoint& p = b[j];
        const IntPoint& q = at(j + 1);
        if (segmentMeetsBox(static_cast<double>(p.X), static_cast<double>(p.Y),
                            static_cast<double>(q.X), static_cast<double>(q.Y),
                            static_cast<double>(kx0 - 1), static_cast<double>(ky0 - 1),
                            static_cast<double>(kx1 + 1), static_cast<double>(ky1 + 1))) {
            kept[j] = 1;
            ++keptCount;
        }
    }
    for (bool grew = keptCount > 0; grew;) {
        grew = false;
        for (std::size_t j = 0; j < n; ++j) {
            if (!kept[j]) continue;
            std::size_t prev = (j + n - 1) % n, next = (j + 1) % n;
            if (!kept[prev] && collinear(at(prev), b[j], at(j + 1))) {
                kept[prev] = 1;
                grew = true;
            }
            if (!kept[next] && collinear(b[j], at(j + 1), at(j + 2))) {
                kept[next] = 1;
                grew = true;
            }
        }
    }
    keptCount = static_cast<std::size_t>(std::count(kept.begin(), kept.end(), 1));

    auto onCircle = [&](double angle, double r) {
        return IntPoint(static_cast<cInt>(std::llround(cx + r * std::cos(angle))),
                        static_cast<cInt>(std::llround(cy + r * std::sin(angle))));
    };
    auto towards = [&](const IntPoint& p) {
        return std::atan2(static_cast<double>(p.Y) - cy, static_cast<double>(p.X) - cx);
    };
    Path cut;
    if (keptCount == 0) {
        // No edge near: the curve is wholly inside or wholly outside.
        int windings = 0;
        for (std::size_t j = 0; j < n; ++j)
            windings += wraps(b[j], at(j + 1), cx, cy);
        if (windings % 2 == 0) return std::vector<double>();
        for (int k = 0; k < 4; ++k)
            cut.push_back(onCircle(std::numbers::pi / 4 + k * std::numbers::pi / 2, radius * 1.5));
    } else if (keptCount == n) {
        return std::nullopt;  // nothing to leave out
    } else {
        std::size_t start = 0;
        while (!(kept[start] && !kept[(start + n - 1) % n]))
            ++start;
        const double ringRadius = radius / std::cos(std::numbers::pi / 8) + 4;
        for (std::size_t i = 0; i < n;) {
            std::size_t j = (start + i) % n;
            cut.push_back(b[j]);
            ++i;
            if (kept[(start + i) % n] || i == n) {
                if (i == n) break;
                continue;
            }
            // A run of edges away from the box, from a to the next kept edge's start.
            const IntPoint& a = at(j + 1);
            std::size_t k = i;
            int windings = 0;
            while (!kept[(start + k) % n]) {
                windings += wraps(at(start + k), at(start + k + 1), cx, cy);
                ++k;
            }
            const IntPoint& z = at(start + k);
            double turn = towards(z) - towards(a) + 2 * std::numbers::pi * windings;
            IntPoint from = onCircle(towards(a), radius);
            IntPoint to = onCircle(towards(z), radius);
            // A detour in line with a kept edge would be merged into it.
            if (collinear(b[j], a, from) || collinear(to, z, at(start + k + 1)))
                return std::nullopt;
            cut.push_back(a);
            cut.push_back(from);
            int steps =
                std::max(1, static_cast<int>(std::ceil(std::fabs(turn) / (std::numbers::pi / 4))));
            double angle = towards(a);
            for (int s = 1; s < steps; ++s)
                cut.push_back(onCircle(angle + turn * s / steps, ringRadius));
            cut.push_back(to);
            i = k;
        }
    }

    std::vector<double> areas;
    try {
        ClipperLib::Clipper clipper;
        clipper.AddPath(cut, ClipperLib::ptSubject, true);
        clipper.AddPath(curve, ClipperLib::ptClip, true);
        ClipperLib::PolyTree tree;
        if (!clipper.Execute(ClipperLib::ctIntersection, tree, ClipperLib::pftEvenOdd,
                             ClipperLib::pftEvenOdd)) {
            return std::nullopt;
        }
        // In the order gpc_polygon_clip hands the contours out: each, then those inside it.
        std::vector<const ClipperLib::PolyNode*> pending(tree.Childs.rbegin(), tree.Childs.rend());
        while (!pending.empty()) {
            const ClipperLib::PolyNode* node = pending.back();
            pending.pop_back();
            gpc_vertex_list list{static_cast<int>(node->Contour.size()), nullptr};
            std::vector<gpc_vertex> vertices;
            vertices.reserve(node->Contour.size());
            for (const IntPoint& p : node->Contour) {
                vertices.push_back({f.ox + static_cast<double>(p.X) / f.scale,
                                    f.oy + static_cast<double>(p.Y) / f.scale});
            }
            list.vertex = vertices.data();
            areas.push_back(ContourArea(list));
            pending.insert(pending.end(), node->Childs.rbegin(), node->Childs.rend());
        }
    } catch (const std::exception&) {
        return std::nullopt;
    }
    return areas;
}

namespace {

struct Session {
    int depth = 0;
    std::unordered_map<AcDbObjectId, std::shared_ptr<BoundaryClip>, dk::ObjectIdHash> clips;
};

// Each thread of a batch clips within a drawing of its own.
Session& session() {
    thread_local Session s;
    return s;
}

}  // namespace

ClipSession::ClipSession() {
    ++session().depth;
}

ClipSession::~ClipSession() {
    if (--session().depth == 0) session().clips.clear();
}

std::shared_ptr<BoundaryClip> ClipOf(AcDbObjectId boundary) {
    Session& s = session();
    if (s.depth == 0) return std::make_shared<BoundaryClip>(boundary);
    std::shared_ptr<BoundaryClip>& clip = s.clips[boundary];
    if (!clip) {
        clip = std::make_shared<BoundaryClip>(boundary);
        clip->keepAnswers();
    }
    return clip;
}

}  // namespace stats
