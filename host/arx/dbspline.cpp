#include "host/arx/dbspline.h"

#include <algorithm>
#include <cmath>

ACRX_DEFINE_MEMBERS(AcDbSpline, AcDbCurve, L"SPLINE")

namespace {

bool fits(int degree, std::size_t controls, std::size_t knots, std::size_t weights, bool rational) {
    if (degree < 1 || controls < static_cast<std::size_t>(degree) + 1) return false;
    if (knots != controls + static_cast<std::size_t>(degree) + 1) return false;
    return !rational || weights == controls;
}

// Solves a x = b in place by elimination with partial pivoting; false when singular.
bool solve(std::vector<std::vector<double>>& a, std::vector<AcGeVector3d>& b) {
    std::size_t n = b.size();
    for (std::size_t c = 0; c < n; ++c) {
        std::size_t pivot = c;
        for (std::size_t r = c + 1; r < n; ++r) {
            if (std::fabs(a[r][c]) > std::fabs(a[pivot][c])) pivot = r;
        }
        if (std::fabs(a[pivot][c]) < 1e-14) return false;
        std::swap(a[c], a[pivot]);
        std::swap(b[c], b[pivot]);
        for (std::size_t r = c + 1; r < n; ++r) {
            double f = a[r][c] / a[c][c];
            if (f == 0) continue;
            for (std::size_t k = c; k < n; ++k)
                a[r][k] -= f * a[c][k];
            b[r] = b[r] - b[c] * f;
        }
    }
    for (std::size_t c = n; c-- > 0;) {
        AcGeVector3d v = b[c];
        for (std::size_t k = c + 1; k < n; ++k)
            v = v - b[k] * a[c][k];
        b[c] = v * (1 / a[c][c]);
    }
    return true;
}

// The non-zero basis functions of degree p at u in span s (knots[s] <= u < knots[s+1]).
std::vector<double> basis(const std::vector<double>& knots, int s, int p, double u) {
    std::vector<double> n(static_cast<std::size_t>(p) + 1, 0.0), left(n.size()), right(n.size());
    n[0] = 1;
    for (int j = 1; j <= p; ++j) {
        left[j] = u - knots[static_cast<std::size_t>(s + 1 - j)];
        right[j] = knots[static_cast<std::size_t>(s + j)] - u;
        double saved = 0;
        for (int r = 0; r < j; ++r) {
            double denominator = right[r + 1] + left[j - r];
            double t = denominator == 0 ? 0 : n[r] / denominator;
            n[r] = saved + right[r + 1] * t;
            saved = left[j - r] * t;
        }
        n[j] = saved;
    }
    return n;
}

int spanOf(const std::vector<double>& knots, int p, int controls, double u) {
    int last = controls - 1;
    if (u >= knots[static_cast<std::size_t>(last + 1)]) {
        // The end of the domain belongs to the last non-empty span.
        int s = last;
        while (s > p &&
               knots[static_cast<std::size_t>(s)] >= knots[static_cast<std::size_t>(last + 1)])
            --s;
        return s;
    }
    int s = p;
    while (s < last && knots[static_cast<std::size_t>(s + 1)] <= u)
        ++s;
    return s;
}

}  // namespace

AcDbSpline::AcDbSpline(int degree, bool rational, bool closed, bool periodic,
                       const AcGePoint3dArray& controlPoints, const AcGeDoubleArray& knots,
                       const AcGeDoubleArray& weights, double controlPtTol, double knotTol) {
    if (!fits(degree, static_cast<std::size_t>(controlPoints.length()),
              static_cast<std::size_t>(knots.length()), static_cast<std::size_t>(weights.length()),
              rational))
        return;
    d_.degree = degree;
    d_.rational = rational;
    d_.closed = closed;
    d_.periodic = periodic;
    for (int i = 0; i < controlPoints.length(); ++i)
        d_.controlPoints.push_back(controlPoints[i]);
    for (int i = 0; i < knots.length(); ++i)
        d_.knots.push_back(knots[i]);
    if (rational) {
        for (int i = 0; i < weights.length(); ++i)
            d_.weights.push_back(weights[i]);
    }
    if (controlPtTol > 0) d_.controlTolerance = controlPtTol;
    if (knotTol > 0) d_.knotTolerance = knotTol;
    updatePlane();
}

AcDbSpline::AcDbSpline(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
                       const AcGeVector3d& endTangent, int order, double fitTolerance) {
    for (int i = 0; i < fitPoints.length(); ++i)
        d_.fitPoints.push_back(fitPoints[i]);
    if (fitTolerance > 0) d_.fitTolerance = fitTolerance;
    interpolate(order, startTangent, endTangent);
}

AcDbSpline::AcDbSpline(const AcGePoint3dArray& fitPoints, int order, double fitTolerance)
    : AcDbSpline(fitPoints, AcGeVector3d(), AcGeVector3d(), order, fitTolerance) {}

// Global interpolation at chord-length parameters with knots averaged from them; a
// given end tangent adds one control point that makes the curve leave in its direction,
// its length the whole chord length.
void AcDbSpline::interpolate(int order, const AcGeVector3d& startTangent,
                             const AcGeVector3d& endTangent) {
    d_.controlPoints.clear();
    d_.knots.clear();
    d_.weights.clear();
    d_.rational = false;
    d_.hasStartTangent = !startTangent.isZeroLength();
    d_.hasEndTangent = !endTangent.isZeroLength();
    d_.startTangent = d_.hasStartTangent ? startTangent.normal() : AcGeVector3d();
    d_.endTangent = d_.hasEndTangent ? endTangent.normal() : AcGeVector3d();
    std::size_t n = d_.fitPoints.size();
    if (n < 2 || order < 2) return;
    std::vector<double> u(n, 0.0);
    for (std::size_t i = 1; i < n; ++i)
        u[i] = u[i - 1] + d_.fitPoints[i].distanceTo(d_.fitPoints[i - 1]);
    double total = u.back();
    if (!(total > 0)) return;
    for (double& v : u)
        v /= total;
    std::size_t extra = (d_.hasStartTangent ? 1 : 0) + (d_.hasEndTangent ? 1 : 0);
    std::size_t m = n + extra;  // control points
    int p = static_cast<int>(std::min<std::size_t>(static_cast<std::size_t>(order - 1), m - 1));
    // Knots: p+1 zeros, m-p-1 inner knots averaged from the parameters, p+1 ones.
    d_.knots.assign(static_cast<std::size_t>(p) + 1, 0.0);
    std::size_t inner = m - static_cast<std::size_t>(p) - 1;
    for (std::size_t j = 1; j <= inner; ++j) {
        // Averages over a window that slides across all parameters.
        double position =
            static_cast<double>(j) * static_cast<double>(n - 1) / static_cast<double>(inner + 1);
        std::size_t lo = static_cast<std::size_t>(std::floor(position));
        double t = position - static_cast<double>(lo);
        double a = u[lo], b = u[std::min(lo + 1, n - 1)];
        d_.knots.push_back(a + (b - a) * t);
    }
    d_.knots.insert(d_.knots.end(), static_cast<std::size_t>(p) + 1, 1.0);
    // Rows: each fit point on the curve, then the end derivatives.
    std::vector<std::vector<double>> a;
    std::vector<AcGeVector3d> b;
    auto row = [&](double at, int derivative) {
        std::vector<double> r(m, 0.0);
        int s = spanOf(d_.knots, p, static_cast<int>(m), at);
        if (derivative == 0) {
            std::vector<double> nb = basis(d_.knots, s, p, at);
            for (int k = 0; k <= p; ++k)
                r[static_cast<std::size_t>(s - p + k)] = nb[static_cast<std::size_t>(k)];
        } else {
            // At the ends of a clamped curve the derivative is p / (u[p+1] - u[1]) * (P1 - P0).
            bool start = at <= 0;
            std::size_t i0 = start ? 0 : m - 2;
            double span = start ? d_.knots[static_cast<std::size_t>(p) + 1] - d_.knots[1]
                                : d_.knots[m + static_cast<std::size_t>(p) - 1] - d_.knots[m - 1];
            double f = span > 0 ? p / span : 0;
            r[i0] = -f;
            r[i0 + 1] = f;
        }
        a.push_back(std::move(r));
    };
    for (std::size_t i = 0; i < n; ++i) {
        row(u[i], 0);
        b.push_back(AcGeVector3d(d_.fitPoints[i].x, d_.fitPoints[i].y, d_.fitPoints[i].z));
    }
    if (d_.hasStartTangent) {
        row(0, 1);
        b.push_back(d_.startTangent * total);
    }
    if (d_.hasEndTangent) {
        row(1, 1);
        b.push_back(d_.endTangent * total);
    }
    if (!solve(a, b)) {
        d_.knots.clear();
        return;
    }
    d_.degree = p;
    for (const AcGeVector3d& v : b)
        d_.controlPoints.emplace_back(v.x, v.y, v.z);
    d_.closed = d_.fitPoints.front().isEqualTo(d_.fitPoints.back());
    d_.periodic = false;
    updatePlane();
}

void AcDbSpline::updatePlane() {
    const std::vector<AcGePoint3d>& points =
        d_.controlPoints.empty() ? d_.fitPoints : d_.controlPoints;
    // Planar when every point lies in the plane of the first three that span one.
    d_.planar = true;
    d_.linear = false;
    AcGeVector3d n;
    for (std::size_t i = 2; i < points.size() && n.isZeroLength(); ++i)
        n = (points[1] - points[0]).crossProduct(points[i] - points[0]);
    if (n.isZeroLength()) {
        d_.linear = points.size() >= 2;
        return;
    }
    n = n.normal();
    if (n.z < 0) n = -n;
    for (const AcGePoint3d& q : points) {
        if (std::fabs((q - points[0]).dotProduct(n)) > 1e-9 * (1 + q.distanceTo(points[0])))
            d_.planar = false;
    }
    if (d_.planar) d_.normal = n;
}

Acad::ErrorStatus AcDbSpline::getControlPointAt(int index, AcGePoint3d& point) const {
    if (index < 0 || index >= numControlPoints()) return Acad::eInvalidIndex;
    point = d_.controlPoints[static_cast<std::size_t>(index)];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getFitPointAt(int index, AcGePoint3d& point) const {
    if (index < 0 || index >= numFitPoints()) return Acad::eInvalidIndex;
    point = d_.fitPoints[static_cast<std::size_t>(index)];
    return Acad::eOk;
}

double AcDbSpline::weightAt(int index) const {
    if (index < 0 || index >= numControlPoints()) return 0;
    return d_.rational && static_cast<std::size_t>(index) < d_.weights.size()
               ? d_.weights[static_cast<std::size_t>(index)]
               : 1.0;
}

Acad::ErrorStatus AcDbSpline::getNurbsData(int& degree, bool& rational, bool& closed,
                                           bool& periodic, AcGePoint3dArray& controlPoints,
                                           AcGeDoubleArray& knots, AcGeDoubleArray& weights,
                                           double& controlPtTol, double& knotTol) const {
    degree = d_.degree;
    rational = d_.rational;
    closed = d_.closed;
    periodic = d_.periodic;
    controlPoints.setLogicalLength(0);
    knots.setLogicalLength(0);
    weights.setLogicalLength(0);
    for (const AcGePoint3d& p : d_.controlPoints)
        controlPoints.append(p);
    for (double k : d_.knots)
        knots.append(k);
    if (d_.rational) {
        for (double w : d_.weights)
            weights.append(w);
    }
    controlPtTol = d_.controlTolerance;
    knotTol = d_.knotTolerance;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getFitData(AcGePoint3dArray& fitPoints, int& degree,
                                         double& fitTolerance, bool& tangentsExist,
                                         AcGeVector3d& startTangent,
                                         AcGeVector3d& endTangent) const {
    if (d_.fitPoints.empty()) return Acad::eNotApplicable;
    fitPoints.setLogicalLength(0);
    for (const AcGePoint3d& p : d_.fitPoints)
        fitPoints.append(p);
    degree = d_.degree;
    fitTolerance = d_.fitTolerance;
    tangentsExist = d_.hasStartTangent || d_.hasEndTangent;
    startTangent = d_.startTangent;
    endTangent = d_.endTangent;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setNurbsData(int degree, bool rational, bool closed, bool periodic,
                                           const AcGePoint3dArray& controlPoints,
                                           const AcGeDoubleArray& knots,
                                           const AcGeDoubleArray& weights, double controlPtTol,
                                           double knotTol) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (!fits(degree, static_cast<std::size_t>(controlPoints.length()),
              static_cast<std::size_t>(knots.length()), static_cast<std::size_t>(weights.length()),
              rational))
        return Acad::eInvalidInput;
    AcDbSpline made(degree, rational, closed, periodic, controlPoints, knots, weights, controlPtTol,
                    knotTol);
    restore(made.data());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setFitData(const AcGePoint3dArray& fitPoints, int order,
                                         double fitTolerance, const AcGeVector3d& startTangent,
                                         const AcGeVector3d& endTangent) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    AcDbSpline made(fitPoints, startTangent, endTangent, order, fitTolerance);
    if (made.d_.controlPoints.empty()) return Acad::eInvalidInput;
    restore(made.data());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::purgeFitData() {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    d_.fitPoints.clear();
    d_.hasStartTangent = d_.hasEndTangent = false;
    return Acad::eOk;
}

bool AcDbSpline::isClosed() const {
    if (d_.controlPoints.empty()) return false;
    AcGePoint3d a, b;
    double s = 0, e = 0;
    getStartParam(s);
    getEndParam(e);
    getPointAtParam(s, a);
    getPointAtParam(e, b);
    return d_.closed || d_.periodic || a.isEqualTo(b, AcGeTol());
}

Acad::ErrorStatus AcDbSpline::getStartParam(double& param) const {
    if (d_.controlPoints.empty()) return Acad::eDegenerateGeometry;
    param = d_.knots[static_cast<std::size_t>(d_.degree)];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getEndParam(double& param) const {
    if (d_.controlPoints.empty()) return Acad::eDegenerateGeometry;
    param = d_.knots[d_.controlPoints.size()];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getPointAtParam(double param, AcGePoint3d& point) const {
    double s = 0, e = 0;
    if (getStartParam(s) != Acad::eOk) return Acad::eDegenerateGeometry;
    getEndParam(e);
    if (!(param >= s - 1e-10 && param <= e + 1e-10)) return Acad::eInvalidInput;
    param = std::clamp(param, s, e);
    int span = spanOf(d_.knots, d_.degree, numControlPoints(), param);
    std::vector<double> nb = basis(d_.knots, span, d_.degree, param);
    AcGeVector3d sum;
    double w = 0;
    for (int k = 0; k <= d_.degree; ++k) {
        std::size_t i = static_cast<std::size_t>(span - d_.degree + k);
        double wk = nb[static_cast<std::size_t>(k)] * weightAt(static_cast<int>(i));
        sum =
            sum +
            AcGeVector3d(d_.controlPoints[i].x, d_.controlPoints[i].y, d_.controlPoints[i].z) * wk;
        w += wk;
    }
    if (w == 0) return Acad::eDegenerateGeometry;
    point = AcGePoint3d(sum.x / w, sum.y / w, sum.z / w);
    return Acad::eOk;
}

std::vector<AcGePoint3d> AcDbSpline::samplePoints(int perSpan) const {
    std::vector<AcGePoint3d> points;
    if (d_.controlPoints.empty()) return points;
    for (std::size_t k = static_cast<std::size_t>(d_.degree); k < d_.controlPoints.size(); ++k) {
        double a = d_.knots[k], b = d_.knots[k + 1];
        if (!(b > a)) continue;
        for (int i = points.empty() ? 0 : 1; i <= perSpan; ++i) {
            AcGePoint3d p;
            getPointAtParam(a + (b - a) * i / perSpan, p);
            points.push_back(p);
        }
    }
    return points;
}

Acad::ErrorStatus AcDbSpline::getDistAtParam(double param, double& dist) const {
    double s = 0, e = 0;
    if (getStartParam(s) != Acad::eOk) return Acad::eDegenerateGeometry;
    getEndParam(e);
    if (!(param >= s - 1e-10 && param <= e + 1e-10)) return Acad::eInvalidInput;
    dist = 0;
    int steps = 256 * std::max(1, numControlPoints() - d_.degree);
    AcGePoint3d previous, p;
    getPointAtParam(s, previous);
    for (int i = 1; i <= steps; ++i) {
        getPointAtParam(s + (std::min(param, e) - s) * i / steps, p);
        dist += p.distanceTo(previous);
        previous = p;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getArea(double& area) const {
    std::vector<AcGePoint3d> points = samplePoints(256);
    area = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const AcGePoint3d& a = points[i];
        const AcGePoint3d& b = points[(i + 1) % points.size()];
        area += a.x * b.y - b.x * a.y;
    }
    area = std::fabs(area) / 2;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getGeomExtents(AcDbExtents& extents) const {
    extents = AcDbExtents();
    for (const AcGePoint3d& p : samplePoints())
        extents.addPoint(p);
    for (const AcGePoint3d& p : d_.fitPoints)
        extents.addPoint(p);
    return extents.isEmpty() ? Acad::eInvalidExtents : Acad::eOk;
}
