#pragma once
// Points and vectors of the host's geometry library.
#include <cmath>
#include <numbers>

#include "host/arx/acarray.h"
#include "kplan/Export.h"

class KPLAN_API AcGeTol {
  public:
    double equalPoint() const { return point_; }
    double equalVector() const { return vector_; }
    void setEqualPoint(double t) { point_ = t; }
    void setEqualVector(double t) { vector_ = t; }

  private:
    double point_ = 1e-10;
    double vector_ = 1e-12;
};

struct KPLAN_API AcGeContext {
    static AcGeTol gTol;
};

class KPLAN_API AcGeVector2d {
  public:
    double x = 0, y = 0;
    AcGeVector2d() = default;
    AcGeVector2d(double xx, double yy) : x(xx), y(yy) {}
    double length() const { return std::hypot(x, y); }
    AcGeVector2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
    AcGeVector2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
    AcGeVector2d operator*(double s) const { return {x * s, y * s}; }
    double dotProduct(const AcGeVector2d& v) const { return x * v.x + y * v.y; }
    double angle() const {
        double a = std::atan2(y, x);
        return a < 0 ? a + 2 * std::numbers::pi : a;
    }
    bool operator==(const AcGeVector2d&) const = default;
};

class KPLAN_API AcGePoint2d {
  public:
    double x = 0, y = 0;
    AcGePoint2d() = default;
    AcGePoint2d(double xx, double yy) : x(xx), y(yy) {}
    static const AcGePoint2d kOrigin;
    double distanceTo(const AcGePoint2d& p) const { return std::hypot(x - p.x, y - p.y); }
    AcGeVector2d operator-(const AcGePoint2d& p) const { return {x - p.x, y - p.y}; }
    AcGePoint2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
    AcGePoint2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
    bool isEqualTo(const AcGePoint2d& p, const AcGeTol& tol = AcGeContext::gTol) const {
        return distanceTo(p) <= tol.equalPoint();
    }
    bool operator==(const AcGePoint2d&) const = default;
    double operator[](int i) const { return i == 0 ? x : y; }
    double& operator[](int i) { return i == 0 ? x : y; }
};

class KPLAN_API AcGeVector3d {
  public:
    double x = 0, y = 0, z = 0;
    AcGeVector3d() = default;
    AcGeVector3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
    static const AcGeVector3d kXAxis;
    static const AcGeVector3d kYAxis;
    static const AcGeVector3d kZAxis;
    static const AcGeVector3d kIdentity;
    double length() const { return std::sqrt(x * x + y * y + z * z); }
    AcGeVector3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
    AcGeVector3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
    AcGeVector3d operator*(double s) const { return {x * s, y * s, z * s}; }
    AcGeVector3d operator-() const { return {-x, -y, -z}; }
    double dotProduct(const AcGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }
    AcGeVector3d crossProduct(const AcGeVector3d& v) const {
        return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
    }
    AcGeVector3d normal() const {
        double l = length();
        return l > 0 ? AcGeVector3d(x / l, y / l, z / l) : *this;
    }
    AcGeVector3d& normalize() { return *this = normal(); }
    bool isZeroLength() const { return length() <= AcGeContext::gTol.equalVector(); }
    bool operator==(const AcGeVector3d&) const = default;
};

class KPLAN_API AcGePoint3d {
  public:
    double x = 0, y = 0, z = 0;
    AcGePoint3d() = default;
    AcGePoint3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
    static const AcGePoint3d kOrigin;
    double distanceTo(const AcGePoint3d& p) const {
        return std::sqrt((x - p.x) * (x - p.x) + (y - p.y) * (y - p.y) + (z - p.z) * (z - p.z));
    }
    AcGeVector3d operator-(const AcGePoint3d& p) const { return {x - p.x, y - p.y, z - p.z}; }
    AcGePoint3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
    AcGePoint3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
    AcGePoint3d& operator+=(const AcGeVector3d& v) { return *this = *this + v; }
    bool isEqualTo(const AcGePoint3d& p, const AcGeTol& tol = AcGeContext::gTol) const {
        return distanceTo(p) <= tol.equalPoint();
    }
    AcGePoint2d convert2d() const { return {x, y}; }
    bool operator==(const AcGePoint3d&) const = default;
    double operator[](int i) const { return i == 0 ? x : (i == 1 ? y : z); }
    double& operator[](int i) { return i == 0 ? x : (i == 1 ? y : z); }
};

using AcGePoint2dArray = AcArray<AcGePoint2d>;
using AcGePoint3dArray = AcArray<AcGePoint3d>;
using AcGeDoubleArray = AcArray<double>;
using AcGeVector3dArray = AcArray<AcGeVector3d>;

inline AcGePoint3d asPnt3d(const double* p) {
    return {p[0], p[1], p[2]};
}
inline double* asDblArray(AcGePoint3d& p) {
    return &p.x;
}
inline const double* asDblArray(const AcGePoint3d& p) {
    return &p.x;
}
