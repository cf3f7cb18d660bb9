#include "host/arx/dbelipse.h"

#include <cmath>

ACRX_DEFINE_MEMBERS(AcDbEllipse, AcDbCurve, L"ELLIPSE")

namespace {
constexpr double kTwoPi = 2 * M_PI;

bool sameParam(double a, double b) {
    return std::fabs(a - b) <= 1e-12;
}

bool validShape(const AcGeVector3d& normal, const AcGeVector3d& major, double ratio) {
    if (normal.isZeroLength() || major.isZeroLength()) return false;
    if (!(ratio > 0 && ratio <= 1)) return false;
    return std::fabs(normal.normal().dotProduct(major.normal())) <= 1e-9;
}
}  // namespace

AcDbEllipse::AcDbEllipse(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                         const AcGeVector3d& majorAxis, double radiusRatio, double startAngle,
                         double endAngle) {
    if (validShape(unitNormal, majorAxis, radiusRatio))
        assign(center, unitNormal, majorAxis, radiusRatio, startAngle, endAngle);
}

void AcDbEllipse::assign(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                         const AcGeVector3d& majorAxis, double radiusRatio, double startAngle,
                         double endAngle) {
    center_ = center;
    normal_ = unitNormal.normal();
    major_ = majorAxis;
    ratio_ = radiusRatio;
    start_ = paramAtAngle(startAngle);
    end_ = sameParam(endAngle - startAngle, kTwoPi) ? start_ + kTwoPi : paramAtAngle(endAngle);
}

Acad::ErrorStatus AcDbEllipse::setCenter(const AcGePoint3d& center) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    center_ = center;
    return Acad::eOk;
}

AcGeVector3d AcDbEllipse::minorAxis() const {
    return normal_.crossProduct(major_) * ratio_;
}

Acad::ErrorStatus AcDbEllipse::setRadiusRatio(double ratio) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (!(ratio > 0 && ratio <= 1)) return Acad::eInvalidInput;
    ratio_ = ratio;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::set(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                                   const AcGeVector3d& majorAxis, double radiusRatio,
                                   double startAngle, double endAngle) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (!validShape(unitNormal, majorAxis, radiusRatio)) return Acad::eInvalidInput;
    assign(center, unitNormal, majorAxis, radiusRatio, startAngle, endAngle);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::setMajorAxis(const AcGeVector3d& majorAxis) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (majorAxis.isZeroLength()) return Acad::eInvalidInput;
    major_ = majorAxis;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::setNormal(const AcGeVector3d& normal) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (normal.isZeroLength()) return Acad::eInvalidInput;
    normal_ = normal.normal();
    return Acad::eOk;
}

bool AcDbEllipse::isValidShape() const {
    return validShape(normal_, major_, ratio_);
}

double AcDbEllipse::paramAtAngle(double angle) const {
    double p = std::atan2(std::sin(angle), ratio_ * std::cos(angle));
    // Keep the turn the angle was given in, so that 2 pi stays 2 pi.
    return p + kTwoPi * std::floor((angle - p) / kTwoPi + 0.5);
}

double AcDbEllipse::angleAtParam(double param) const {
    double a = std::atan2(ratio_ * std::sin(param), std::cos(param));
    return a + kTwoPi * std::floor((param - a) / kTwoPi + 0.5);
}

Acad::ErrorStatus AcDbEllipse::setStartAngle(double angle) {
    return setStartParam(paramAtAngle(angle));
}

Acad::ErrorStatus AcDbEllipse::setEndAngle(double angle) {
    return setEndParam(paramAtAngle(angle));
}

Acad::ErrorStatus AcDbEllipse::setStartParam(double param) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (!std::isfinite(param)) return Acad::eInvalidInput;
    start_ = param;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::setEndParam(double param) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (!std::isfinite(param)) return Acad::eInvalidInput;
    end_ = param;
    return Acad::eOk;
}

double AcDbEllipse::sweepEnd() const {
    double sweep = std::fmod(end_ - start_, kTwoPi);
    if (sweep < 0) sweep += kTwoPi;
    if (sweep <= 1e-12) sweep = kTwoPi;  // the same parameter twice is the whole ellipse
    return start_ + sweep;
}

bool AcDbEllipse::isClosed() const {
    return sameParam(sweepEnd() - start_, kTwoPi);
}

Acad::ErrorStatus AcDbEllipse::getStartParam(double& param) const {
    param = start_;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getEndParam(double& param) const {
    param = sweepEnd();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getPointAtParam(double param, AcGePoint3d& point) const {
    if (!std::isfinite(param)) return Acad::eInvalidInput;
    point = center_ + major_ * std::cos(param) + minorAxis() * std::sin(param);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getDistAtParam(double param, double& dist) const {
    double end = sweepEnd();
    if (param < start_ - 1e-10 || param > end + 1e-10) return Acad::eInvalidInput;
    // Simpson's rule over the speed |major * -sin t + minor * cos t|.
    double a = major_.length(), b = a * ratio_;
    auto speed = [&](double t) { return std::hypot(a * std::sin(t), b * std::cos(t)); };
    int n = 2 * static_cast<int>(std::ceil(std::fabs(param - start_) / kTwoPi * 512) + 1);
    double h = (param - start_) / n, sum = speed(start_) + speed(param);
    for (int i = 1; i < n; ++i)
        sum += speed(start_ + i * h) * (i % 2 ? 4 : 2);
    dist = sum * h / 3;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getArea(double& area) const {
    double a = major_.length(), b = a * ratio_;
    double sweep = sweepEnd() - start_;
    // The ellipse is a circle of radius a squeezed by the ratio: so is its segment.
    area = isClosed() ? M_PI * a * b : a * b / 2 * (sweep - std::sin(sweep));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getGeomExtents(AcDbExtents& extents) const {
    extents = AcDbExtents();
    AcGeVector3d minor = minorAxis();
    double end = sweepEnd();
    AcGePoint3d p;
    getPointAtParam(start_, p);
    extents.addPoint(p);
    getPointAtParam(end, p);
    extents.addPoint(p);
    // Per coordinate, the extremes of u cos t + v sin t lie at t = atan2(v, u) (+ pi).
    auto part = [](const AcGeVector3d& v, int k) { return k == 0 ? v.x : (k == 1 ? v.y : v.z); };
    for (int k = 0; k < 3; ++k) {
        double t0 = std::atan2(part(minor, k), part(major_, k));
        // At most three of them lie on an arc of up to a whole turn.
        double first = std::ceil((start_ - t0) / M_PI);
        for (double k = first; k < first + 3; ++k) {
            double t = t0 + k * M_PI;
            if (t < start_ || t > end) continue;
            getPointAtParam(t, p);
            extents.addPoint(p);
        }
    }
    return Acad::eOk;
}
